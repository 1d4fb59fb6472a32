#include "Rules/PathMeasure.h"

#include <map>

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

void CountFactTables(std::span<const amd_id> path, const PathJoinSource& source,
                     PathMeasure& measure)
{
    FactGraph graph;
    bool isCountable = true;
    measure.factTables.reset();
    measure.manyToManyJoins = 0;
    for (const amd_id& id : path) {
        const auto join = source.ReadPathJoin(id);
        if (!join)
            continue;
        const bool isManyToMany = IsManyToMany(join->leftCardinality, join->rightCardinality);
        measure.manyToManyJoins += isManyToMany ? 1 : 0;
        if (!isCountable)
            continue;
        const EFactJoin added = AddToGraph(graph, *join, isManyToMany);
        isCountable = added == EFactJoin::Added;
        if (!isCountable)
            source.ReportUncountable(added);
    }
    if (isCountable)
        measure.factTables = static_cast<std::int32_t>(graph.GetRoots().size());
}

void CountBranches(std::span<const amd_id> path, const PathJoinSource& source, PathMeasure& measure)
{
    std::map<amd_id, std::int32_t> endCounts;
    for (const amd_id& id : path) {
        if (const auto join = source.ReadPathJoin(id)) {
            ++endCounts[join->ends.left];
            ++endCounts[join->ends.right];
        }
    }
    measure.branches = 0;
    for (const auto& subject : endCounts) {
        if (subject.second > 2)
            measure.branches = AddWrapping(measure.branches, subject.second - 2);
    }
}

} // namespace qe
