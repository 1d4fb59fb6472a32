#ifndef ENGINE_GRAPH_CORE_SHORTESTPATHS_H
#define ENGINE_GRAPH_CORE_SHORTESTPATHS_H

#include "Engine/Graph/Core/GraphView.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace qe::graph {

/// Least-weight paths from one node to every node: for each node the last edge of its path. The
/// source itself, and what cannot be reached, has an invalid one.
struct ShortestPaths
{
    NodeIndex source;
    std::vector<EdgeIndex> lastEdges;

    [[nodiscard]] bool Reaches(NodeIndex node) const
    {
        return node == source || lastEdges[node.value].IsValid();
    }

    /// Gives the node before `node` on its path; `node` is reached and is not the source.
    [[nodiscard]] NodeIndex GetPrevious(const GraphView& graph, NodeIndex node) const;

    /// Gives the path to `target` in walking order, empty from the source to itself or when
    /// there is none.
    [[nodiscard]] std::vector<EdgeIndex> GetPath(const GraphView& graph, NodeIndex target) const;
};

/// Dijkstra's algorithm (1959) on a binary heap: O((n + m) log n).
///
/// Nodes are settled in order of (distance, node index). Each is reached from the neighbour on
/// one of its least-weight paths that is settled first, by the lowest of the edges that fit, so
/// that equal weights always give the same path, also along edges of weight 0.
class ShortestPathSearch
{
public:
    /// Finds the paths from `source`. The object can be used again, for any graph.
    [[nodiscard]] ShortestPaths Run(const GraphView& graph, NodeIndex source);

private:
    using QueuedNode = std::pair<std::uint64_t, std::uint32_t>;

    void Settle(const GraphView& graph, QueuedNode node, std::vector<EdgeIndex>& lastEdges);

    std::vector<std::uint64_t> mDistances;
    std::vector<QueuedNode> mQueue;
};

} // namespace qe::graph

#endif
