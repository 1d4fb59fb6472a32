#ifndef ENGINE_GRAPH_STEINER_REDUCEDDISTANCES_H
#define ENGINE_GRAPH_STEINER_REDUCEDDISTANCES_H

#include <cstdint>
#include <vector>

namespace qe::graph {

class DualAscent;
class FlatNetwork;

/// Answers for each node the reduced weight of the lightest way from the root to it, and
/// Saturated where there is none. One run of Dijkstra's algorithm, as below.
[[nodiscard]] std::vector<std::uint64_t> GetReducedFromRoot(const FlatNetwork& network,
                                                            const DualAscent& ascent);

/// Answers for each node the reduced weight of the lightest way from it to the given one, and
/// Saturated where there is none.
[[nodiscard]] std::vector<std::uint64_t>
GetReducedTo(const FlatNetwork& network, const DualAscent& ascent, std::uint32_t target);

/// Answers for each node the reduced weight of the lightest way from it to a terminal that is
/// not the root, and Saturated where there is none.
[[nodiscard]] std::vector<std::uint64_t> GetReducedToTerminal(const FlatNetwork& network,
                                                              const DualAscent& ascent);

} // namespace qe::graph

#endif
