// Answers for the search for all cheapest trees while that is not built in: one tree of
// least-weight paths, unproven. The search proper takes this definition's place when it is linked.

#include "Engine/Graph/GrownTree.h"
#include "Engine/Graph/ShortestPaths.h"
#include "Engine/Graph/Steiner/SteinerSolver.h"

#include <algorithm>

namespace qe::graph {

__attribute__((weak)) SteinerResult FindCheapestTrees(const GraphView& graph,
                                                      std::span<const NodeIndex> terminals,
                                                      const SteinerLimits& /*limits*/)
{
    SteinerResult result;
    std::vector<NodeIndex> sorted(terminals.begin(), terminals.end());
    std::sort(sorted.begin(), sorted.end());
    result.trees.emplace_back();
    if (!sorted.empty()) {
        if (!sorted.back().IsValid())
            return {};
        const ShortestPaths paths = ShortestPathSearch().Run(graph, sorted.front());
        for (const NodeIndex node : sorted) {
            if (!paths.Reaches(node))
                return {};
        }
        result.trees.front() = GrowTree(graph, paths, sorted).edges;
    }
    std::sort(result.trees.front().begin(), result.trees.front().end());
    for (const EdgeIndex edge : result.trees.front())
        result.weight += graph.GetEdge(edge).weight;
    result.connected = true;
    result.count = 1;
    result.proof = sorted.size() < 3 ? EProof::Optimal : EProof::BestFound;
    result.countProof = ECount::AtLeast;
    return result;
}

} // namespace qe::graph
