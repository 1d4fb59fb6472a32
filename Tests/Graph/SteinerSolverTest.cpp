#include "Engine/Graph/Steiner/SteinerSolver.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <tuple>

namespace qe::graph {

namespace {

using Tree = std::vector<EdgeIndex>;

/// Owns what a GraphView looks at.
class GraphFixture
{
public:
    GraphFixture(std::uint32_t nodeCount, std::vector<Edge> edges)
        : mEdges(std::move(edges)), mFirstArc(nodeCount + 1)
    {
        std::vector<std::vector<Arc>> arcs(nodeCount);
        for (std::uint32_t index = 0; index < mEdges.size(); ++index) {
            const auto [end1, end2, weight] = mEdges[index];
            if (end1 == end2)
                continue;
            arcs[end1.value].push_back({end2, {index}});
            arcs[end2.value].push_back({end1, {index}});
        }
        for (std::uint32_t node = 0; node < nodeCount; ++node) {
            mArcs.insert(mArcs.end(), arcs[node].begin(), arcs[node].end());
            mFirstArc[node + 1] = static_cast<std::uint32_t>(mArcs.size());
        }
    }
    // NOLINTNEXTLINE: a view by design
    [[nodiscard]] GraphView View() const { return {mEdges, mFirstArc, mArcs}; }
    [[nodiscard]] const std::vector<Edge>& GetEdges() const { return mEdges; }

private:
    std::vector<Edge> mEdges;
    std::vector<std::uint32_t> mFirstArc;
    std::vector<Arc> mArcs;
};

std::string Describe(const GraphFixture& graph, const std::vector<NodeIndex>& terminals)
{
    std::ostringstream text;
    for (const Edge& edge : graph.GetEdges())
        text << edge.end1.value << '-' << edge.end2.value << ':' << edge.weight << ' ';
    text << "terminals";
    for (const NodeIndex terminal : terminals)
        text << ' ' << terminal.value;
    return text.str();
}

/// Says whether the edges are a tree that touches all terminals and has no other leaves.
bool IsSteinerTree(const GraphFixture& graph, const Tree& tree,
                   const std::vector<NodeIndex>& terminals)
{
    const std::uint32_t nodeCount = graph.View().GetNodeCount();
    std::vector<std::uint32_t> parts(nodeCount);
    std::vector<std::uint32_t> degrees(nodeCount, 0);
    std::iota(parts.begin(), parts.end(), 0U);
    const auto find = [&](std::uint32_t node) {
        while (parts[node] != node)
            node = parts[node] = parts[parts[node]];
        return node;
    };
    for (const EdgeIndex index : tree) {
        const Edge& edge = graph.GetEdges()[index.value];
        if (find(edge.end1.value) == find(edge.end2.value))
            return false;
        parts[find(edge.end1.value)] = find(edge.end2.value);
        ++degrees[edge.end1.value];
        ++degrees[edge.end2.value];
    }
    std::size_t touched = 0;
    for (std::uint32_t node = 0; node < nodeCount; ++node) {
        const bool isTerminal =
            std::find(terminals.begin(), terminals.end(), NodeIndex{node}) != terminals.end();
        if (isTerminal ? find(node) != find(terminals.front().value) : degrees[node] == 1)
            return false;
        touched += isTerminal || degrees[node] > 0 ? 1U : 0U;
    }
    return touched == tree.size() + 1;
}

std::uint64_t Weigh(const GraphFixture& graph, const Tree& tree)
{
    std::uint64_t weight = 0;
    for (const EdgeIndex edge : tree)
        weight += graph.GetEdges()[edge.value].weight;
    return weight;
}

/// Tries every subset of the edges.
SteinerResult SearchExhaustively(const GraphFixture& graph,
                                 const std::vector<NodeIndex>& terminals)
{
    SteinerResult best;
    const std::size_t edgeCount = graph.GetEdges().size();
    for (std::uint64_t subset = 0; subset < std::uint64_t{1} << edgeCount; ++subset) {
        Tree tree;
        for (std::uint32_t edge = 0; edge < edgeCount; ++edge) {
            if (((subset >> edge) & 1U) != 0)
                tree.push_back({edge});
        }
        const std::uint64_t weight = Weigh(graph, tree);
        if ((best.connected && weight > best.weight) || !IsSteinerTree(graph, tree, terminals))
            continue;
        if (!best.connected || weight < best.weight)
            best.trees.clear();
        best.connected = true;
        best.weight = weight;
        best.trees.push_back(tree);
    }
    best.count = best.trees.size();
    best.lowerBound = best.weight;
    std::sort(best.trees.begin(), best.trees.end(), [](const Tree& left, const Tree& right) {
        return std::tuple(left.size(), left) < std::tuple(right.size(), right);
    });
    return best;
}

class RandomGraphs
{
public:
    explicit RandomGraphs(std::uint32_t seed) : mRandom(seed) {}

