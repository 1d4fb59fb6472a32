#include "Toolkit/Batch/LatencyHistogram.h"

#include <algorithm>
#include <bit>

namespace qe::tool {

void LatencyHistogram::Add(std::chrono::nanoseconds latency)
{
    const auto value = static_cast<std::uint64_t>(std::max<std::int64_t>(latency.count(), 0));
    const auto digits = static_cast<unsigned>(std::bit_width(value));
    // Below 2^(StepBits + 1) every number has a bucket of its own.
    const unsigned shift = digits > StepBits + 1 ? digits - StepBits - 1 : 0;
    ++mCounts[shift * Steps + (value >> shift)];
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
    if (bucket < 2 * Steps)
        return std::chrono::nanoseconds(bucket);
    const std::size_t shift = bucket / Steps - 1;
    return std::chrono::nanoseconds((bucket - shift * Steps) << shift);
}

} // namespace qe::tool
