#include "QuerySubjectShortcutInfo.h"

#include "AQE_Governors.h"
#include "AQE_LogFile.h"
#include "I18NConverter.h"
#include "IdClass.h"
#include "Joins/HostNumbers.h"
#include "Joins/JoinReader.h"
#include "QERes.h"

#include <cstdint>
#include <new>
#include <sstream>

namespace {

constexpr int kLogLevel = 11;

} // namespace

AQE_I_QuerySubjectShortcutInfo::~AQE_I_QuerySubjectShortcutInfo() = default;

AQE_I_QuerySubjectShortcutInfo* AQE_I_QuerySubjectShortcutInfo::Create(amdi_gateway* gateway,
                                                                       AQE_Governors* governors,
                                                                       AQE_RequestContext* context)
{
    return new (std::nothrow) AQE_QuerySubjectShortcutInfo(gateway, governors, context);
}

AQE_QuerySubjectShortcutInfo::AQE_QuerySubjectShortcutInfo(amdi_gateway* gateway,
                                                           AQE_Governors* governors,
                                                           AQE_RequestContext* context)
    : mGroups(gateway), mGateway(gateway), mGovernors(governors), mRequestContext(context)
{}

AQE_QuerySubjectShortcutInfo::~AQE_QuerySubjectShortcutInfo() = default;

void AQE_QuerySubjectShortcutInfo::Initialize(const std::vector<amd_id>& querySubjects,
                                              const std::vector<amd_id>& joins,
                                              const std::vector<amd_id>& requiredJoins)
{
    if (mBuilt)
        return;
    for (const amd_id& id : querySubjects) {
        if (id.classCode == IdClassShortcut)
            mReferences.RegisterShortcut(mGateway, id);
    }
    RecordJoins(joins);
    RecordJoins(requiredJoins);
    BuildGroups();
}

void AQE_QuerySubjectShortcutInfo::RecordJoins(const std::vector<amd_id>& joins)
{
    QEjoinInfo space;
    for (const amd_id& join : joins) {
        if (const auto read = qe::FindOrReadJoin(mGateway, mRequestContext, join, space))
            mReferences.RecordJoinedReferences(read->ends.left, read->ends.right);
    }
}

void AQE_QuerySubjectShortcutInfo::BuildGroups()
{
    mBuilt = true;
    mReferences.ConsolidateJoinedReferences();
    if (mGovernors->shortcutGrouping == 0)
        mGroups.GroupByTarget(mReferences);
    else
        mGroups.GroupByParent(mReferences);
    mReferences.Clear();
    WriteLog();
}

const std::vector<AQE_I_Refiner::QEjoinInfo>& AQE_QuerySubjectShortcutInfo::GetShortcutJoins()
{
    return mGroups.GetJoins();
}

bool AQE_QuerySubjectShortcutInfo::GetJoinInfo(const amd_id& joinId, QEjoinInfo& info)
{
    // The caller may name the join by a field of the record that is about to be filled.
    const amd_id id = joinId;
    if (id.classCode != IdClassShortcutJoin)
        return false;
    const auto index = static_cast<std::uint32_t>(id.number);
    if (index >= mGroups.GetJoins().size())
        return false;
    info = mGroups.GetJoins()[index];
    return info.joinId == id;
}

amd_id AQE_QuerySubjectShortcutInfo::GetGroupKey(const amd_id& id)
{
    if (!mBuilt || id.classCode != IdClassShortcut)
        return id;
    if (const auto cached = mGroupKeyCache.find(id); cached != mGroupKeyCache.end())
        return cached->second;
    const amd_id key = mGroups.FindKey(id);
    if (!mGroups.IsComplete())
        mGroupKeyCache[id] = key;
    return key;
}

void AQE_QuerySubjectShortcutInfo::Dump(std::ostream& out)
{
    out << "QuerySubjectShortcutInfo::Dump" << std::endl;
    mGroups.Dump(out);
}

void AQE_QuerySubjectShortcutInfo::WriteLog()
{
    AQE_LogFile log(QERes::getString(qe::host::kComponentNameText), kLogLevel,
                    qe::host::kShortcutLogComponent, qe::host::kShortcutLogMessage,
                    "Join Information for the Shortcuts");
    if (log.GetLogLevel() < kLogLevel)
        return;
    std::ostringstream stream;
    Dump(stream);
    stream << std::ends;
    log.Log(kLogLevel, AUT_GetUTF8Converter().Convert(stream.str().c_str()));
}
