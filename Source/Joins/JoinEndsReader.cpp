#include "Joins/JoinEndsReader.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "Rules/FavouredWeight.h"

namespace qe {

JoinEndsReader::JoinEndsReader(amdi_gateway* gateway, AQE_RequestContext* requestContext,
                               AQE_I_QuerySubjectShortcutInfo* shortcutInfo,
                               const std::set<amd_id>& favouredSubjects)
    : mGateway(gateway),
      mRequestContext(requestContext),
      mShortcutInfo(shortcutInfo),
      mFavouredSubjects(favouredSubjects)
{}

std::optional<JoinEnds> JoinEndsReader::GetJoinEnds(const amd_id& join,
                                                    EShortcutUse shortcutUse) const
{
    const auto read = Read(join, shortcutUse);
    if (!read)
        return std::nullopt;
    return read->ends;
}

std::optional<WeighedJoin> JoinEndsReader::GetWeighedJoin(const amd_id& join,
                                                          EShortcutUse shortcutUse) const
{
    auto read = Read(join, shortcutUse);
    if (!read)
        return read;
    const auto resolve = [this](const amd_id& shortcut) {
        return AQE_I_Refiner::GetRefQuerySubject(mGateway, shortcut, nullptr, nullptr);
    };
    read->weight = ApplyFavour(
        *read, {mFavouredSubjects, resolve},
        {.oneEnd = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeOneEndInSet),
         .bothEnds = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeBothEndsInSet)});
    return read;
}

std::optional<WeighedJoin> JoinEndsReader::Read(const amd_id& join, EShortcutUse shortcutUse) const
{
    AQE_I_Refiner::QEjoinInfo info;
    bool known = AQE_I_Refiner::GetJoinInfo(mGateway, mRequestContext, join, info);
    if (!known && shortcutUse == EShortcutUse::Consult && mShortcutInfo != nullptr)
        known = mShortcutInfo->GetJoinInfo(join, info);
    if (!known)
        return std::nullopt;
    return WeighedJoin{{info.leftQuerySubject, info.rightQuerySubject}, info.weight};
}

} // namespace qe
