#ifndef ENGINE_GRAPH_STEINER_NETWORK_FLATNETWORK_H
#define ENGINE_GRAPH_STEINER_NETWORK_FLATNETWORK_H

#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

class Network;

/// A frozen copy of a network in compressed adjacency, for searches.
///
/// Nodes with edges and terminals are numbered anew in ascending order, edges in the order of the
/// network. Half-edge 2e leads from the first end of edge e to the second, 2e + 1 back.
class FlatNetwork
{
public:
    /// One direction of an edge as seen from the node that it leaves.
    struct Arc
    {
        std::uint32_t target;
        std::uint32_t half;
        std::uint64_t weight;
    };

    explicit FlatNetwork(const Network& network);

    [[nodiscard]] std::uint32_t GetNodeCount() const
    {
        return static_cast<std::uint32_t>(mFirstArc.size() - 1);
    }
    [[nodiscard]] std::uint32_t GetEdgeCount() const
    {
        return static_cast<std::uint32_t>(mNetworkEdges.size());
    }
    [[nodiscard]] std::uint32_t GetHalfCount() const { return 2 * GetEdgeCount(); }
    [[nodiscard]] std::span<const Arc> GetArcs(std::uint32_t node) const
    {
        return {mArcs.data() + mFirstArc[node], mFirstArc[node + 1] - mFirstArc[node]};
    }
    [[nodiscard]] std::uint32_t GetOrigin(std::uint32_t half) const { return mOrigins[half]; }
    [[nodiscard]] std::uint32_t GetTarget(std::uint32_t half) const { return mOrigins[half ^ 1U]; }
    [[nodiscard]] std::uint64_t GetWeight(std::uint32_t edge) const { return mWeights[edge]; }
    /// Answers which edge of the network this one is.
    [[nodiscard]] std::uint32_t GetNetworkEdge(std::uint32_t edge) const
    {
        return mNetworkEdges[edge];
    }
    /// Answers the terminals in ascending order.
    [[nodiscard]] std::span<const std::uint32_t> GetTerminals() const { return mTerminals; }
    [[nodiscard]] bool IsTerminal(std::uint32_t node) const { return mIsTerminal[node] != 0; }

private:
    std::vector<std::uint32_t> mFirstArc;
    std::vector<Arc> mArcs;
    std::vector<std::uint32_t> mOrigins;
    std::vector<std::uint64_t> mWeights;
    std::vector<std::uint32_t> mNetworkEdges;
    std::vector<std::uint32_t> mTerminals;
    std::vector<std::uint8_t> mIsTerminal;
};

} // namespace qe::graph

#endif
