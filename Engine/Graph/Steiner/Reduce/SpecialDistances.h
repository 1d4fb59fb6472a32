#ifndef ENGINE_GRAPH_STEINER_REDUCE_SPECIALDISTANCES_H
#define ENGINE_GRAPH_STEINER_REDUCE_SPECIALDISTANCES_H

#include "Engine/Graph/Core/Indices.h"
#include "Engine/Graph/Spanning/MinimumSpanningTree.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

class Network;

/// Bounds the special distances of a network from above.
///
/// The special distance of two nodes is the least that the longest leg of a path between them can
/// weigh, where a leg runs from one terminal, or end of the path, to the next. A tree that two
/// nodes fall out of when something heavier is taken out can be mended by one such leg (Duin and
/// Volgenant 1989). Bounded through the nearest terminals of both nodes and the minimum spanning
/// tree of the terminals' distances. Built by one run of Dijkstra's algorithm that settles each
/// node up to four times.
class SpecialDistances
{
public:
    struct NearTerminal
    {
        std::uint64_t distance;
        NodeIndex terminal;
    };

    explicit SpecialDistances(const Network& network);

    /// Returns a bound for the special distance of two different nodes, or kUnreached.
    [[nodiscard]] std::uint64_t GetBound(NodeIndex node1, NodeIndex node2) const;

    /// Returns up to four terminals that the node reaches without passing another, nearest first.
    [[nodiscard]] std::span<const NearTerminal> GetNearest(NodeIndex node) const
    {
        return {mNearest[node].data(), mCounts[node]};
    }

private:
    static constexpr std::size_t kMost = 4;

    void FindNearest(const Network& network);
    void SpanTerminals(const Network& network);
    [[nodiscard]] std::uint64_t GetBottleneck(NodeIndex terminal1, NodeIndex terminal2) const;

    IndexedVector<NodeIndex, std::array<NearTerminal, kMost>> mNearest;
    IndexedVector<NodeIndex, std::uint8_t> mCounts;
    BottleneckForest mForest;
    /// Distances that the steps of the forest stand for.
    std::vector<std::uint64_t> mSteps;
};

} // namespace qe::graph

#endif
