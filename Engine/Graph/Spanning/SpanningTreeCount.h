#ifndef ENGINE_GRAPH_SPANNING_SPANNINGTREECOUNT_H
#define ENGINE_GRAPH_SPANNING_SPANNINGTREECOUNT_H

#include "Engine/Graph/Spanning/MinimumSpanningTrees.h"

#include <cstdint>
#include <optional>
#include <span>

namespace qe::graph {

/// Returns the number of minimum spanning trees of a connected graph, each link counted as often as
/// its multiplicity says; at most 2^64 - 1. Takes the links in ascending order of weight. Returns
/// nothing when that would take more than `mostSteps`.
///
/// The links of one weight join the parts that lighter ones have made; whatever is chosen among
/// them joins the same parts. So the number is a product over the weights, of the numbers of
/// spanning trees of the graphs of parts, each by Kirchhoff's theorem (1847) a determinant: O(p^3)
/// for p parts.
[[nodiscard]] std::optional<std::uint64_t> CountMinimumSpanningTrees(std::uint32_t nodeCount,
                                                                     std::span<const Link> links,
                                                                     std::uint64_t mostSteps);

} // namespace qe::graph

#endif
