#ifndef ENGINE_GRAPH_STEINER_NETWORK_FLATNETWORK_H
#define ENGINE_GRAPH_STEINER_NETWORK_FLATNETWORK_H

#include "Engine/Graph/Core/Indices.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

class Network;

/// A frozen copy of a network in compressed adjacency, for searches.
///
/// Nodes with edges and terminals are numbered anew in ascending order, edges in the order of the
/// network.
class FlatNetwork
{
public:
    /// One direction of an edge as seen from the node that it leaves.
    struct Arc
    {
        NodeIndex target;
        HalfEdge half;
        std::uint64_t weight;
    };

    /// Copies the network, which need not live on: O(n + m).
    explicit FlatNetwork(const Network& network);

    [[nodiscard]] std::uint32_t GetNodeCount() const { return mIsTerminal.size(); }
    [[nodiscard]] std::uint32_t GetEdgeCount() const { return mNetworkEdges.size(); }
    [[nodiscard]] std::uint32_t GetHalfCount() const { return 2 * GetEdgeCount(); }
    [[nodiscard]] IndexRange<NodeIndex> GetNodes() const
    {
        return IndexRange<NodeIndex>(GetNodeCount());
    }
    [[nodiscard]] IndexRange<EdgeIndex> GetEdges() const
    {
        return IndexRange<EdgeIndex>(GetEdgeCount());
    }
    [[nodiscard]] IndexRange<HalfEdge> GetHalves() const
    {
        return IndexRange<HalfEdge>(GetHalfCount());
    }

    [[nodiscard]] std::span<const Arc> GetArcs(NodeIndex node) const
    {
        const std::uint32_t first = mFirstArc[node.value];
        return {mArcs.data() + first, mFirstArc[node.value + 1] - first};
    }
    [[nodiscard]] NodeIndex GetOrigin(HalfEdge half) const { return mOrigins[half]; }
    [[nodiscard]] NodeIndex GetTarget(HalfEdge half) const { return mOrigins[half.Reversed()]; }
    [[nodiscard]] std::array<NodeIndex, 2> GetEnds(EdgeIndex edge) const
    {
        return {GetOrigin(HalfEdge::Forward(edge)), GetOrigin(HalfEdge::Backward(edge))};
    }
    [[nodiscard]] std::uint64_t GetWeight(EdgeIndex edge) const { return mWeights[edge]; }
    /// Returns which edge of the network this one is.
    [[nodiscard]] EdgeIndex GetNetworkEdge(EdgeIndex edge) const { return mNetworkEdges[edge]; }
    /// Returns the terminals in ascending order.
    [[nodiscard]] std::span<const NodeIndex> GetTerminals() const { return mTerminals; }
    [[nodiscard]] bool IsTerminal(NodeIndex node) const { return mIsTerminal[node] != 0; }

private:
    std::vector<std::uint32_t> mFirstArc;
    std::vector<Arc> mArcs;
    IndexedVector<HalfEdge, NodeIndex> mOrigins;
    IndexedVector<EdgeIndex, std::uint64_t> mWeights;
    IndexedVector<EdgeIndex, EdgeIndex> mNetworkEdges;
    std::vector<NodeIndex> mTerminals;
    IndexedVector<NodeIndex, std::uint8_t> mIsTerminal;
};

} // namespace qe::graph

#endif
