#ifndef ENGINE_GRAPH_STEINER_BOUND_REDUCEDDISTANCES_H
#define ENGINE_GRAPH_STEINER_BOUND_REDUCEDDISTANCES_H

#include <cstdint>
#include <vector>

namespace qe::graph {

class DualAscent;
class FlatNetwork;

/// Answers for each node the reduced weight of the lightest way from the root to it, and
/// Unreached where that is above `most`. One run of Dijkstra's algorithm as far as that, as below.
[[nodiscard]] std::vector<std::uint64_t>
GetReducedFromRoot(const FlatNetwork& network, const DualAscent& ascent, std::uint64_t most);

/// Answers for each node the reduced weight of the lightest way from it to the given one, and
/// Unreached where that is above `most`.
[[nodiscard]] std::vector<std::uint64_t> GetReducedTo(const FlatNetwork& network,
                                                      const DualAscent& ascent,
                                                      std::uint32_t target, std::uint64_t most);

/// Answers for each node the reduced weight of the lightest way from it to a terminal that is
/// not the root, and Unreached where that is above `most`.
[[nodiscard]] std::vector<std::uint64_t>
GetReducedToTerminal(const FlatNetwork& network, const DualAscent& ascent, std::uint64_t most);

} // namespace qe::graph

#endif
