#include "QuerySubjectShortcutInfo.h"

#include "AQE_Governors.h"
#include "AQE_LogFile.h"
#include "I18NConverter.h"
#include "IdClass.h"
#include "Joins/HostNumbers.h"
#include "QERes.h"
#include "Shortcuts/ShortcutGroupDump.h"
#include "Shortcuts/ShortcutGroupMembers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <sstream>

namespace {

constexpr int kLogLevel = 11;
/// The domain of the ids of synthetic joins.
constexpr std::int32_t kSyntheticDomain = 100;

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
    : mGateway(gateway), mGovernors(governors), mRequestContext(context)
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
    if (mGovernors->shortcutGrouping == 0)
        BuildGroupsByTarget();
    else
        BuildGroupsByContainer();
}

void AQE_QuerySubjectShortcutInfo::RecordJoins(const std::vector<amd_id>& joins)
{
    for (const amd_id& join : joins) {
        QEjoinInfo info;
        if (AQE_I_Refiner::GetJoinInfo(mGateway, mRequestContext, join, info))
            mReferences.RecordJoinedReferences(info.leftQuerySubject, info.rightQuerySubject);
    }
}

void AQE_QuerySubjectShortcutInfo::BuildGroupsByTarget()
{
    mBuilt = true;
    mReferences.ConsolidateJoinedReferences();
    for (const auto& [target, containers] : mReferences.GetByTarget())
        GroupByTarget(target, containers);
    mReferences.Clear();
    WriteLog();
}

void AQE_QuerySubjectShortcutInfo::GroupByTarget(const amd_id& target, const Containers& containers)
{
    std::vector<amd_id> members;
    for (const auto& [container, references] : containers)
        qe::CollectGroupMembers(mGateway, references, members);
    for (const amd_id& member : members) {
        mGroups[target].insert(member);
        AddShortcutJoin(target, member);
    }
    JoinPairwise(members);
}

void AQE_QuerySubjectShortcutInfo::BuildGroupsByContainer()
{
    mBuilt = true;
    mReferences.ConsolidateJoinedReferences();
    for (const auto& [target, containers] : mReferences.GetByTarget())
        GroupByContainer(containers);
    mReferences.Clear();
    WriteLog();
}

void AQE_QuerySubjectShortcutInfo::GroupByContainer(const Containers& containers)
{
    if (containers.size() < 2)
        return;
    std::vector<amd_id> members;
    for (const auto& [container, references] : containers)
        members.push_back(qe::ChooseRepresentative(mGateway, references));
    std::sort(members.begin(), members.end());
    const amd_id key = members.front();
    members.erase(members.begin());
    for (const amd_id& member : members) {
        mGroups[key].insert(member);
        AddShortcutJoin(key, member);
    }
    JoinPairwise(members);
}

void AQE_QuerySubjectShortcutInfo::JoinPairwise(const std::vector<amd_id>& ends)
{
    for (std::size_t i = 0; i < ends.size(); ++i) {
        for (std::size_t j = i + 1; j < ends.size(); ++j)
            AddShortcutJoin(ends[i], ends[j]);
    }
}

void AQE_QuerySubjectShortcutInfo::AddShortcutJoin(const amd_id& left, const amd_id& right)
{
    constexpr auto one = BMT_I_Association::CardinalityOne;
    QEjoinInfo info;
    info.weight = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeShortcut);
    info.joinId = {kSyntheticDomain, IdClassShortcutJoin,
                   static_cast<std::int32_t>(mShortcutJoins.size())};
    info.leftQuerySubject = left;
    info.rightQuerySubject = right;
    info.leftCardinality = {one, one};
    info.rightCardinality = {one, one};
    mShortcutJoins.push_back(info);
}

const std::vector<AQE_I_Refiner::QEjoinInfo>& AQE_QuerySubjectShortcutInfo::GetShortcutJoins()
{
    return mShortcutJoins;
}

bool AQE_QuerySubjectShortcutInfo::GetJoinInfo(const amd_id& joinId, QEjoinInfo& info)
{
    // The caller may name the join by a field of the record that is about to be filled.
    const amd_id id = joinId;
    if (id.classCode != IdClassShortcutJoin)
        return false;
    const auto index = static_cast<std::uint32_t>(id.number);
    if (index >= mShortcutJoins.size())
        return false;
    info = mShortcutJoins[index];
    return info.joinId == id;
}

amd_id AQE_QuerySubjectShortcutInfo::GetGroupKey(const amd_id& id)
{
    if (!mBuilt || id.classCode != IdClassShortcut)
        return id;
    if (const auto cached = mGroupKeyCache.find(id); cached != mGroupKeyCache.end())
        return cached->second;
    const auto group = std::find_if(mGroups.begin(), mGroups.end(), [&id](const auto& entry) {
        return entry.second.find(id) != entry.second.end();
    });
    const amd_id key = group == mGroups.end() ? id : group->first;
    mGroupKeyCache[id] = key;
    return key;
}

void AQE_QuerySubjectShortcutInfo::Dump(std::ostream& out)
{
    out << "QuerySubjectShortcutInfo::Dump" << std::endl;
    qe::DumpShortcutGroups(mGateway, mGroups, out);
    qe::DumpShortcutJoins(mGateway, mShortcutJoins, out);
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
