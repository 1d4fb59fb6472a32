#ifndef ENGINE_GRAPH_SPANNING_MINIMUMSPANNINGTREE_H
#define ENGINE_GRAPH_SPANNING_MINIMUMSPANNINGTREE_H

#include "Engine/Graph/Core/GraphView.h"

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace qe::graph {

/// Returns the edges that are no self-loops in ascending order of (weight, index): O(m log m).
[[nodiscard]] std::vector<EdgeIndex> SortByWeight(std::span<const Edge> edges);

/// Returns a minimum spanning tree of each connected part, as edges in ascending order, by
/// Kruskal's algorithm (1956): O(m log m). Of several, it is the one whose ascending edges come
/// first when they are compared one after the other.
[[nodiscard]] std::vector<EdgeIndex> FindMinimumSpanningTree(const GraphView& graph);

/// A forest to which edges are added in the order of their steps, and which then finds the last
/// step on the path between two nodes in O(log n): union by size without path compression, each
/// node remembering the step at which its set was put under another.
class BottleneckForest
{
public:
    static constexpr std::uint32_t kNotConnected = std::numeric_limits<std::uint32_t>::max();

    explicit BottleneckForest(std::uint32_t nodeCount) { Reset(nodeCount); }

    /// Takes out all edges.
    void Reset(std::uint32_t nodeCount);

    /// Adds an edge at a step not before that of the edge added last; returns false, and adds
    /// nothing, when it would close a cycle.
    bool Unite(std::uint32_t left, std::uint32_t right, std::uint32_t step);

    /// Returns the greatest step on the path between two different nodes; kNotConnected when there
    /// is none.
    [[nodiscard]] std::uint32_t FindLastStep(std::uint32_t left, std::uint32_t right) const;

private:
    [[nodiscard]] std::uint32_t FindRoot(std::uint32_t node) const;

    struct Node
    {
        std::uint32_t parent;
        std::uint32_t step;
        std::uint32_t size;
    };
    std::vector<Node> mNodes;
};

} // namespace qe::graph

#endif
