#ifndef ENGINE_GRAPH_CORE_TERMINALREGION_H
#define ENGINE_GRAPH_CORE_TERMINALREGION_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Core/Indices.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qe::graph {

/// The part of a graph in which all minimum Steiner trees of some terminals lie, as a graph of its
/// own. Nodes and edges keep their order, so that ties are broken in it as in the whole graph.
class TerminalRegion
{
public:
    /// Takes the nodes of the region in ascending order.
    TerminalRegion(const GraphView& graph, std::vector<NodeIndex> nodes);

    [[nodiscard]] GraphView GetView() const { return {mEdges, mFirstArc, mArcs}; }

    /// Returns the node of the region that a node of the graph is; it must be in the region.
    [[nodiscard]] NodeIndex ToRegion(NodeIndex node) const;

    /// Returns the edge of the graph that an edge of the region is.
    [[nodiscard]] EdgeIndex ToGraph(EdgeIndex edge) const { return mGraphEdges[edge.value]; }

private:
    std::vector<NodeIndex> mNodes;
    std::vector<EdgeIndex> mGraphEdges;
    std::vector<Edge> mEdges;
    std::vector<std::uint32_t> mFirstArc;
    std::vector<Arc> mArcs;
};

/// Searches from all terminals outwards, only as far as a minimum Steiner tree can reach, and
/// returns the region; nothing when the terminals are not connected. There are at least two
/// terminals, all different. O((r + s) log r) for the r nodes that are reached and the s arcs at
/// them, and O(n) to begin with.
///
/// Let every node belong to its nearest terminal, and let the radius of a terminal be the length
/// of the shortest path that leaves its nodes. A node that is no terminal is in a minimum Steiner
/// tree only if its distances to the two nearest of k terminals and the k - 2 least radii add up
/// to no more than the weight of any tree that connects the terminals (Polzin and Daneshmand,
/// 2001). Such a tree is made of the first paths between terminals that the search comes by.
[[nodiscard]] std::optional<TerminalRegion> FindRegion(const GraphView& graph,
                                                       std::span<const NodeIndex> terminals);

} // namespace qe::graph

#endif
