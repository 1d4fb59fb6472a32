#ifndef SOURCE_RULES_RANKINGCRITERIA_H
#define SOURCE_RULES_RANKINGCRITERIA_H

#include "Rules/PathMeasure.h"
#include "amd_id.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace qe {

/// What the caller of a ranking turns on beside the weight.
struct RankingSwitches
{
    bool useFactTableCount = false;
    bool useStraightestPath = false;
};

/// One number about a path that answers show.
struct PathFigure
{
    /// Its key in JSON.
    std::string_view key;
    /// What running text calls it; empty for what running text leaves out.
    std::string_view label;
    /// Returns the number, or nothing when it is not known.
    std::optional<std::int32_t> (*get)(const PathMeasure& measure);
};

/// One of the criteria by which paths are ranked.
struct RankingCriterion
{
    /// What it is called where an answer names the criterion that decided, such as "fact tables".
    std::string_view name;
    /// The text of the ranking's log in front of the key.
    std::string_view logText;
    /// Returns whether a ranking goes by it. Where it does not, paths are not measured by it, and
    /// all have the same key among equals of the criteria before.
    bool (*isOn)(const RankingSwitches& switches);
    /// Whether the best paths are equal in it, whatever the switches say.
    bool countsForBest;
    /// Measures the path; null for the weight, which comes with the path.
    void (*measure)(MeasuredJoins joins, MeasureTools& tools, PathMeasure& measure);
    /// Returns what paths are ordered by, ascending. Keys wrap around at 32 bits.
    std::int32_t (*getKey)(const PathMeasure& measure);
    /// The head of its column in a table of paths, and what a cell of that column holds.
    std::string_view column;
    std::string (*writeCell)(const PathMeasure& measure);
    /// The numbers behind it, for what shows each by itself.
    std::span<const PathFigure> figures;
};

/// Returns the criteria in the order in which they count: a later one decides among the equals of
/// those before it. What is equal in all of them comes in the order of the names of its joins, and
/// then in the order in which it was found.
[[nodiscard]] std::span<const RankingCriterion> GetRankingCriteria();

/// Returns the first criterion in which the two paths differ; null when they are equal in all that
/// are on.
[[nodiscard]] const RankingCriterion* FindDifference(const PathMeasure& first,
                                                     const PathMeasure& second,
                                                     const RankingSwitches& switches);

/// Sets everything that the criteria measure. The weight stays.
void MeasureByAll(std::span<const amd_id> path, const PathJoinSource& source, PathMeasure& measure);

} // namespace qe

#endif
