#ifndef ENGINE_GRAPH_SPANNING_SWAPSEARCH_H
#define ENGINE_GRAPH_SPANNING_SWAPSEARCH_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Spanning/MinimumSpanningTree.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qe::graph {

/// Turns one spanning tree into another: `out` leaves the tree, `in` closes the gap.
struct EdgeSwap
{
    EdgeIndex out;
    EdgeIndex in;
    /// By how much the tree gets heavier.
    std::int64_t change = 0;
};

[[nodiscard]] inline EdgeSwap MakeSwap(std::span<const Edge> edges, EdgeIndex out, EdgeIndex in)
{
    return {out, in, std::int64_t{edges[in.value].weight} - edges[out.value].weight};
}

/// Orders the swaps of one tree by weight, then by the tree that results, in the order in which
/// spanning trees are listed: the tree that holds the lowest edge in which they differ is first.
///
/// This is the order that results from adding to the weight of edge i an amount of -2^-i that
/// vanishes beside every weight. With it no two trees weigh the same, and everything that holds
/// for spanning trees of different weights holds for ties as well.
[[nodiscard]] inline bool IsSwapLess(const EdgeSwap& left, const EdgeSwap& right)
{
    if (left.change != right.change)
        return left.change < right.change;
    // The results differ in the four edges, less those that both swaps share.
    if (left.out == right.out)
        return left.in < right.in;
    if (left.in == right.in)
        return right.out < left.out;
    const EdgeIndex onlyLeft = left.in < right.out ? left.in : right.out;
    const EdgeIndex onlyRight = right.in < left.out ? right.in : left.out;
    return onlyLeft < onlyRight;
}

/// What may become of an edge while spanning trees are searched.
enum class EEdgeUse : std::uint8_t
{
    Out,       ///< Not in the tree, and may come in.
    In,        ///< In the tree, and may go out.
    Required,  ///< In the tree, and stays in it.
    Forbidden, ///< Not in the tree, and stays out.
};

/// Finds the best swap of a minimum spanning tree: the one to the next tree.
class SwapSearch
{
public:
    /// The edges stay as they are while they are searched. Self-loops are passed over.
    SwapSearch(std::uint32_t nodeCount, std::span<const Edge> edges);

    /// Finds the least of the swaps that the use of each edge allows, in O(n + m log n). The
    /// edges in use form the minimum spanning tree that has the required edges and none of the
    /// forbidden ones.
    [[nodiscard]] std::optional<EdgeSwap> FindBest(std::span<const EEdgeUse> uses);

    /// Finds the best swap for every edge that may come in and has one, in ascending order of
    /// (weight, index) of the edges that come in.
    [[nodiscard]] std::vector<EdgeSwap> FindAll(std::span<const EEdgeUse> uses);

private:
    void BuildRootedForest(std::span<const EEdgeUse> uses);
    [[nodiscard]] std::optional<EdgeSwap> FindSwapFor(EdgeIndex in) const;

    std::uint32_t mNodeCount;
    std::span<const Edge> mEdges;
    std::vector<EdgeIndex> mByWeight;
    BottleneckForest mForest;
};

} // namespace qe::graph

#endif
