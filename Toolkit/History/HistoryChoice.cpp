#include "Toolkit/History/HistoryChoice.h"

#include "Toolkit/Ask/KeyChoice.h"
#include "Toolkit/Ask/PathKeys.h"
#include "Toolkit/History/JoinHistory.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

/// Sums of logarithms are equal when they differ by less than a billionth, whatever the order in
/// which they were added.
constexpr double kLogarithmSteps = 1e9;

std::int64_t MeasureUses(const JoinHistory& history, const std::vector<amd_id>& path)
{
    double sum = 0;
    for (const amd_id& join : path)
        sum += std::log1p(static_cast<double>(history.CountUses(join)));
    return std::llround(sum * kLogarithmSteps);
}

} // namespace

PathChoice HistoryChoice::Choose(const model::Model& model, const Answer& answer) const
{
    PathSieve sieve(CountLeastWeight(answer));
    const auto pathOf = [&answer](std::size_t position) -> const std::vector<amd_id>& {
        return answer.alternatives[position].joins;
    };
    sieve.KeepLeast(decision::kPastQueries, [&](std::size_t position) {
        return -MeasureUses(*mHistory, pathOf(position));
    });
    sieve.KeepLeast(decision::kWalksToMany, [&](std::size_t position) {
        return CountWalksToMany(answer, pathOf(position));
    });
    KeyMeasures measures(model, answer);
    KeepBestKeys(sieve, answer, measures);
    sieve.KeepLeast(decision::kReferringTables, [&](std::size_t position) {
        return measures.Measure(pathOf(position)).referringTables;
    });
    sieve.KeepLeast(decision::kPositions, [&](std::size_t position) {
        return measures.Measure(pathOf(position)).positions;
    });
    return sieve.Take();
}

std::optional<PastUse> HistoryChoice::FindPastUse(const Answer& /*answer*/,
                                                  EExplain /*explain*/) const
{
    return std::nullopt;
}

} // namespace qe::tool
