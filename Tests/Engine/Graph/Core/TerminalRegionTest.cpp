#include "Engine/Graph/Core/TerminalRegion.h"
#include "Tests/Support/SteinerGraphReader.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace qe::graph {
namespace {

struct Row
{
    const char* name;
    std::uint32_t nodeCount;
    std::vector<Edge> edges;
    std::vector<NodeIndex> terminals;
    /// What of the graph is in the region; no region when there is nothing.
    std::uint32_t nodesInside;
    std::vector<std::uint32_t> edgesInside;
};

const std::vector<Row> kRows{
    {"BetweenTwo",
     5,
     {{{0}, {1}, 1}, {{1}, {2}, 1}, {{2}, {3}, 1}, {{3}, {4}, 1}},
     {{1}, {3}},
     3,
     {1, 2}},
    {"EqualWays",
     4,
     {{{0}, {1}, 1}, {{1}, {2}, 1}, {{2}, {3}, 1}, {{3}, {0}, 1}},
     {{0}, {2}},
     4,
     {0, 1, 2, 3}},
    {"ADearerWay",
     4,
     {{{0}, {1}, 1}, {{1}, {2}, 1}, {{2}, {3}, 2}, {{3}, {0}, 1}},
     {{0}, {2}},
     3,
     {0, 1}},
    {"WithinTheBound",
     5,
     {{{0}, {3}, 2}, {{1}, {3}, 2}, {{2}, {3}, 2}, {{3}, {4}, 1}},
     {{0}, {1}, {2}},
     5,
     {0, 1, 2, 3}},
    {"BeyondTheBound",
     5,
     {{{0}, {3}, 2}, {{1}, {3}, 2}, {{2}, {3}, 2}, {{3}, {4}, 2}},
     {{0}, {1}, {2}},
     4,
     {0, 1, 2}},
    {"Parallel", 2, {{{0}, {1}, 1}, {{0}, {1}, 1}, {{1}, {1}, 1}}, {{0}, {1}}, 2, {0, 1}},
    {"Apart", 4, {{{0}, {1}, 1}, {{2}, {3}, 1}}, {{0}, {3}}, 0, {}},
};

class Region : public testing::TestWithParam<Row>
{};

TEST_P(Region, HoldsWhatATreeCanReach)
{
    const Row& row = GetParam();
    SteinerGraph graph;
    graph.edges = row.edges;
    graph.Freeze(row.nodeCount);
    const std::optional<TerminalRegion> region = FindRegion(graph.View(), row.terminals);
    ASSERT_EQ(region.has_value(), row.nodesInside > 0);
    if (!region)
        return;
    const GraphView inside = region->GetView();
    EXPECT_EQ(inside.GetNodeCount(), row.nodesInside);
    std::vector<std::uint32_t> edges;
    for (std::uint32_t edge = 0; edge < inside.GetEdgeCount(); ++edge) {
        edges.push_back(region->ToGraph({edge}).value);
        const Edge& original = row.edges[edges.back()];
        EXPECT_EQ(inside.GetEdge({edge}).end1, region->ToRegion(original.end1));
        EXPECT_EQ(inside.GetEdge({edge}).end2, region->ToRegion(original.end2));
    }
    EXPECT_EQ(edges, row.edgesInside);
}

INSTANTIATE_TEST_SUITE_P(Of, Region, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

// A bound that is lost loses no tree: it only makes regions larger.
TEST(Regions, AreAsSmallAsTheyWere)
{
    constexpr std::uint32_t kSide = 12;
    std::mt19937 random(20261124);
    const auto below = [&random](std::uint32_t count) {
        return static_cast<std::uint32_t>(random() % count);
    };
    std::size_t nodes = 0;
    std::size_t edges = 0;
    for (std::uint32_t round = 0; round < 200; ++round) {
        SteinerGraph graph;
        for (std::uint32_t node = 0; node < kSide * kSide; ++node) {
            if (node % kSide != 0)
                graph.edges.push_back({{node - 1}, {node}, 1 + below(9)});
            if (node >= kSide)
                graph.edges.push_back({{node - kSide}, {node}, 1 + below(9)});
        }
        graph.Freeze(kSide * kSide);
        std::set<NodeIndex> terminals;
        while (terminals.size() < 2 + round % 5)
            terminals.insert({below(kSide * kSide)});
        const std::optional<TerminalRegion> region =
            FindRegion(graph.View(), std::vector(terminals.begin(), terminals.end()));
        nodes += region->GetView().GetNodeCount();
        edges += region->GetView().GetEdgeCount();
    }
    EXPECT_EQ(std::pair(nodes, edges), std::pair(std::size_t{17251}, std::size_t{30205}));
}

} // namespace
} // namespace qe::graph
