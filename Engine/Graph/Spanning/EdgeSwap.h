#ifndef ENGINE_GRAPH_SPANNING_EDGESWAP_H
#define ENGINE_GRAPH_SPANNING_EDGESWAP_H

#include "Engine/Graph/Core/GraphView.h"

#include <cstdint>
#include <span>

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

} // namespace qe::graph

#endif