    std::uint32_t Draw(std::uint32_t below) { return static_cast<std::uint32_t>(mRandom()) % below; }

    /// Draws a multigraph with self-loops.
    GraphFixture DrawGraph(std::uint32_t nodeCount, std::uint32_t edgeCount,
                           const std::vector<std::uint32_t>& weights)
    {
        std::vector<Edge> edges;
        for (std::uint32_t edge = 0; edge < edgeCount; ++edge) {
            const auto count = static_cast<std::uint32_t>(weights.size());
            edges.push_back({{Draw(nodeCount)}, {Draw(nodeCount)}, weights[Draw(count)]});
        }
        return {nodeCount, edges};
    }

    std::vector<NodeIndex> DrawTerminals(std::uint32_t nodeCount, std::uint32_t count)
    {
        std::vector<NodeIndex> terminals;
        for (std::uint32_t place = 0; place < count; ++place)
            terminals.push_back({Draw(nodeCount)});
        return terminals;
    }

    std::mt19937& Engine() { return mRandom; }

private:
    std::mt19937 mRandom;
};

void ExpectEqual(const SteinerResult& found, const SteinerResult& expected)
{
    EXPECT_EQ(found.connected, expected.connected);
    EXPECT_EQ(found.weight, expected.weight);
    EXPECT_EQ(found.lowerBound, expected.lowerBound);
    EXPECT_EQ(found.count, expected.count);
    EXPECT_EQ(found.proof, EProof::Optimal);
    EXPECT_EQ(found.countProof, ECount::Exact);
    EXPECT_TRUE(found.trees == expected.trees);
}

struct WeightRow
{
    const char* name;
    std::vector<std::uint32_t> weights;
    std::uint32_t rounds;
};

class SteinerDifferential : public testing::TestWithParam<WeightRow>
{};

TEST_P(SteinerDifferential, FindsExactlyTheTreesOfExhaustiveSearch)
{
    RandomGraphs random(20240611);
    for (std::uint32_t round = 0; round < GetParam().rounds && !HasFailure(); ++round) {
        const std::uint32_t nodeCount = 2 + random.Draw(7);
        const GraphFixture graph =
            random.DrawGraph(nodeCount, random.Draw(13), GetParam().weights);
        std::vector<NodeIndex> terminals =
            random.DrawTerminals(nodeCount, 1 + random.Draw(nodeCount + 1));
        SCOPED_TRACE(Describe(graph, terminals));
        const SteinerResult expected = SearchExhaustively(graph, terminals);
        ExpectEqual(FindCheapestTrees(graph.View(), terminals, {}), expected);
        std::shuffle(terminals.begin(), terminals.end(), random.Engine());
        ExpectEqual(FindCheapestTrees(graph.View(), terminals, {}), expected);
        if (expected.count < 2)
            continue;
        SteinerLimits few;
        few.maximumTrees = expected.count / 2;
        const SteinerResult cut = FindCheapestTrees(graph.View(), terminals, few);
        EXPECT_EQ(cut.count, expected.count);
        EXPECT_EQ(cut.trees.size(), few.maximumTrees);
        EXPECT_TRUE(std::includes(expected.trees.begin(), expected.trees.end(), cut.trees.begin(),
                                  cut.trees.end(), [](const Tree& left, const Tree& right) {
                                      return std::tuple(left.size(), left) <
                                             std::tuple(right.size(), right);
                                  }));
    }
}

INSTANTIATE_TEST_SUITE_P(Weights, SteinerDifferential,
                         testing::Values(WeightRow{"Unit", {1}, 1500},
                                         WeightRow{"Few", {1, 2, 3}, 1500},
                                         WeightRow{"OfTables",
                                                   {1, 2, 3, 5, 7, 11, 17, 8888},
                                                   1500},
                                         WeightRow{"WithZero", {0, 0, 1, 2}, 1500},
                                         WeightRow{"OnlyZero", {0}, 200},
                                         WeightRow{"Huge", {4294967295U, 4294967294U}, 300}),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace

} // namespace qe::graph
