#include "Toolkit/Ask/Request.h"

#include "AQE_JoinCache.h"
#include "IdClass.h"
#include "Source/Rules/JoinEnds.h"
#include "Toolkit/Model/ToolModel.h"

namespace qe::tool {

namespace {

AQE_Governors ChooseGovernors(const AQE_Governors& ofModel, const GovernorChoice& choice)
{
    AQE_Governors governors = ofModel;
    governors.crossProductAllowed = choice.crossProduct.value_or(ofModel.crossProductAllowed);
    governors.shortcutGrouping = choice.grouping.value_or(ofModel.shortcutGrouping);
    return governors;
}

int WeightOf(AQE_I_Refiner::EEdgeType type)
{
    return AQE_I_Refiner::GetEdgeWeightForType(type);
}

} // namespace

Request::Request(const ToolModel& model, const Question& question, const ResolvedQuestion& resolved)
    : mResolved(resolved),
      mUserClasses(model.userClasses),
      mGateway(model.model),
      mGovernors(ChooseGovernors(model.governors, question.governors)),
      mContext(question.commandType),
      mShortcutInfo(AQE_I_QuerySubjectShortcutInfo::Create(&mGateway, &mGovernors, &mContext)),
      mCheapJoins(resolved.favouredJoins.begin(), resolved.favouredJoins.end()),
      mAvoidedJoins(resolved.avoidedJoins.begin(), resolved.avoidedJoins.end()),
      mFavouredSubjects(resolved.favouredSubjects.begin(), resolved.favouredSubjects.end())
{
    mContext.SetJoinCache(std::make_unique<AQE_JoinCache>());
    mContext.SetAuthentication(&mUserClasses);
    mCheapJoins.insert(resolved.requiredJoins.begin(), resolved.requiredJoins.end());
}

Request::~Request() = default;

AQE_I_QuerySubjectShortcutInfo& Request::GetShortcutInfo()
{
    if (!mShortcutsAreBuilt) {
        mShortcutInfo->Initialize(mResolved.nodes, mResolved.joins, mResolved.requiredJoins);
        mShortcutsAreBuilt = true;
    }
    return *mShortcutInfo;
}

AUT_RefPtr<AQE_I_Refiner> Request::MakeRefiner(AQE_I_PathSelector* selector,
                                               const RankingSwitches& ranking)
{
    AUT_RefPtr<AQE_I_Refiner> refiner =
        AQE_I_Refiner::Create(&mGateway, selector, &mGovernors, &mContext,
                              ranking.useFactTableCount, ranking.useStraightestPath);
    refiner->SetShortcutInfo(mShortcutInfo.get());
    return refiner;
}

std::optional<AQE_I_Refiner::QEjoinInfo> Request::ReadJoin(const amd_id& join)
{
    AQE_I_Refiner::QEjoinInfo info;
    const bool isRead = join.classCode == IdClassShortcutJoin
                            ? GetShortcutInfo().GetJoinInfo(join, info)
                            : AQE_I_Refiner::GetJoinInfo(&mGateway, &mContext, join, info);
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
        return AQE_I_Refiner::GetRefQuerySubject(&mGateway, shortcut, nullptr, nullptr);
    };
    return AdjustJoinWeight(
        {.ends = {.left = info.leftQuerySubject, .right = info.rightQuerySubject},
         .weight = info.weight},
        {mFavouredSubjects, resolve},
        {.oneEnd = WeightOf(AQE_I_Refiner::EdgeTypeOneEndInSet),
         .bothEnds = WeightOf(AQE_I_Refiner::EdgeTypeBothEndsInSet)});
}

} // namespace qe::tool
