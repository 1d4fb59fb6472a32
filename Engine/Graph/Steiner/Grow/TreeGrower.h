#ifndef ENGINE_GRAPH_STEINER_GROW_TREEGROWER_H
#define ENGINE_GRAPH_STEINER_GROW_TREEGROWER_H

#include "Engine/Graph/Core/Dijkstra.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace qe::graph {

/// For each edge of a network whether it is marked.
using EdgeMarks = IndexedVector<EdgeIndex, std::uint8_t>;

/// A tree that connects all terminals of a network, as its edges.
struct SteinerTree
{
    std::vector<EdgeIndex> edges;
    std::uint64_t weight = 0;
};

/// Grows light trees fast, without a proof.
///
/// A tree grows from a start by the path to the nearest part not yet connected (Takahashi and
/// Matsuyama 1980); then it becomes a minimum spanning tree of its nodes, and leaves that are no
/// terminals are cut off. Ties go to the smaller index. One search costs little more than one
/// run of Dijkstra's algorithm; the workspace is kept between runs.
class TreeGrower
{
public:
    /// Keeps a reference to the network.
    explicit TreeGrower(const FlatNetwork& network);

    /// Grows a tree from the node. When `isUsable` is not empty, paths take only edges that it
    /// marks; those must connect the terminals.
    SteinerTree Grow(NodeIndex start, const EdgeMarks& isUsable);

    /// Grows a tree from the node that absorbs each part of a forest when it reaches one.
    SteinerTree Regrow(std::span<const EdgeIndex> forest, NodeIndex start);

    /// Returns how many half-edges have been looked at, over all runs: what they cost, by a measure
    /// that is the same on every machine.
    [[nodiscard]] std::uint64_t GetWork() const { return mWork; }

private:
    void Connect(NodeIndex start, const EdgeMarks& isUsable);
    void Absorb(NodeIndex node);
    void AddPathTo(NodeIndex node);
    void Relax(NodeIndex node, std::uint64_t distance, const EdgeMarks& isUsable);
    void Reset();
    void Span(SteinerTree& tree);
    void PruneNonTerminalLeaves(SteinerTree& tree);

    const FlatNetwork& mNetwork;
    DijkstraSearch mSearch;
    /// Half-edge by which each reached node was entered.
    IndexedVector<NodeIndex, HalfEdge> mEntries;
    /// Number of kept edges at the node, plus one at a terminal.
    IndexedVector<NodeIndex, std::uint32_t> mWishes;
    IndexedVector<NodeIndex, std::uint8_t> mIsInTree;
    EdgeMarks mIsKept;
    std::vector<NodeIndex> mOpen;
    std::vector<EdgeIndex> mEdges;
    /// Edges between the nodes of the tree at hand, with their weights.
    std::vector<std::pair<std::uint64_t, EdgeIndex>> mCandidates;
    std::size_t mMissing = 0;
    std::uint64_t mWork = 0;
    /// Which of the nodes of the tree at hand the node is.
    IndexedVector<NodeIndex, std::uint32_t> mPlaces;
    IndexedVector<NodeIndex, std::uint32_t> mDegrees;
};

} // namespace qe::graph

#endif
