#include "Ranking/PathChoice.h"

#include "AQE_I_PathSelector.h"
#include "Joins/JoinInfoReader.h"
#include "Joins/RaiseFailure.h"
#include "Ranking/BestPaths.h"
#include "Ranking/PathWeigher.h"

#include <cstdint>

namespace qe {

namespace {

using Descriptors = std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>;

constexpr std::uint32_t kWrongChoice = 0xA9EC593C;

std::vector<std::int32_t> WeighPaths(const CandidatePaths& candidates,
                                     const RefinerServices& services)
{
    PathWeigher weigher(services, *candidates.tree, candidates.favouredJoins,
                        candidates.requiredJoins);
    std::vector<std::int32_t> weights;
    weights.reserve(candidates.paths.size());
    for (const auto& path : candidates.paths)
        weights.push_back(weigher.ComputePathWeight(path));
    return weights;
}

Descriptors RankCandidates(const CandidatePaths& candidates, const RefinerServices& services,
                           const RankingCriteria& criteria)
{
    const std::vector<std::int32_t> weights = WeighPaths(candidates, services);
    std::vector<WeightedPath> weightedPaths;
    weightedPaths.reserve(weights.size());
    for (std::size_t index = 0; index < weights.size(); ++index)
        weightedPaths.push_back({candidates.paths[index], weights[index]});
    Descriptors descriptors;
    RankPaths(weightedPaths, criteria, JoinInfoReader(services), descriptors);
    return descriptors;
}

/// Gives the position that the selector chooses; the first without a selector.
std::size_t SelectDescriptor(const Descriptors& descriptors, const ChoiceRules& rules)
{
    if (rules.selector == nullptr)
        return 0;
    if (!descriptors.empty()) {
        const std::size_t index = rules.selector->SelectPath(descriptors);
        if (index < descriptors.size())
            return index;
    }
    RaiseFailure({.severity = 1,
                  .code = 1,
                  .messageNumber = kWrongChoice,
                  .parameters = {},
                  .sourcePath = "Source/Refiner",
                  .sourceLine = rules.failureLine});
    return 0;
}

} // namespace

std::vector<amd_id> ChoosePath(const CandidatePaths& candidates, const RefinerServices& services,
                               const ChoiceRules& rules)
{
    if (candidates.paths.size() == 1)
        return candidates.paths.front();
    const Descriptors descriptors = RankCandidates(candidates, services, rules.criteria);
    std::vector<amd_id> chosen;
    descriptors[SelectDescriptor(descriptors, rules)]->GetJoinPath(chosen);
    return chosen;
}

std::vector<std::size_t> ChooseBestPaths(const CandidatePaths& candidates,
                                         const RefinerServices& services)
{
    return SelectBestPaths(candidates.paths, WeighPaths(candidates, services),
                           JoinInfoReader(services));
}

} // namespace qe
