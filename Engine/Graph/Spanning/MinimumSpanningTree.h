#ifndef ENGINE_GRAPH_SPANNING_MINIMUMSPANNINGTREE_H
#define ENGINE_GRAPH_SPANNING_MINIMUMSPANNINGTREE_H

#include "Engine/Graph/Core/GraphView.h"

#include <span>
#include <vector>

namespace qe::graph {

/// Returns the edges that are no self-loops in ascending order of (weight, index): O(m log m).
[[nodiscard]] std::vector<EdgeIndex> SortByWeight(std::span<const Edge> edges);

/// Returns a minimum spanning tree of each connected part, as edges in ascending order, by
/// Kruskal's algorithm (1956): O(m log m). Of several, it is the one whose ascending edges come
/// first when they are compared one after the other.
[[nodiscard]] std::vector<EdgeIndex> FindMinimumSpanningTree(const GraphView& graph);

} // namespace qe::graph

#endif
