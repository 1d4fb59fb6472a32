#ifndef ENGINE_GRAPH_SPANNING_GROWNTREE_H
#define ENGINE_GRAPH_SPANNING_GROWNTREE_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Core/ShortestPaths.h"

#include <span>
#include <vector>

namespace qe::graph {

/// A tree in the order in which it grew: edges[k] reaches nodes[k + 1] from an earlier node.
struct GrownTree
{
    std::vector<NodeIndex> nodes;
    std::vector<EdgeIndex> edges;
};

/// Grows a tree from the source of `paths`: the path to each target in turn is added, from where
/// it leaves the tree. Targets that cannot be reached are passed over. Takes time proportional
/// to the number of targets and the tree, and n bits of memory.
[[nodiscard]] GrownTree GrowTree(const GraphView& graph, const ShortestPaths& paths,
                                 std::span<const NodeIndex> targets);

/// Puts the edges of a tree into an order in which each touches `start` or an edge before it: at
/// every step the lowest edge that does. O(t log t) for t edges.
[[nodiscard]] std::vector<EdgeIndex> OrderFrom(const GraphView& graph, NodeIndex start,
                                               std::span<const EdgeIndex> tree);

} // namespace qe::graph

#endif
