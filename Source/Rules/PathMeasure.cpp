#include "Rules/PathMeasure.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace qe {

MeasuredJoin MeasureTools::Prepare(const PathJoin& join)
{
    constexpr std::int32_t kOne = BMT_I_Association::CardinalityOne;
    const bool isManyToMany = IsManyToMany(join.leftCardinality, join.rightCardinality);
    const MeasuredJoin prepared{
        .left = {.subject = graph.GetNumber(join.ends.left),
                 .maximum = isManyToMany ? kOne : join.leftCardinality.maximum},
        .right = {.subject = graph.GetNumber(join.ends.right),
                  .maximum = isManyToMany ? kOne : join.rightCardinality.maximum},
        .isManyToMany = isManyToMany};
    endCounts.resize(graph.GetNumberCount(), 0);
    return prepared;
}

void CountFactTables(MeasuredJoins joins, MeasureTools& tools, PathMeasure& measure)
{
    FactGraph& graph = tools.graph;
    graph.Clear();
    bool isCountable = true;
    measure.factTables.reset();
    measure.manyToManyJoins = 0;
    for (const MeasuredJoin& join : joins) {
        measure.manyToManyJoins += join.isManyToMany ? 1 : 0;
        if (!isCountable)
            continue;
        const EFactJoin added = graph.AddJoin(join.left, join.right);
        isCountable = added == EFactJoin::Added;
        if (!isCountable)
            tools.listener.ReportUncountable(added);
    }
    if (isCountable)
        measure.factTables = static_cast<std::int32_t>(graph.GetRoots().size());
}

void CountBranches(MeasuredJoins joins, MeasureTools& tools, PathMeasure& measure)
{
    std::vector<std::int32_t>& counts = tools.endCounts;
    measure.branches = 0;
    for (const MeasuredJoin& join : joins) {
        measure.branches += ++counts[join.left.subject] > 2 ? 1 : 0;
        measure.branches += ++counts[join.right.subject] > 2 ? 1 : 0;
    }
    for (const MeasuredJoin& join : joins) {
        counts[join.left.subject] = 0;
        counts[join.right.subject] = 0;
    }
}

} // namespace qe
