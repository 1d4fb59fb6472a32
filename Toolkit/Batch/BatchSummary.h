#ifndef TOOLKIT_BATCH_BATCHSUMMARY_H
#define TOOLKIT_BATCH_BATCHSUMMARY_H

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace qe::tool {

/// Counts how long things took, in a fixed amount of memory: every time is kept to five
/// significant binary digits, so that percentiles are at most 1/32 too small.
class LatencyHistogram
{
public:
    void Add(std::chrono::nanoseconds latency);

    /// Returns the least time that at least `percent` of all times do not exceed; zero when there
    /// are none.
    [[nodiscard]] std::chrono::nanoseconds GetPercentile(unsigned percent) const;

private:
    static constexpr unsigned kStepBits = 5;
    static constexpr std::size_t kSteps = std::size_t{1} << kStepBits;
    static constexpr std::size_t kBuckets = (64 - kStepBits + 1) * kSteps;

    std::array<std::uint64_t, kBuckets> mCounts{};
    std::uint64_t mTotal = 0;
};

/// How a batch goes so far, or went.
struct BatchSummary
{
    /// Every request that has its line in the output.
    std::size_t requests = 0;
    /// Those that got an error instead of an answer.
    std::size_t failures = 0;
    /// Those whose subjects cannot be connected.
    std::size_t notConnected = 0;
    LatencyHistogram latencies{};
    /// How much of the input these requests take up.
    std::uint64_t bytes = 0;
    bool wasInterrupted = false;
};

/// Returns the summary in one line: requests, failures, median and 99th percentile.
[[nodiscard]] std::string ToText(const BatchSummary& summary);

} // namespace qe::tool

#endif
