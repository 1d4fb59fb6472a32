#include "Engine/Graph/Steiner/Reduce/DistanceReduction.h"
#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/NetworkBuilder.h"
#include "Engine/Graph/Steiner/Reduce/DegreeReduction.h"
#include "Engine/Graph/Steiner/Reduce/DominatedNodes.h"
#include "Engine/Graph/Steiner/Reduce/SpecialDistances.h"
#include "Tests/Support/SmallGraph.h"
#include "Tests/Support/SteinerGraphReader.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace qe::graph {

namespace {

using test::SmallGraph;
using Trees = std::set<SmallGraph::EdgeSet>;

/// Returns every tree that runs through the strands.
Trees Expand(const StrandPool& strands, const std::vector<StrandIndex>& tree)
{
    Trees expanded{{}};
    for (const StrandIndex strand : tree) {
        Trees longer;
        for (const SmallGraph::EdgeSet& begun : expanded) {
            for (std::uint64_t rank = 0; rank < strands.GetCount(strand); ++rank) {
                std::vector<EdgeIndex> edges;
                strands.AppendEdges(strand, rank, edges);
                SmallGraph::EdgeSet next = begun;
                for (const EdgeIndex edge : edges)
                    next.push_back(edge.value);
                std::sort(next.begin(), next.end());
                EXPECT_TRUE(longer.insert(next).second);
            }
        }
        expanded.swap(longer);
    }
    return expanded;
}

/// Returns all minimum Steiner trees of what is left of a network, as edges of the graph it was
/// made of.
Trees SearchExhaustively(const Network& network)
{
    SmallGraph rest;
    rest.nodeCount = network.GetNodeLimit();
    std::vector<StrandIndex> strands;
    for (const EdgeIndex edge : network.GetEdgeIndices()) {
        if (!network.HasEdge(edge))
            continue;
        const auto [end1, end2] = network.GetEnds(edge);
        rest.edges.push_back({end1.value, end2.value, static_cast<int>(network.GetWeight(edge))});
        strands.push_back(network.GetStrand(edge));
    }
    std::vector<std::size_t> terminals;
    for (const NodeIndex node : network.GetNodes()) {
        if (network.IsTerminal(node))
            terminals.push_back(node.value);
    }
    Trees all;
    const std::optional<SmallGraph::Trees> found = rest.FindCheapestTrees(terminals);
    for (const SmallGraph::EdgeSet& tree : found.value_or(SmallGraph::Trees{}).trees) {
        std::vector<StrandIndex> whole = network.GetFixedStrands();
        for (const std::size_t edge : tree)
            whole.push_back(strands[edge]);
        for (const SmallGraph::EdgeSet& expanded : Expand(network.GetStrands(), whole))
            EXPECT_TRUE(all.insert(expanded).second);
    }
    return all;
}

struct Reduction
{
    const char* name;
    std::function<void(Network&)> apply;
    /// How many edges it takes out of the graphs that are drawn.
    std::size_t leastRemoved;
};

void PrintTo(const Reduction& reduction, std::ostream* out)
{
    *out << reduction.name;
}

class SteinerReduction : public testing::TestWithParam<Reduction>
{};

TEST_P(SteinerReduction, KeepsEveryMinimumSteinerTreeAndIsOfUse)
{
    std::mt19937 random(20240612);
    const auto below = [&](std::size_t count) { return random() % count; };
    std::size_t removed = 0;
    for (int round = 0; round < 1500 && !HasFailure(); ++round) {
        const std::vector<int> weights =
            round % 2 == 0 ? std::vector{1, 2, 3} : std::vector{2, 3, 5, 7, 8, 9, 17, 8888};
        SmallGraph graph;
        graph.nodeCount = 4 + below(4);
        SteinerGraph frozen;
        for (std::size_t count = 6 + below(7); count > 0; --count) {
            graph.edges.push_back(
                {below(graph.nodeCount), below(graph.nodeCount), weights[below(weights.size())]});
            const auto& [end1, end2, weight] = graph.edges.back();
            frozen.edges.push_back({{static_cast<std::uint32_t>(end1)},
                                    {static_cast<std::uint32_t>(end2)},
                                    static_cast<std::uint32_t>(weight)});
        }
        frozen.Freeze(static_cast<std::uint32_t>(graph.nodeCount));
        std::vector<std::size_t> terminals;
        for (std::uint32_t node = 0; node < 2 + below(3); ++node) {
            terminals.push_back(node);
            frozen.terminals.push_back({node});
        }
        const std::optional<SmallGraph::Trees> expected = graph.FindCheapestTrees(terminals);
        if (!expected)
            continue;
        SCOPED_TRACE(testing::PrintToString(graph) + testing::PrintToString(terminals));
        StrandPool strands;
        std::optional<Network> network = BuildNetwork(frozen.View(), frozen.terminals, {}, strands);
        ASSERT_TRUE(network);
        const std::uint32_t edgesBefore = network->GetEdgeCount();
        GetParam().apply(*network);
        removed += edgesBefore - network->GetEdgeCount();
        EXPECT_EQ(SearchExhaustively(*network),
                  Trees(expected->trees.begin(), expected->trees.end()));
    }
    EXPECT_GE(removed, GetParam().leastRemoved);
}

void ApplyAll(Network& network)
{
    Budget budget{SteinerLimits{.effort = 1'000'000'000'000}};
    ReduceByDistances(network, budget);
}

INSTANTIATE_TEST_SUITE_P(
    Each, SteinerReduction,
    testing::Values(
        Reduction{"Degrees", ReduceDegrees, 3769},
        Reduction{"LongEdge",
                  [](Network& network) { RemoveLongEdges(network, SpecialDistances(network)); },
                  982},
        Reduction{
            "DegreeThree",
            [](Network& network) { BypassDegreeThreeNodes(network, SpecialDistances(network)); },
            1095},
        Reduction{
            "NearestVertex",
            [](Network& network) { ContractNearestVertices(network, SpecialDistances(network)); },
            1340},
        Reduction{"Dominated", RemoveDominatedNodes, 1210}, Reduction{"All", ApplyAll, 6182}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace

} // namespace qe::graph
