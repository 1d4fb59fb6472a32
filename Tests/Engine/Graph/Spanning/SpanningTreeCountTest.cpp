#include "Engine/Graph/Spanning/SpanningTreeCount.h"

#include "Engine/Graph/Core/SaturatingCount.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <vector>

namespace qe::graph {
namespace {

constexpr std::uint64_t kNoEnd = std::numeric_limits<std::uint64_t>::max();

// Numbers just above 2^64 leave small residues, which must not be taken for them.
TEST(SpanningTreeCount, IsExactUpToSixtyFourBitsAndSaturatesBeyond)
{
    constexpr std::uint64_t kHalf = std::uint64_t{1} << 63U;
    const struct
    {
        std::vector<Link> links;
        std::uint64_t count;
    } rows[] = {
        {{{{0}, {1}, 1, 7}}, 7},
        {{{{0}, {1}, 1, 7}, {{0}, {1}, 1, 5}, {{0}, {1}, 2, 9}}, 12},
        {{{{0}, {1}, 1, kHalf / 2}, {{0}, {1}, 1, kHalf / 2}}, kHalf},
        {{{{0}, {1}, 1, kHalf}, {{0}, {1}, 1, kHalf / 2}}, kHalf + kHalf / 2},
        {{{{0}, {1}, 1, kHalf}, {{0}, {1}, 1, kHalf - 100}}, kSaturatedCount - 99},
        {{{{0}, {1}, 1, kHalf}, {{0}, {1}, 1, kHalf}}, kSaturatedCount},
        {{{{0}, {1}, 1, kHalf}, {{0}, {1}, 1, kHalf + 500}}, kSaturatedCount},
        {{{{0}, {1}, 1, kHalf}, {{0}, {1}, 1, kHalf + kHalf / 2}}, kSaturatedCount},
        {{{{0}, {1}, 3, 2}, {{1}, {2}, 3, 3}, {{2}, {0}, 3, 5}}, 31},
        {{{{0}, {1}, 1, 2}, {{1}, {2}, 3, 3}, {{2}, {0}, 3, 5}}, 16},
        {{{{0}, {1}, 1, 2}, {{2}, {3}, 1, 3}, {{1}, {2}, 4, 1}, {{0}, {3}, 4, 1}}, 12},
        {{{{0}, {1}, 1, kHalf}, {{1}, {2}, 2, 2}}, kSaturatedCount},
    };
    for (const auto& [links, count] : rows) {
        std::uint32_t nodeCount = 0;
        for (const Link& link : links)
            nodeCount = std::max({nodeCount, link.end1.value + 1, link.end2.value + 1});
        EXPECT_EQ(CountMinimumSpanningTrees(nodeCount, links, kNoEnd), count);
    }
}

// Links of one weight that join two parts of two and one of three take 2^3 + 2^3 + 3^3 steps, and
// to look at all seven nodes takes seven.
TEST(SpanningTreeCount, IsGivenUpAfterSoManySteps)
{
    const std::vector<Link> links{
        {{0}, {1}, 1}, {{2}, {3}, 1}, {{4}, {5}, 1}, {{5}, {6}, 1},
        {{6}, {4}, 1}, {{1}, {2}, 2}, {{3}, {4}, 2},
    };
    constexpr std::uint64_t kSteps = 7 + 8 + 8 + 27 + 7 + 27;
    EXPECT_EQ(CountMinimumSpanningTrees(7, links, kSteps), 3U);
    EXPECT_EQ(CountMinimumSpanningTrees(7, links, kSteps - 1), std::nullopt);
}

} // namespace
} // namespace qe::graph
