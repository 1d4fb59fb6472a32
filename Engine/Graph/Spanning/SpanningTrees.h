#ifndef ENGINE_GRAPH_SPANNING_SPANNINGTREES_H
#define ENGINE_GRAPH_SPANNING_SPANNINGTREES_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Spanning/SpanningTreeCore.h"
#include "Engine/Graph/Spanning/SwapSearch.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace qe::graph {

/// Lists the spanning trees of a connected graph one by one, each once, in order of weight;
/// equal weights in the order of their ascending edges, compared one after the other. So a bound
/// never loses a tree to one that comes later.
///
/// The trees not yet listed are split into cells, told apart by edges that are required or
/// forbidden (Katoh, Ibaraki and Mine, An algorithm for finding k minimum spanning trees, 1981).
/// Each cell knows its minimum tree, which has been listed, and the best swap to its next one. The
/// least of these trees over all cells is listed next, and its cell split by the edge that the
/// swap took out: where the edge is required the minimum tree stays, where it is forbidden the tree
/// just listed is the minimum.
///
/// Of the triangle a:1 b:1 c:2, the tree ab comes first, with the swap b for c. Listing ac splits
/// this into "b required", where a can still go for c, and "b forbidden", where nothing can. So
/// bc is next, and the last.
///
/// A bound of K trees takes O(m log m) to start with, O(K log K) for the next tree and memory for
/// the differences of the listed trees from the first.
class SpanningTrees
{
public:
    /// Prepares for listing up to `bound` trees, at least one. The graph need not live on. A graph
    /// that is not connected has no trees, nor has one without nodes.
    SpanningTrees(const GraphView& graph, std::size_t bound);

    SpanningTrees(const SpanningTrees&) = delete;
    SpanningTrees& operator=(const SpanningTrees&) = delete;

    /// Returns the next tree as ascending edges; nothing behind the last or at the bound.
    [[nodiscard]] std::optional<std::vector<EdgeIndex>> GetNext();

private:
    static constexpr std::uint32_t kNoDecision = 0xFFFFFFFFU;

    // An edge that is required or forbidden in a cell, besides those before it.
    struct Decision
    {
        EdgeIndex edge;
        EEdgeUse use;
        std::uint32_t before;
    };

    // Where a tree differs from the first: the edges that only one of them has, ascending.
    using Difference = std::vector<EdgeIndex>;

    // A cell, by its second tree and the swap that leads there from its first.
    struct Cell
    {
        std::int64_t weight;
        Difference next;
        EdgeSwap swap;
        std::uint32_t decision;
    };

    void OpenCell(const Difference& least, std::int64_t weight, std::uint32_t decision);
    void SplitCell(const Cell& cell);
    [[nodiscard]] std::uint32_t Decide(EdgeIndex edge, EEdgeUse use, std::uint32_t before);
    [[nodiscard]] bool IsLater(const Cell& left, const Cell& right) const;
    [[nodiscard]] std::vector<EdgeIndex> Complete(const Difference& difference) const;

    SpanningTreeCore mCore;
    std::optional<SwapSearch> mSearch;
    std::size_t mLeft;
    bool mIsStarted = false;
    std::vector<Decision> mDecisions;
    // A heap with the cell whose next tree comes first in front.
    std::vector<Cell> mCells;
};

} // namespace qe::graph

#endif
