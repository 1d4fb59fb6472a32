#ifndef ENGINE_GRAPH_CORE_SATURATINGCOUNT_H
#define ENGINE_GRAPH_CORE_SATURATINGCOUNT_H

#include <cstdint>
#include <limits>

namespace qe::graph {

/// The count that stands for "so many or more": trees may be more than 64 bits can count.
inline constexpr std::uint64_t kSaturatedCount = std::numeric_limits<std::uint64_t>::max();

[[nodiscard]] inline std::uint64_t AddCounts(std::uint64_t left, std::uint64_t right)
{
    return left > kSaturatedCount - right ? kSaturatedCount : left + right;
}

[[nodiscard]] inline std::uint64_t MultiplyCounts(std::uint64_t left, std::uint64_t right)
{
    std::uint64_t product = 0;
    return __builtin_mul_overflow(left, right, &product) ? kSaturatedCount : product;
}

} // namespace qe::graph

#endif
