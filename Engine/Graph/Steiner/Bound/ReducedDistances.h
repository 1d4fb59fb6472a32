#ifndef ENGINE_GRAPH_STEINER_BOUND_REDUCEDDISTANCES_H
#define ENGINE_GRAPH_STEINER_BOUND_REDUCEDDISTANCES_H

#include "Engine/Graph/Core/Dijkstra.h"

#include <cstdint>

namespace qe::graph {

class DualAscent;
class FlatNetwork;

/// Returns for each node the least reduced weight of a path from the root to it, and kUnreached
/// where that is above `most`. One run of Dijkstra's algorithm as far as that, as below.
[[nodiscard]] NodeDistances GetReducedFromRoot(const FlatNetwork& network, const DualAscent& ascent,
                                               std::uint64_t most);

/// Returns for each node the least reduced weight of a path from it to the given one, and
/// kUnreached where that is above `most`.
[[nodiscard]] NodeDistances GetReducedTo(const FlatNetwork& network, const DualAscent& ascent,
                                         NodeIndex target, std::uint64_t most);

/// Returns for each node the least reduced weight of a path from it to a terminal that is not the
/// root, and kUnreached where that is above `most`.
[[nodiscard]] NodeDistances GetReducedToTerminal(const FlatNetwork& network,
                                                 const DualAscent& ascent, std::uint64_t most);

} // namespace qe::graph

#endif
