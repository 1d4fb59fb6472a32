#ifndef ENGINE_GRAPH_STEINER_NETWORK_SATURATED_H
#define ENGINE_GRAPH_STEINER_NETWORK_SATURATED_H

#include <cstdint>
#include <limits>

namespace qe::graph {

/// The count that stands for "this many or more", and the weight that stands for "not reached".
inline constexpr std::uint64_t Saturated = std::numeric_limits<std::uint64_t>::max();

/// A distance beyond everything that counts; a few of them still add up without overflow.
inline constexpr std::uint64_t Unreached = Saturated / 8;

[[nodiscard]] inline std::uint64_t SaturatingAdd(std::uint64_t left, std::uint64_t right)
{
    return left > Saturated - right ? Saturated : left + right;
}

[[nodiscard]] inline std::uint64_t SaturatingMultiply(std::uint64_t left, std::uint64_t right)
{
    std::uint64_t product = 0;
    return __builtin_mul_overflow(left, right, &product) ? Saturated : product;
}

} // namespace qe::graph

#endif
