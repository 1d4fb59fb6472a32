#ifndef ENGINE_GRAPH_CORE_DISTANCE_H
#define ENGINE_GRAPH_CORE_DISTANCE_H

#include <cstdint>
#include <limits>

namespace qe::graph {

/// The distance of what was not reached, and the weight of a tree that is not known: above the
/// weight of every tree, as a graph has fewer than 2^29 edges of 32 bits each on its paths. A few
/// of these, and weights, add up without overflow.
inline constexpr std::uint64_t kUnreached = std::numeric_limits<std::uint64_t>::max() / 8;

} // namespace qe::graph

#endif
