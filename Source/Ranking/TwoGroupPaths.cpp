#include "Ranking/TwoGroupPaths.h"

#include <algorithm>

namespace qe {

TwoGroupPaths::TwoGroupPaths(const Lists& lists, const RefinerServices& services, int& resultWeight)
    : mServices(services),
      mCandidates{AUT_RefPtr<AQE_JoinTree>(), {}, lists.favouredJoins, lists.requiredJoins}
{
    resultWeight = -1;
    mCandidates.tree = AUT_RefPtr<AQE_JoinTree>(
        new AQE_JoinTree(services.gateway, lists.firstSet, lists.avoidedJoins, lists.secondSet,
                         lists.furtherAvoidedJoins, lists.favouredJoins, lists.requiredJoins,
                         lists.nodes, lists.joins, mCandidates.paths, resultWeight, mEndPairs,
                         services.governors, services.requestContext, services.shortcutInfo));
}

TwoGroupPaths::Ids TwoGroupPaths::Choose(const ChoiceRules& rules) const
{
    return ChoosePath(mCandidates, mServices, rules);
}

std::size_t TwoGroupPaths::GetIndex(const Ids& path) const
{
    const auto found = std::find(mCandidates.paths.begin(), mCandidates.paths.end(), path);
    return found == mCandidates.paths.end()
               ? 0
               : static_cast<std::size_t>(found - mCandidates.paths.begin());
}

std::vector<std::size_t> TwoGroupPaths::ChooseBest() const
{
    return ChooseBestPaths(mCandidates, mServices);
}

} // namespace qe
