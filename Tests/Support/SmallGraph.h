#ifndef TESTS_SUPPORT_SMALLGRAPH_H
#define TESTS_SUPPORT_SMALLGRAPH_H

#include "AQE_I_UndirectedGraph.h"
#include "AUT_RefPtr.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <random>
#include <vector>

namespace qe::test {

/// A multigraph of up to twelve nodes, small enough to try every set of its edges. Index order is
/// id order.
struct SmallGraph
{
    struct Edge
    {
        std::size_t end1;
        std::size_t end2;
        int weight;
    };

    /// Ascending edge indices.
    using EdgeSet = std::vector<std::size_t>;

    /// What connects the terminals at least weight: all minimum Steiner trees, whose leaves are
    /// terminals, by number of edges, then by their edges.
    struct Trees
    {
        std::int64_t weight = 0;
        std::vector<EdgeSet> trees;
    };

    /// Draws a graph of up to seven nodes with loops, parallel edges, several parts and many ties;
    /// the weights are those of the engine's joins.
    [[nodiscard]] static SmallGraph Draw(std::mt19937& random, std::size_t maximumEdges);

    [[nodiscard]] static amd_id GetNodeId(std::size_t node);
    [[nodiscard]] static amd_id GetEdgeId(std::size_t edge);
    [[nodiscard]] static std::vector<amd_id> GetEdgeIds(const EdgeSet& set);

    /// Makes the graph, adding nodes and edges in a random order.
    [[nodiscard]] AUT_RefPtr<AQE_I_UndirectedGraph> Make(std::mt19937& random) const;

    [[nodiscard]] std::int64_t GetWeight(const EdgeSet& set) const;

    /// Returns all sets of edges that connect what can be connected and have no cycle, by weight,
    /// then by their edges.
    [[nodiscard]] std::vector<EdgeSet> FindSpanningForests() const;

    /// Returns the minimum Steiner trees, or nothing when the terminals cannot be connected.
    [[nodiscard]] std::optional<Trees>
    FindCheapestTrees(const std::vector<std::size_t>& terminals) const;

    /// Returns the distance between two nodes; -1 when there is none.
    [[nodiscard]] std::int64_t FindDistance(std::size_t from, std::size_t to) const;

    std::size_t nodeCount = 0;
    std::vector<Edge> edges;
};

std::ostream& operator<<(std::ostream& out, const SmallGraph& graph);

} // namespace qe::test

#endif
