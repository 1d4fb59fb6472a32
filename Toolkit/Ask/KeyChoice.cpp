#include "Toolkit/Ask/KeyChoice.h"

#include "Toolkit/Ask/PathKeys.h"

#include <algorithm>
#include <cstddef>
#include <map>

namespace qe::tool {

std::size_t CountLeastWeight(const Answer& answer)
{
    const auto isHeavier = [&answer](const Alternative& alternative) {
        return alternative.weight != answer.alternatives.front().weight;
    };
    const auto end =
        std::find_if(answer.alternatives.begin(), answer.alternatives.end(), isHeavier);
    return static_cast<std::size_t>(end - answer.alternatives.begin());
}

void KeepBestRanked(PathSieve& sieve, const Answer& answer, const RankingSwitches& ranking)
{
    if (sieve.GetLeft().size() < 2)
        return;
    const Alternative& best = answer.alternatives[sieve.GetLeft().front()];
    std::string_view criterion;
    const auto differs = [&](std::size_t position) {
        const RankingCriterion* const difference =
            FindDifference(best, answer.alternatives[position], ranking);
        if (difference != nullptr)
            criterion = difference->name;
        return difference == nullptr ? 0 : 1;
    };
    for (const std::size_t position : sieve.GetLeft())
        static_cast<void>(differs(position));
    sieve.KeepLeast(criterion, differs);
}

void KeepBestKeys(PathSieve& sieve, const Answer& answer, KeyMeasures& measures)
{
    if (sieve.GetLeft().size() < 2)
        return;
    std::map<std::size_t, PathKeys> keys;
    for (const std::size_t position : sieve.GetLeft())
        keys.emplace(position, measures.Measure(answer.alternatives[position].joins));
    const auto keep = [&](auto measure) {
        sieve.KeepLeast(decision::kKeys, [&keys, measure](std::size_t position) {
            return measure(keys.at(position));
        });
    };
    keep([](const PathKeys& path) { return path.differingWords; });
    keep([](const PathKeys& path) { return -path.pairs; });
    keep([](const PathKeys& path) { return path.optionalJoins; });
}

PathChoice ChooseByKeys(const model::Model& model, const Answer& answer,
                        const RankingSwitches& ranking)
{
    PathSieve sieve(CountLeastWeight(answer));
    if (sieve.GetLeft().size() < 2)
        return {};
    KeyMeasures measures(model, answer);
    KeepBestKeys(sieve, answer, measures);
    KeepBestRanked(sieve, answer, ranking);
    sieve.KeepLeast(decision::kPositions, [&](std::size_t position) {
        return measures.Measure(answer.alternatives[position].joins).positions;
    });
    return sieve.Take();
}

} // namespace qe::tool
