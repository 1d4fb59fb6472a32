#include "Tests/Fuzz/RefinerRun.h"

#include "AQE_JoinCache.h"
#include "HBNException.h"
#include "ORVAssertError.h"

namespace qe::test {

std::uint32_t
RefinerRun::Selector::SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& /*all*/)
{
    return mChoice;
}

std::uint32_t
RefinerRun::Selector::SelectAlternative(const std::vector<std::vector<amd_id>>& /*all*/)
{
    return mChoice;
}

RefinerRun::RefinerRun(const RefinerCase& input)
    : mCase(input),
      mGateway(input.model),
      mGovernors(input.governors),
      mShortcutGovernors(input.shortcutGovernors),
      mContext(input.command),
      mSelector(input.choice.value_or(0)),
      mShortcutInfo(
          AQE_I_QuerySubjectShortcutInfo::Create(&mGateway, &mShortcutGovernors, &mContext)),
      mRefiner(AQE_I_Refiner::Create(&mGateway, input.choice ? &mSelector : nullptr,
                                     mGovernors ? &*mGovernors : nullptr, &mContext,
                                     input.useFactTableCount, input.useStraightestPath))
{
    if (!input.hasCache)
        return;
    mContext.SetJoinCache(std::make_unique<AQE_JoinCache>());
    for (const auto& [join, weight] : input.weights) {
        AQE_I_Refiner::QEjoinInfo info;
        if (AQE_I_Refiner::GetJoinInfo(&mGateway, nullptr, join, info)) {
            info.weight = weight;
            mContext.GetJoinCache()->CacheJoinInfo(join, info);
        }
    }
}

RefinerOutcome RefinerRun::Do(ERefinerOperation operation)
{
    RefinerOutcome outcome;
    mRefiner->SetShortcutInfo(mCase.hasShortcutInfo ? mShortcutInfo.get() : nullptr);
    try {
        Call(operation, outcome);
    } catch (const HBNException& error) {
        outcome.failure = error.GetCode();
    } catch (const ORVAssertError& error) {
        outcome.failure = error.GetLocation().line;
    }
    outcome.warnings = mContext.GetUserMessages().size();
    return outcome;
}

void RefinerRun::Call(ERefinerOperation operation, RefinerOutcome& outcome)
{
    const auto& [subjects, second, favoured, required, avoided, further, nodes, joins,
                 favouredSubjects] = mCase.lists;
    switch (operation) {
    case ERefinerOperation::JoinPath:
        mRefiner->ComputeJoinPath(subjects, favoured, required, nodes, joins, favouredSubjects,
                                  outcome.path);
        break;
    case ERefinerOperation::JoinedSubjects:
        mRefiner->GetJoinedQuerySubjects(subjects, nodes, joins, outcome.path);
        break;
    case ERefinerOperation::PathBetween: {
        Ids ends;
        mRefiner->ComputeJoinPathBetween(subjects, avoided, second, further, favoured, required,
                                         nodes, joins, outcome.path, outcome.weight, ends);
        if (!ends.empty())
            outcome.ends.emplace_back(ends.at(0), ends.at(1));
        break;
    }
    case ERefinerOperation::BestPaths:
        outcome.result = mRefiner->ComputeBestJoinPaths(subjects, favoured, required, nodes, joins,
                                                        outcome.paths, avoided, favouredSubjects);
        break;
    case ERefinerOperation::BestPathsBetween:
        mRefiner->ComputeBestJoinPathsBetween(subjects, avoided, second, further, favoured,
                                              required, nodes, joins, outcome.paths, outcome.weight,
                                              outcome.ends);
        break;
    case ERefinerOperation::TreeJoins:
        outcome.result = mRefiner->GetJoinTreeJoins(&mGateway, subjects, favoured, required, nodes,
                                                    joins, mGovernors ? &*mGovernors : nullptr,
                                                    &mContext, &avoided, outcome.path);
        break;
    }
}

std::optional<AQE_I_Refiner::QEjoinInfo> RefinerRun::ReadJoin(const amd_id& join)
{
    AQE_I_Refiner::QEjoinInfo info;
    if (AQE_I_Refiner::GetJoinInfo(&mGateway, &mContext, join, info))
        return info;
    return std::nullopt;
}

amd_id RefinerRun::FindQuerySubject(const amd_id& id)
{
    return AQE_I_Refiner::GetRefQuerySubject(&mGateway, id, nullptr, nullptr);
}

std::vector<AQE_I_Refiner::QEjoinInfo> RefinerRun::GetShortcutJoins()
{
    if (!mCase.hasShortcutInfo)
        return {};
    const Lists& lists = mCase.lists;
    mShortcutInfo->Initialize(lists.nodes, lists.joins, lists.requiredJoins);
    return mShortcutInfo->GetShortcutJoins();
}

} // namespace qe::test
