#include "Toolkit/Ask/Request.h"

#include "IdClass.h"
#include "Source/Rules/JoinEnds.h"

namespace qe::tool {

namespace {

int WeightOf(AQE_I_Refiner::EEdgeType type)
{
    return AQE_I_Refiner::GetEdgeWeightForType(type);
}

} // namespace

Request::Request(RequestBasis& basis, const ResolvedQuestion& resolved)
    : mBasis(basis),
      mCheapJoins(resolved.favouredJoins.begin(), resolved.favouredJoins.end()),
      mAvoidedJoins(resolved.avoidedJoins.begin(), resolved.avoidedJoins.end()),
      mFavouredSubjects(resolved.favouredSubjects.begin(), resolved.favouredSubjects.end())
{
    mCheapJoins.insert(resolved.requiredJoins.begin(), resolved.requiredJoins.end());
}

AUT_RefPtr<AQE_I_Refiner> Request::MakeRefiner(AQE_I_PathSelector* selector,
                                               const RankingSwitches& ranking)
{
    AUT_RefPtr<AQE_I_Refiner> refiner =
        AQE_I_Refiner::Create(&GetGateway(), selector, &GetGovernors(), &GetContext(),
                              ranking.useFactTableCount, ranking.useStraightestPath);
    refiner->SetShortcutInfo(&GetShortcutInfo());
    return refiner;
}

std::optional<AQE_I_Refiner::QEjoinInfo> Request::ReadJoin(const amd_id& join)
{
    AQE_I_Refiner::QEjoinInfo info;
    const bool isRead = join.classCode == IdClassShortcutJoin
                            ? GetShortcutInfo().GetJoinInfo(join, info)
                            : AQE_I_Refiner::GetJoinInfo(&GetGateway(), &GetContext(), join, info);
    if (!isRead)
        return std::nullopt;
    info.weight = GetWeight(info);
    return info;
}

int Request::GetWeight(const AQE_I_Refiner::QEjoinInfo& info)
{
    if (mAvoidedJoins.count(info.joinId) != 0)
        return WeightOf(AQE_I_Refiner::EdgeTypeNone);
    if (info.joinId.classCode == IdClassShortcutJoin)
        return info.weight;
    if (mCheapJoins.count(info.joinId) != 0)
        return WeightOf(AQE_I_Refiner::EdgeTypeRelationship136);
    const auto resolve = [this](const amd_id& shortcut) {
        return AQE_I_Refiner::GetRefQuerySubject(&GetGateway(), shortcut, nullptr, nullptr);
    };
    return AdjustJoinWeight(
        {.ends = {.left = info.leftQuerySubject, .right = info.rightQuerySubject},
         .weight = info.weight},
        {mFavouredSubjects, resolve},
        {.oneEnd = WeightOf(AQE_I_Refiner::EdgeTypeOneEndInSet),
         .bothEnds = WeightOf(AQE_I_Refiner::EdgeTypeBothEndsInSet)});
}

} // namespace qe::tool
