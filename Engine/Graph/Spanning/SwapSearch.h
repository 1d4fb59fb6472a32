#ifndef ENGINE_GRAPH_SPANNING_SWAPSEARCH_H
#define ENGINE_GRAPH_SPANNING_SWAPSEARCH_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Spanning/BottleneckForest.h"
#include "Engine/Graph/Spanning/EdgeSwap.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qe::graph {

/// What may become of an edge while spanning trees are searched.
enum class EEdgeUse : std::uint8_t
{
    Out,       ///< Not in the tree, and may come in.
    In,        ///< In the tree, and may go out.
    Required,  ///< In the tree, and stays in it.
    Forbidden, ///< Not in the tree, and stays out.
};

/// Finds the best swap of a least spanning tree: the one to the next tree.
class SwapSearch
{
public:
    /// The edges stay as they are while they are searched. Self-loops are passed over.
    SwapSearch(std::uint32_t nodeCount, std::span<const Edge> edges);

    /// Finds the least of the swaps that the use of each edge allows, in O(n + m log n). The
    /// edges in use form the least spanning tree that has the required edges and none of the
    /// forbidden ones.
    [[nodiscard]] std::optional<EdgeSwap> FindBest(std::span<const EEdgeUse> uses);

    /// Finds the best swap for every edge that may come in and has one, in ascending order of
    /// (weight, index) of the edges that come in.
    [[nodiscard]] std::vector<EdgeSwap> FindAll(std::span<const EEdgeUse> uses);

private:
    void HangUp(std::span<const EEdgeUse> uses);
    [[nodiscard]] std::optional<EdgeSwap> FindSwapFor(EdgeIndex in) const;

    std::uint32_t mNodeCount;
    std::span<const Edge> mEdges;
    std::vector<EdgeIndex> mByWeight;
    BottleneckForest mForest;
};

} // namespace qe::graph

#endif
