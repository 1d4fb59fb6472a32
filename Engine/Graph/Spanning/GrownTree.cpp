#include "Engine/Graph/Spanning/GrownTree.h"

#include <algorithm>
#include <functional>
#include <queue>
#include <utility>

namespace qe::graph {

GrownTree GrowTree(const GraphView& graph, const ShortestPaths& paths,
                   std::span<const NodeIndex> targets)
{
    GrownTree tree{{paths.source}, {}};
    std::vector<bool> isInTree(graph.GetNodeCount(), false);
    isInTree[paths.source.value] = true;
    std::vector<NodeIndex> branch;
    for (const NodeIndex target : targets) {
        if (!paths.Reaches(target))
            continue;
        branch.clear();
        for (NodeIndex node = target; !isInTree[node.value];
             node = paths.GetPrevious(graph, node)) {
            isInTree[node.value] = true;
            branch.push_back(node);
        }
        for (auto node = branch.rbegin(); node != branch.rend(); ++node) {
            tree.nodes.push_back(*node);
            tree.edges.push_back(paths.lastEdges[*node]);
        }
    }
    return tree;
}

namespace {

using Incidence = std::pair<NodeIndex, EdgeIndex>;

std::vector<Incidence> ListIncidences(const GraphView& graph, std::span<const EdgeIndex> tree)
{
    std::vector<Incidence> incidences;
    incidences.reserve(2 * tree.size());
    for (const EdgeIndex edge : tree) {
        incidences.emplace_back(graph.GetEdge(edge).end1, edge);
        incidences.emplace_back(graph.GetEdge(edge).end2, edge);
    }
    std::sort(incidences.begin(), incidences.end());
    return incidences;
}

} // namespace

std::vector<EdgeIndex> OrderFrom(const GraphView& graph, NodeIndex start,
                                 std::span<const EdgeIndex> tree)
{
    const std::vector<Incidence> incidences = ListIncidences(graph, tree);
    // Edges that touch what is ordered, with the node that each of them leads to.
    std::priority_queue<std::pair<EdgeIndex, NodeIndex>,
                        std::vector<std::pair<EdgeIndex, NodeIndex>>, std::greater<>>
        frontier;
    const auto enter = [&](NodeIndex node, EdgeIndex by) {
        auto at = std::lower_bound(incidences.begin(), incidences.end(), Incidence(node, {0}));
        for (; at != incidences.end() && at->first == node; ++at) {
            const Edge& edge = graph.GetEdge(at->second);
            if (at->second != by)
                frontier.emplace(at->second, edge.end1 == node ? edge.end2 : edge.end1);
        }
    };
    std::vector<EdgeIndex> ordered;
    ordered.reserve(tree.size());
    enter(start, {});
    while (!frontier.empty()) {
        const auto [edge, node] = frontier.top();
        frontier.pop();
        ordered.push_back(edge);
        enter(node, edge);
    }
    return ordered;
}

} // namespace qe::graph
