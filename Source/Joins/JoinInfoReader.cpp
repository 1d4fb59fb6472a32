#include "Joins/JoinInfoReader.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "IdClass.h"
#include "Joins/JoinReader.h"
#include "Rules/JoinEnds.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qe {

JoinEndsReader::JoinEndsReader(const RefinerServices& services,
                               const std::set<amd_id>& favouredSubjects, EShortcutUse shortcutUse)
    : mServices(services), mFavouredSubjects(favouredSubjects), mShortcutUse(shortcutUse)
{}

std::optional<JoinEnds> JoinEndsReader::GetJoinEnds(const amd_id& join) const
{
    const auto read = Read(join);
    if (!read)
        return std::nullopt;
    return read->ends;
}

int JoinEndsReader::AdjustWeight(const WeighedJoin& join) const
{
    if (!mFavouredWeights)
        mFavouredWeights = {
            .oneEnd = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeOneEndInSet),
            .bothEnds = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeBothEndsInSet)};
    if (!HasFavouredSubjects())
        return join.weight;
    const auto resolve = [this](const amd_id& shortcut) {
        return AQE_I_Refiner::GetRefQuerySubject(mServices.gateway, shortcut, nullptr, nullptr);
    };
    return AdjustJoinWeight(join, {mFavouredSubjects, resolve}, *mFavouredWeights);
}

std::optional<WeighedJoin> JoinEndsReader::Read(const amd_id& join) const
{
    // One result, returned from where it was made: this runs for every candidate.
    auto read = FindOrReadJoin(mServices.gateway, mServices.requestContext, join, mSpace);
    if (read || mShortcutUse == EShortcutUse::Ignore || mServices.shortcutInfo == nullptr)
        return read;
    // A host's own shortcut information may fill in less than everything.
    mSpace = {};
    if (mServices.shortcutInfo->GetJoinInfo(join, mSpace))
        read = {.ends = {.left = mSpace.leftQuerySubject, .right = mSpace.rightQuerySubject},
                .weight = mSpace.weight};
    return read;
}

namespace {

bool Read(const RefinerServices& services, const amd_id& joinId, AQE_I_Refiner::QEjoinInfo& info)
{
    if (joinId.classCode != IdClassShortcutJoin)
        return AQE_I_Refiner::GetJoinInfo(services.gateway, services.requestContext, joinId, info);
    return services.shortcutInfo != nullptr && services.shortcutInfo->GetJoinInfo(joinId, info);
}

} // namespace

JoinInfoReader::JoinInfoReader(const RefinerServices& services) : mServices(services)
{}

const AQE_I_Refiner::QEjoinInfo* JoinInfoReader::LookUpJoinInfo(const amd_id& joinId) const
{
    auto read = mRead.find(joinId);
    if (read == mRead.end()) {
        std::optional<QEjoinInfo> info(std::in_place);
        if (!Read(mServices, joinId, *info))
            info.reset();
        read = mRead.emplace(joinId, std::move(info)).first;
    }
    return read->second ? &*read->second : nullptr;
}

std::vector<amd_id> JoinInfoReader::KeepReadableJoins(const std::vector<amd_id>& path) const
{
    std::vector<amd_id> readable;
    std::copy_if(path.begin(), path.end(), std::back_inserter(readable),
                 [this](const amd_id& join) { return LookUpJoinInfo(join) != nullptr; });
    return readable;
}

} // namespace qe
