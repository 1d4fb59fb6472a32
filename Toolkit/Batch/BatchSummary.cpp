#include "Toolkit/Batch/BatchSummary.h"

#include <algorithm>
#include <bit>
#include <iomanip>
#include <sstream>

namespace qe::tool {

namespace {

std::string ToMilliseconds(std::chrono::nanoseconds time)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(2)
         << std::chrono::duration<double, std::milli>(time).count() << " ms";
    return text.str();
}

} // namespace

void LatencyHistogram::Add(std::chrono::nanoseconds latency)
{
    const auto value = static_cast<std::uint64_t>(std::max<std::int64_t>(latency.count(), 0));
    const auto digits = static_cast<unsigned>(std::bit_width(value));
    // Below 2^(kStepBits + 1) every number has a bucket of its own.
    const unsigned shift = digits > kStepBits + 1 ? digits - kStepBits - 1 : 0;
    ++mCounts[shift * kSteps + (value >> shift)];
    ++mTotal;
}

std::chrono::nanoseconds LatencyHistogram::GetPercentile(unsigned percent) const
{
    if (mTotal == 0)
        return {};
    const std::uint64_t wanted = std::max<std::uint64_t>((mTotal * percent + 99) / 100, 1);
    std::uint64_t seen = 0;
    std::size_t bucket = 0;
    while ((seen += mCounts[bucket]) < wanted)
        ++bucket;
    if (bucket < 2 * kSteps)
        return std::chrono::nanoseconds(bucket);
    const std::size_t shift = bucket / kSteps - 1;
    return std::chrono::nanoseconds((bucket - shift * kSteps) << shift);
}

std::string ToText(const BatchSummary& summary)
{
    std::ostringstream text;
    text << "requests: " << summary.requests << ", failures: " << summary.failures
         << ", not connected: " << summary.notConnected
         << ", median: " << ToMilliseconds(summary.latencies.GetPercentile(50))
         << ", 99th percentile: " << ToMilliseconds(summary.latencies.GetPercentile(99))
         << (summary.wasInterrupted ? " (interrupted)" : "");
    return text.str();
}

} // namespace qe::tool
