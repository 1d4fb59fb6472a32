#ifndef ENGINE_GRAPH_STEINER_LIST_SPANNINGBLOCK_H
#define ENGINE_GRAPH_STEINER_LIST_SPANNINGBLOCK_H

#include "Engine/Graph/Steiner/List/TreeFamily.h"
#include "Engine/Graph/Steiner/Network/Network.h"

#include <cstdint>

namespace qe::graph {

class Budget;

/// Returns whether all nodes of the block are terminals: then its minimum Steiner trees are its
/// minimum spanning trees, and no search is needed.
[[nodiscard]] bool IsSpanningBlock(const Network& block);

/// What is known of a block whose trees are in the family.
struct SpanningBlockTrees
{
    std::uint64_t weight;
    /// Whether the family knows the number of its trees, or only of those that it holds.
    bool isCountExact;
};

/// Adds the minimum spanning trees of a block to the family, as many as are wanted, fewer when the
/// budget runs out, but one at least. O(m log m) for the first, little more for each of the others
/// than for writing it down; counting them takes O(n^3) and is left out where that is too much.
SpanningBlockTrees AddSpanningTrees(const Network& block, TreeFamily& family, Budget& budget);

} // namespace qe::graph

#endif
