#ifndef ENGINE_GRAPH_STEINER_NETWORK_NETWORK_H
#define ENGINE_GRAPH_STEINER_NETWORK_NETWORK_H

#include "Engine/Graph/Core/Indices.h"
#include "Engine/Graph/Steiner/Network/StrandPool.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// A simple graph with terminals that reductions take apart while they keep every minimum Steiner
/// tree.
///
/// Each edge stands for the strand it carries. Between two nodes only the lightest edge is kept;
/// one of equal weight joins its strand as a choice. Edges that every minimum Steiner tree
/// contains are taken out by contraction and recorded as fixed. All weights are positive.
///
/// The half-edges that leave a node form a doubly linked list, so that edges come and go in
/// constant time. The pool must outlive the network.
class Network
{
public:
    Network(std::uint32_t nodeCount, StrandPool& strands);

    [[nodiscard]] IndexRange<NodeIndex> GetNodes() const
    {
        return IndexRange<NodeIndex>(GetNodeLimit());
    }
    /// Returns the number of nodes, also of those without edges.
    [[nodiscard]] std::uint32_t GetNodeLimit() const { return mNodes.size(); }
    /// Returns all edge indices in use so far; HasEdge tells which of them are edges now.
    [[nodiscard]] IndexRange<EdgeIndex> GetEdgeIndices() const
    {
        return IndexRange<EdgeIndex>(GetEdgeLimit());
    }
    /// Returns the index above all that were in use so far.
    [[nodiscard]] std::uint32_t GetEdgeLimit() const { return mEdges.size(); }
    [[nodiscard]] std::uint32_t GetEdgeCount() const { return mEdgeCount; }
    [[nodiscard]] std::uint32_t GetTerminalCount() const { return mTerminalCount; }
    [[nodiscard]] std::uint64_t GetFixedWeight() const { return mFixedWeight; }
    [[nodiscard]] const std::vector<StrandIndex>& GetFixedStrands() const { return mFixedStrands; }
    [[nodiscard]] StrandPool& GetStrands() const { return *mStrands; }

    [[nodiscard]] bool IsTerminal(NodeIndex node) const { return mNodes[node].isTerminal; }
    [[nodiscard]] std::uint32_t GetDegree(NodeIndex node) const { return mNodes[node].degree; }
    [[nodiscard]] bool HasEdge(EdgeIndex edge) const { return mEdges[edge].isPresent; }
    [[nodiscard]] std::uint64_t GetWeight(EdgeIndex edge) const { return mEdges[edge].weight; }
    [[nodiscard]] StrandIndex GetStrand(EdgeIndex edge) const { return mEdges[edge].strand; }

    /// Returns the first half-edge that leaves the node; an invalid one when there is none.
    [[nodiscard]] HalfEdge GetFirst(NodeIndex node) const { return mNodes[node].first; }
    /// Returns the half-edge after this one at its node; an invalid one behind the last.
    [[nodiscard]] HalfEdge GetNext(HalfEdge half) const { return mHalves[half].next; }
    [[nodiscard]] NodeIndex GetOrigin(HalfEdge half) const { return mHalves[half].origin; }
    [[nodiscard]] NodeIndex GetTarget(HalfEdge half) const { return GetOrigin(half.Reversed()); }
    [[nodiscard]] std::array<NodeIndex, 2> GetEnds(EdgeIndex edge) const
    {
        return {GetOrigin(HalfEdge::Forward(edge)), GetOrigin(HalfEdge::Backward(edge))};
    }

    void MakeTerminal(NodeIndex node);

    /// Makes room for so many edges.
    void Reserve(std::size_t edges);

    /// Adds an edge between two different nodes that no edge joins yet.
    void AppendEdge(NodeIndex end1, NodeIndex end2, std::uint64_t weight, StrandIndex strand);

    /// Adds an edge, or lets it replace or join the one there is. Costs the smaller degree.
    void MergeEdge(NodeIndex end1, NodeIndex end2, std::uint64_t weight, StrandIndex strand);

    /// Lets an edge replace the present one when lighter, and join it when as light.
    void MergeInto(EdgeIndex edge, std::uint64_t weight, StrandIndex strand);

    void RemoveEdge(EdgeIndex edge);

    /// Records the edge of the half-edge as fixed, and moves what its origin has to its target,
    /// which becomes a terminal.
    void Contract(HalfEdge half);

private:
    struct Node
    {
        HalfEdge first;
        std::uint32_t degree = 0;
        bool isTerminal = false;
    };
    struct Half
    {
        NodeIndex origin;
        HalfEdge next;
        HalfEdge previous;
    };
    struct NetworkEdge
    {
        std::uint64_t weight;
        StrandIndex strand;
        bool isPresent;
    };

    [[nodiscard]] EdgeIndex FindEdge(NodeIndex end1, NodeIndex end2) const;
    void Link(HalfEdge half, NodeIndex origin);
    void Unlink(HalfEdge half);

    StrandPool* mStrands;
    IndexedVector<NodeIndex, Node> mNodes;
    IndexedVector<HalfEdge, Half> mHalves;
    IndexedVector<EdgeIndex, NetworkEdge> mEdges;
    std::vector<EdgeIndex> mFreeEdges;
    std::vector<StrandIndex> mFixedStrands;
    std::uint64_t mFixedWeight = 0;
    std::uint32_t mEdgeCount = 0;
    std::uint32_t mTerminalCount = 0;
};

} // namespace qe::graph

#endif
