#ifndef ENGINE_GRAPH_STEINER_NETWORK_NETWORK_H
#define ENGINE_GRAPH_STEINER_NETWORK_NETWORK_H

#include "Engine/Graph/Steiner/Network/StrandPool.h"

#include <cstdint>
#include <vector>

namespace qe::graph {

/// A simple graph with terminals that reductions take apart while they keep every lightest tree.
///
/// Each edge stands for the strand it carries. Between two nodes only the lightest edge is kept;
/// one of equal weight joins its strand as a choice. Edges that every lightest tree contains are
/// taken out by contraction and noted as fixed. All weights are positive.
///
/// Half-edge 2e leaves the first end of edge e, 2e + 1 the second; the half-edges of a node form
/// a doubly linked list, so that edges come and go in constant time.
class Network
{
public:
    static constexpr std::uint32_t None = 0xFFFFFFFF;

    Network(std::uint32_t nodeCount, StrandPool& strands);

    [[nodiscard]] std::uint32_t GetNodeLimit() const
    {
        return static_cast<std::uint32_t>(mNodes.size());
    }
    [[nodiscard]] std::uint32_t GetEdgeLimit() const
    {
        return static_cast<std::uint32_t>(mEdges.size());
    }
    [[nodiscard]] std::uint32_t GetEdgeCount() const { return mEdgeCount; }
    [[nodiscard]] std::uint32_t GetTerminalCount() const { return mTerminalCount; }
    [[nodiscard]] std::uint64_t GetFixedWeight() const { return mFixedWeight; }
    [[nodiscard]] const std::vector<StrandIndex>& GetFixedStrands() const { return mFixedStrands; }
    [[nodiscard]] StrandPool& GetStrands() const { return *mStrands; }

    [[nodiscard]] bool IsTerminal(std::uint32_t node) const { return mNodes[node].isTerminal; }
    [[nodiscard]] std::uint32_t GetDegree(std::uint32_t node) const { return mNodes[node].degree; }
    [[nodiscard]] bool HasEdge(std::uint32_t edge) const { return mEdges[edge].isPresent; }
    [[nodiscard]] std::uint64_t GetWeight(std::uint32_t edge) const { return mEdges[edge].weight; }
    [[nodiscard]] StrandIndex GetStrand(std::uint32_t edge) const { return mEdges[edge].strand; }

    /// Answers the first half-edge that leaves the node, or None.
    [[nodiscard]] std::uint32_t GetFirst(std::uint32_t node) const { return mNodes[node].first; }
    [[nodiscard]] std::uint32_t GetNext(std::uint32_t half) const { return mHalves[half].next; }
    [[nodiscard]] std::uint32_t GetOrigin(std::uint32_t half) const { return mHalves[half].origin; }
    [[nodiscard]] std::uint32_t GetTarget(std::uint32_t half) const
    {
        return mHalves[half ^ 1U].origin;
    }

    void MakeTerminal(std::uint32_t node);

    /// Adds an edge between two different nodes that no edge joins yet.
    void AppendEdge(std::uint32_t end1, std::uint32_t end2, std::uint64_t weight,
                    StrandIndex strand);

    /// Adds an edge, or lets it replace or join the one there is. Costs the smaller degree.
    void MergeEdge(std::uint32_t end1, std::uint32_t end2, std::uint64_t weight,
                   StrandIndex strand);

    /// Lets an edge replace the present one when lighter, and join it when as light.
    void MergeInto(std::uint32_t edge, std::uint64_t weight, StrandIndex strand);

    void RemoveEdge(std::uint32_t edge);

    /// Notes the edge of the half-edge as fixed, and moves what its origin has to its target,
    /// which becomes a terminal.
    void Contract(std::uint32_t half);

private:
    struct Node
    {
        std::uint32_t first = None;
        std::uint32_t degree = 0;
        bool isTerminal = false;
    };
    struct Half
    {
        std::uint32_t origin;
        std::uint32_t next;
        std::uint32_t previous;
    };
    struct NetworkEdge
    {
        std::uint64_t weight;
        StrandIndex strand;
        bool isPresent;
    };

    [[nodiscard]] std::uint32_t FindEdge(std::uint32_t end1, std::uint32_t end2) const;
    void Link(std::uint32_t half, std::uint32_t origin);
    void Unlink(std::uint32_t half);

    StrandPool* mStrands;
    std::vector<Node> mNodes;
    std::vector<Half> mHalves;
    std::vector<NetworkEdge> mEdges;
    std::vector<std::uint32_t> mFreeEdges;
    std::vector<StrandIndex> mFixedStrands;
    std::uint64_t mFixedWeight = 0;
    std::uint32_t mEdgeCount = 0;
    std::uint32_t mTerminalCount = 0;
};

} // namespace qe::graph

#endif
