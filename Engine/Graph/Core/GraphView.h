#ifndef ENGINE_GRAPH_CORE_GRAPHVIEW_H
#define ENGINE_GRAPH_CORE_GRAPHVIEW_H

#include "Engine/Graph/Core/Indices.h"

#include <cstdint>
#include <limits>
#include <span>

namespace qe::graph {

/// One edge with its two ends. An edge whose ends are equal is a self-loop; several edges may
/// join the same two nodes. Weights are never negative.
struct Edge
{
    NodeIndex end1;
    NodeIndex end2;
    std::uint32_t weight = 0;
};

/// One direction of an edge as seen from a node: where it leads, and by which edge.
struct Arc
{
    NodeIndex target;
    EdgeIndex edge;
};

/// A read-only look at a weighted undirected multigraph with dense indices.
///
/// Nodes and edges are numbered in ascending order of their ids, so an algorithm that breaks its
/// ties by index has results that do not depend on the order in which the graph was filled. The
/// arcs of a node stand together, in ascending order of their edges; a self-loop has no arc.
///
/// The spans belong to the graph and are good until it changes.
class GraphView
{
public:
    GraphView() = default;

    /// Takes `firstArc` with one entry more than there are nodes: the arcs of node n stand in
    /// `arcs` from firstArc[n] up to, but without, firstArc[n + 1].
    GraphView(std::span<const Edge> edges, std::span<const std::uint32_t> firstArc,
              std::span<const Arc> arcs)
        : mEdges(edges), mFirstArc(firstArc), mArcs(arcs)
    {}

    [[nodiscard]] std::uint32_t GetNodeCount() const
    {
        return mFirstArc.empty() ? 0 : static_cast<std::uint32_t>(mFirstArc.size() - 1);
    }

    [[nodiscard]] std::uint32_t GetEdgeCount() const
    {
        return static_cast<std::uint32_t>(mEdges.size());
    }

    [[nodiscard]] const Edge& GetEdge(EdgeIndex edge) const { return mEdges[edge.value]; }

    [[nodiscard]] std::span<const Edge> GetEdges() const { return mEdges; }

    [[nodiscard]] std::span<const Arc> GetArcs(NodeIndex node) const
    {
        const std::uint32_t first = mFirstArc[node.value];
        return mArcs.subspan(first, mFirstArc[node.value + 1] - first);
    }

private:
    std::span<const Edge> mEdges;
    std::span<const std::uint32_t> mFirstArc;
    std::span<const Arc> mArcs;
};

/// The distance of what was not reached, and the weight of a tree that is not known: above the
/// weight of every tree, as a graph has fewer than 2^29 edges of 32 bits each on its paths. A few
/// of these, and weights, add up without overflow.
inline constexpr std::uint64_t kUnreached = std::numeric_limits<std::uint64_t>::max() / 8;

} // namespace qe::graph

#endif
