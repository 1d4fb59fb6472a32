#ifndef ENGINE_GRAPH_SPANNING_SPANNINGTREECORE_H
#define ENGINE_GRAPH_SPANNING_SPANNINGTREECORE_H

#include "Engine/Graph/Core/GraphView.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

/// The part of a graph in which its first spanning trees differ: what all of them share is
/// contracted, what none of them uses is left out.
///
/// Of the edges outside a minimum spanning tree, only those with the K - 1 least best swaps can be
/// in one of the first K spanning trees, and only the K - 1 edges of the tree that are cheapest
/// to replace can be missing in one (Eppstein, Finding the k smallest spanning trees, 1992). So
/// at most 2K - 2 edges remain, whatever the size of the graph. O(m log m).
struct SpanningTreeCore
{
    std::uint32_t nodeCount = 0;
    /// What remains, in the order of the graph's edges. There are no self-loops.
    std::vector<Edge> edges;
    /// For each of `edges` its index in the graph.
    std::vector<EdgeIndex> originals;
    /// For each of `edges` whether the minimum spanning tree has it.
    std::vector<bool> isInTree;
    /// The graph's edges that all the trees have, in ascending order.
    std::vector<EdgeIndex> shared;
};

/// Finds the core for the first `bound` spanning trees. `tree` is the minimum spanning tree, in
/// ascending order; the graph is connected.
[[nodiscard]] SpanningTreeCore FindCore(const GraphView& graph, std::span<const EdgeIndex> tree,
                                        std::size_t bound);

} // namespace qe::graph

#endif
