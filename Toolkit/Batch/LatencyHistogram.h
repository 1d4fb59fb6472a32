#ifndef TOOLKIT_BATCH_LATENCYHISTOGRAM_H
#define TOOLKIT_BATCH_LATENCYHISTOGRAM_H

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace qe::tool {

/// Counts how long things took, in a fixed amount of memory: every time is kept to five
/// significant binary digits, so that percentiles are at most 1/32 too small.
class LatencyHistogram
{
public:
    void Add(std::chrono::nanoseconds latency);

    /// Gives the least time that at least `percent` of all times do not exceed; zero when there
    /// are none.
    [[nodiscard]] std::chrono::nanoseconds GetPercentile(unsigned percent) const;

private:
    static constexpr unsigned StepBits = 5;
    static constexpr std::size_t Steps = std::size_t{1} << StepBits;
    static constexpr std::size_t Buckets = (64 - StepBits + 1) * Steps;

    std::array<std::uint64_t, Buckets> mCounts{};
    std::uint64_t mTotal = 0;
};

} // namespace qe::tool

#endif
