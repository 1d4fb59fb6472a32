#include "Toolkit/History/HistoryChoice.h"

#include "IdClass.h"
#include "Toolkit/Ask/KeyChoice.h"
#include "Toolkit/Ask/PathKeys.h"
#include "Toolkit/History/JoinHistory.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

/// Sums of logarithms are equal when they differ by less than a billionth, whatever the order in
/// which they were added.
constexpr double kLogarithmSteps = 1e9;
constexpr std::int64_t kRounding = 2;

/// How often the joins of a path were used.
struct PathUses
{
    std::int64_t logarithms = 0;
    /// What one more use of its rarest join would add; nothing when one of them was never used.
    std::int64_t nextUse = 0;
};

std::int64_t ToSteps(double logarithm)
{
    return std::llround(logarithm * kLogarithmSteps);
}

PathUses MeasureUses(const JoinHistory& history, const std::vector<amd_id>& path)
{
    double sum = 0;
    double least = std::numeric_limits<double>::max();
    for (const amd_id& join : path) {
        // What leads to a shortcut's target is no join that people write.
        if (join.classCode == IdClassShortcutJoin)
            continue;
        const auto uses = static_cast<double>(history.CountUses(join));
        sum += std::log1p(uses);
        least = std::min(least, uses);
    }
    return {ToSteps(sum), least == 0 ? 0 : ToSteps(std::log1p(1 / (1 + least)))};
}

/// Keeps the paths that people used most often, and those as good.
void KeepMostUsed(PathSieve& sieve, const JoinHistory& history, const Answer& answer)
{
    if (sieve.GetLeft().size() < 2)
        return;
    std::map<std::size_t, PathUses> uses;
    std::int64_t most = 0;
    for (const std::size_t position : sieve.GetLeft()) {
        const PathUses measured = MeasureUses(history, answer.alternatives[position].joins);
        uses.emplace(position, measured);
        most = std::max(most, measured.logarithms);
    }
    sieve.KeepLeast(decision::kPastQueries, [&](std::size_t position) {
        const PathUses& measured = uses.at(position);
        return measured.logarithms + measured.nextUse + kRounding >= most ? 0 : 1;
    });
}

} // namespace

PathChoice HistoryChoice::Choose(const model::Model& model, const Answer& answer) const
{
    return ChooseWithout(model, answer, std::nullopt);
}

PathChoice HistoryChoice::ChooseWithout(const model::Model& model, const Answer& answer,
                                        std::optional<std::size_t> without) const
{
    PathSieve sieve(CountLeastWeight(answer));
    sieve.KeepLeast({}, [&without](std::size_t position) { return position == without ? 1 : 0; });
    const auto pathOf = [&answer](std::size_t position) -> const std::vector<amd_id>& {
        return answer.alternatives[position].joins;
    };
    KeepMostUsed(sieve, *mHistory, answer);
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

namespace {

/// Returns the joins that are in the first path and not in the second, as the history knows them.
std::set<std::size_t> FindOwnJoins(const JoinHistory& history, const std::vector<amd_id>& path,
                                   const std::vector<amd_id>& other)
{
    std::set<std::size_t> joins;
    for (const amd_id& join : path)
        joins.insert(history.FindJoin(join));
    for (const amd_id& join : other)
        joins.erase(history.FindJoin(join));
    joins.erase(history.GetJoins().size());
    return joins;
}

std::size_t CountUses(const JoinHistory& history, const std::set<std::size_t>& joins)
{
    std::size_t uses = 0;
    for (const std::size_t join : joins)
        uses += history.GetJoins()[join].uses;
    return uses;
}

/// Adds the places of the queries that used one of the joins.
void ListQueries(const JoinHistory& history, const std::set<std::size_t>& joins,
                 std::string_view side, std::vector<std::string>& queries)
{
    for (const JoinHistory::Use& use : history.GetUses()) {
        const bool speaks =
            !use.isForgotten && std::any_of(use.joins.begin(), use.joins.end(),
                                            [&](auto join) { return joins.count(join) != 0; });
        if (speaks)
            queries.push_back(std::string(side) + use.place + (use.id.empty() ? "" : " ") + use.id +
                              (use.count == 1 ? "" : ", " + std::to_string(use.count) + " times"));
    }
}

} // namespace

std::optional<PastUse> HistoryChoice::FindPastUse(const model::Model& model, const Answer& answer,
                                                  EExplain explain) const
{
    if (!answer.chosen || CountLeastWeight(answer) < 2)
        return std::nullopt;
    const std::size_t next = ChooseWithout(model, answer, answer.chosen).position;
    const std::vector<amd_id>& chosen = answer.alternatives[*answer.chosen].joins;
    const std::vector<amd_id>& other = answer.alternatives[next].joins;
    const std::set<std::size_t> ofChosen = FindOwnJoins(*mHistory, chosen, other);
    const std::set<std::size_t> ofOther = FindOwnJoins(*mHistory, other, chosen);
    PastUse past{.chosen = CountUses(*mHistory, ofChosen), .other = CountUses(*mHistory, ofOther)};
    if (explain == EExplain::Yes) {
        ListQueries(*mHistory, ofChosen, "for: ", past.queries);
        ListQueries(*mHistory, ofOther, "against: ", past.queries);
    }
    return past;
}

} // namespace qe::tool
