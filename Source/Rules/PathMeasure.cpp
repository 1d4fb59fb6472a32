#include "Rules/PathMeasure.h"

#include <algorithm>
#include <vector>

namespace qe {
namespace {

/// The fact graph takes no many-to-many joins; they are counted apart.
EFactJoin AddToGraph(FactGraph& graph, const PathJoin& join, bool isManyToMany)
{
    constexpr std::int32_t kOne = BMT_I_Association::CardinalityOne;
    return graph.AddJoin({join.ends.left, isManyToMany ? kOne : join.leftCardinality.maximum},
                         {join.ends.right, isManyToMany ? kOne : join.rightCardinality.maximum});
}

} // namespace

void CountFactTables(ReadJoins joins, MeasureTools& tools, PathMeasure& measure)
{
    FactGraph& graph = tools.graph;
    graph.Clear();
    bool isCountable = true;
    measure.factTables.reset();
    measure.manyToManyJoins = 0;
    for (const PathJoin* const join : joins) {
        const bool isManyToMany = IsManyToMany(join->leftCardinality, join->rightCardinality);
        measure.manyToManyJoins += isManyToMany ? 1 : 0;
        if (!isCountable)
            continue;
        const EFactJoin added = AddToGraph(graph, *join, isManyToMany);
        isCountable = added == EFactJoin::Added;
        if (!isCountable)
            tools.listener.ReportUncountable(added);
    }
    if (isCountable)
        measure.factTables = static_cast<std::int32_t>(graph.GetRoots().size());
}

void CountBranches(ReadJoins joins, MeasureTools& /*tools*/, PathMeasure& measure)
{
    std::vector<amd_id> ends;
    ends.reserve(2 * joins.size());
    for (const PathJoin* const join : joins) {
        ends.push_back(join->ends.left);
        ends.push_back(join->ends.right);
    }
    std::sort(ends.begin(), ends.end());
    // Equal ends stand together: each that has two like it before it is one too many.
    measure.branches = 0;
    for (std::size_t i = 2; i < ends.size(); ++i)
        measure.branches += ends[i] == ends[i - 2] ? 1 : 0;
}

} // namespace qe
