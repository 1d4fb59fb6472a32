#include "Rules/RankingCriteria.h"

#include "Rules/PathMeasure.h"

#include <algorithm>
#include <array>
#include <vector>

namespace qe {

namespace {

using OptionalNumber = std::optional<std::int32_t>;

/// A many-to-many join stands for more facts than any path has, as it multiplies both its ends.
constexpr std::int32_t kManyToManyPenalty = 10000;
/// What a path counts for whose facts were not counted.
constexpr std::int32_t kUncountedFactTables = 1;

std::int32_t GetFactTableKey(const PathMeasure& measure)
{
    return AddWrapping(measure.factTables.value_or(kUncountedFactTables),
                       MultiplyWrapping(measure.manyToManyJoins, kManyToManyPenalty));
}

/// The branches count on top of the weight: that is the number which the log shows.
std::int32_t GetStraightnessKey(const PathMeasure& measure)
{
    return AddWrapping(measure.weight, measure.branches);
}

std::string WriteFactTables(const PathMeasure& measure)
{
    std::string text = measure.factTables ? std::to_string(*measure.factTables) : "?";
    if (measure.manyToManyJoins > 0)
        text += '+' + std::to_string(measure.manyToManyJoins) + " m:n";
    return text;
}

constexpr std::array kWeightFigures{PathFigure{
    .key = "weight",
    .label = "weight",
    .get = [](const PathMeasure& measure) { return OptionalNumber(measure.weight); },
}};

constexpr std::array kFactTableFigures{
    PathFigure{
        .key = "factTables",
        .label = "fact tables",
        .get = [](const PathMeasure& measure) { return measure.factTables; },
    },
    PathFigure{
        .key = "manyToManyJoins",
        .label = "",
        .get = [](const PathMeasure& measure) { return OptionalNumber(measure.manyToManyJoins); },
    },
};

constexpr std::array kStraightnessFigures{PathFigure{
    .key = "branches",
    .label = "branches",
    .get = [](const PathMeasure& measure) { return OptionalNumber(measure.branches); },
}};

/// In the order in which they count.
constexpr std::array kCriteria{
    RankingCriterion{
        .name = "weight",
        .logText = "Computed weight",
        .isOn = [](const RankingSwitches&) { return true; },
        .countsForBest = true,
        .measure = nullptr,
        .getKey = [](const PathMeasure& measure) { return measure.weight; },
        .column = "weight",
        .writeCell = [](const PathMeasure& measure) { return std::to_string(measure.weight); },
        .figures = kWeightFigures,
    },
    RankingCriterion{
        .name = "fact tables",
        .logText = "computed number of fact tables",
        .isOn = [](const RankingSwitches& switches) { return switches.useFactTableCount; },
        .countsForBest = true,
        .measure = CountFactTables,
        .getKey = GetFactTableKey,
        .column = "facts",
        .writeCell = WriteFactTables,
        .figures = kFactTableFigures,
    },
    RankingCriterion{
        .name = "straightness",
        .logText = "adjusted weight considering straightest path",
        .isOn = [](const RankingSwitches& switches) { return switches.useStraightestPath; },
        .countsForBest = false,
        .measure = CountBranches,
        .getKey = GetStraightnessKey,
        .column = "branches",
        .writeCell = [](const PathMeasure& measure) { return std::to_string(measure.branches); },
        .figures = kStraightnessFigures,
    },
};

} // namespace

std::span<const RankingCriterion> GetRankingCriteria()
{
    return kCriteria;
}

const RankingCriterion* FindDifference(const PathMeasure& first, const PathMeasure& second,
                                       const RankingSwitches& switches)
{
    const auto found =
        std::find_if(kCriteria.begin(), kCriteria.end(), [&](const RankingCriterion& criterion) {
            return criterion.isOn(switches) && criterion.getKey(first) != criterion.getKey(second);
        });
    return found == kCriteria.end() ? nullptr : &*found;
}

void MeasureByAll(std::span<const amd_id> path, const PathJoinSource& source, PathMeasure& measure)
{
    MeasureTools tools{.listener = source};
    std::vector<MeasuredJoin> joins;
    joins.reserve(path.size());
    for (const amd_id& id : path) {
        if (const auto join = source.ReadPathJoin(id))
            joins.push_back(tools.Prepare(*join));
    }
    for (const RankingCriterion& criterion : kCriteria) {
        if (criterion.measure != nullptr)
            criterion.measure(joins, tools, measure);
    }
}

} // namespace qe
