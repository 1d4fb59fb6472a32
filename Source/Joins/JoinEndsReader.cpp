#include "Joins/JoinEndsReader.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "Rules/FavouredWeight.h"

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

std::optional<WeighedJoin> JoinEndsReader::GetWeighedJoin(const amd_id& join) const
{
    auto read = Read(join);
    if (!read)
        return read;
    const auto resolve = [this](const amd_id& shortcut) {
        return AQE_I_Refiner::GetRefQuerySubject(mServices.gateway, shortcut, nullptr, nullptr);
    };
    read->weight = AdjustJoinWeight(
        *read, {mFavouredSubjects, resolve},
        {.oneEnd = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeOneEndInSet),
         .bothEnds = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeBothEndsInSet)});
    return read;
}

std::optional<WeighedJoin> JoinEndsReader::Read(const amd_id& join) const
{
    AQE_I_Refiner::QEjoinInfo info;
    bool known =
        AQE_I_Refiner::GetJoinInfo(mServices.gateway, mServices.requestContext, join, info);
    if (!known && mShortcutUse == EShortcutUse::Consult && mServices.shortcutInfo != nullptr)
        known = mServices.shortcutInfo->GetJoinInfo(join, info);
    if (!known)
        return std::nullopt;
    return WeighedJoin{.ends = {.left = info.leftQuerySubject, .right = info.rightQuerySubject},
                       .weight = info.weight};
}

} // namespace qe
