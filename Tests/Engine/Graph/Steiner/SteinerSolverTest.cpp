#include "Engine/Graph/Steiner/SteinerSolver.h"
#include "Engine/Graph/Core/DisjointSets.h"
#include "Tests/Support/SmallGraph.h"
#include "Tests/Support/SteinerGraphReader.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace qe::graph {

namespace {

using test::SmallGraph;
using Tree = std::vector<EdgeIndex>;

bool IsListedBefore(const Tree& left, const Tree& right)
{
    return std::tuple(left.size(), left) < std::tuple(right.size(), right);
}

NodeIndex Node(std::size_t node)
{
    return {static_cast<std::uint32_t>(node)};
}

SteinerGraph Freeze(const SmallGraph& graph)
{
    SteinerGraph frozen;
    for (const auto& [end1, end2, weight] : graph.edges)
        frozen.edges.push_back({Node(end1), Node(end2), static_cast<std::uint32_t>(weight)});
    frozen.Freeze(static_cast<std::uint32_t>(graph.nodeCount));
    return frozen;
}

SteinerResult SearchExhaustively(const SmallGraph& graph, const std::vector<std::size_t>& terminals)
{
    SteinerResult result;
    const std::optional<SmallGraph::Trees> found = graph.FindCheapestTrees(terminals);
    if (!found)
        return result;
    result.connected = true;
    result.weight = static_cast<std::uint64_t>(found->weight);
    result.lowerBound = result.weight;
    result.count = found->trees.size();
    for (const SmallGraph::EdgeSet& tree : found->trees) {
        result.trees.emplace_back();
        for (const std::size_t edge : tree)
            result.trees.back().push_back({static_cast<std::uint32_t>(edge)});
    }
    return result;
}

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

struct Draw
{
    const char* name;
    std::vector<int> weights;
    std::size_t edgesAtLeast;
    std::size_t edgesAtMost;
    std::uint32_t rounds;
};

void PrintTo(const Draw& draw, std::ostream* out)
{
    *out << draw.name;
}

class SteinerDifferential : public testing::TestWithParam<Draw>
{
protected:
    std::size_t Below(std::size_t count) { return mRandom() % count; }

    SmallGraph DrawGraph()
    {
        const Draw& draw = GetParam();
        SmallGraph graph;
        graph.nodeCount = 2 + Below(6);
        std::size_t count = draw.edgesAtLeast + Below(draw.edgesAtMost - draw.edgesAtLeast + 1);
        for (; count > 0; --count)
            graph.edges.push_back({Below(graph.nodeCount), Below(graph.nodeCount),
                                   draw.weights[Below(draw.weights.size())]});
        return graph;
    }

    std::mt19937 mRandom{20240611};
};

TEST_P(SteinerDifferential, FindsExactlyTheTreesOfExhaustiveSearch)
{
    for (std::uint32_t round = 0; round < GetParam().rounds && !HasFailure(); ++round) {
        const SmallGraph graph = DrawGraph();
        const SteinerGraph frozen = Freeze(graph);
        std::vector<std::size_t> numbers(1 + Below(graph.nodeCount + 1));
        std::vector<NodeIndex> terminals;
        for (std::size_t& number : numbers) {
            number = Below(graph.nodeCount);
            terminals.push_back(Node(number));
        }
        SCOPED_TRACE(testing::PrintToString(graph) + testing::PrintToString(numbers));
        const SteinerResult expected = SearchExhaustively(graph, numbers);
        ExpectEqual(FindCheapestTrees(frozen.View(), terminals, {}), expected);

        SteinerLimits few;
        few.maximumTrees = expected.count / 2;
        const SteinerResult cut = FindCheapestTrees(frozen.View(), terminals, few);
        EXPECT_EQ(cut.count, expected.count);
        EXPECT_EQ(cut.trees.size(), few.maximumTrees);
        EXPECT_TRUE(std::includes(expected.trees.begin(), expected.trees.end(), cut.trees.begin(),
                                  cut.trees.end(), IsListedBefore));
        std::shuffle(terminals.begin(), terminals.end(), mRandom);
        terminals.push_back(terminals.front());
        EXPECT_TRUE(FindCheapestTrees(frozen.View(), terminals, few).trees == cut.trees);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Draws, SteinerDifferential,
    testing::Values(Draw{"SparseUnit", {1}, 0, 10, 1000}, Draw{"DenseUnit", {1}, 10, 13, 400},
                    Draw{"SparseFew", {1, 2, 3}, 0, 10, 1000},
                    Draw{"DenseFew", {1, 2, 3}, 10, 13, 400},
                    Draw{"OfTables", {1, 2, 3, 5, 7, 11, 17, 8888}, 4, 12, 1000},
                    Draw{"NearlyEqual", {999, 1000, 1001, 2000}, 8, 13, 400},
                    Draw{"WithZero", {0, 0, 1, 2}, 4, 12, 1000}, Draw{"OnlyZero", {0}, 0, 12, 300}),
    [](const auto& row) { return std::string(row.param.name); });

struct KnownGraph
{
    const char* name;
    std::uint64_t weight;
    std::uint64_t count;
};

void PrintTo(const KnownGraph& graph, std::ostream* out)
{
    *out << graph.name;
}

class SteinerKnownGraph : public testing::TestWithParam<KnownGraph>
{};

TEST_P(SteinerKnownGraph, HasItsOptimumAndNumberOfTrees)
{
    const std::filesystem::path folder = std::filesystem::path(QEREFINER_DATA_DIR) / "steiner";
    std::ifstream text(folder / (std::string(GetParam().name) + ".gr"));
    if (!text)
        GTEST_SKIP() << "no graphs in " << folder;
    const std::optional<SteinerGraph> graph = ReadSteinerGraph(text);
    ASSERT_TRUE(graph);
    SteinerLimits limits;
    limits.effort = 100'000'000'000;
    const SteinerResult result = FindCheapestTrees(graph->View(), graph->terminals, limits);
    EXPECT_EQ(result.weight, GetParam().weight);
    EXPECT_EQ(result.lowerBound, GetParam().weight);
    EXPECT_EQ(result.count, GetParam().count);
    EXPECT_EQ(result.trees.size(), std::min<std::uint64_t>(GetParam().count, 1000));
    for (std::size_t place = 0; place < result.trees.size(); ++place) {
        std::uint64_t weight = 0;
        for (const EdgeIndex edge : result.trees[place])
            weight += graph->edges[edge.value].weight;
        EXPECT_EQ(weight, GetParam().weight);
        if (place > 0) {
            EXPECT_TRUE(IsListedBefore(result.trees[place - 1], result.trees[place]));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Published, SteinerKnownGraph,
    testing::Values(KnownGraph{"001", 503, 3}, KnownGraph{"003", 73, 1}, KnownGraph{"009", 926, 4},
                    KnownGraph{"011", 23, 4155264}, KnownGraph{"021", 2171, 1},
                    KnownGraph{"029", 245, 336}, KnownGraph{"039", 604, 113118},
                    KnownGraph{"055", 311, 23}, KnownGraph{"067", 6673, 6569164800},
                    KnownGraph{"071", 344, 58}, KnownGraph{"091", 714, 23236416},
                    KnownGraph{"101", 1601190, 2185920}, KnownGraph{"107", 848, 153846}),
    [](const auto& row) { return std::string(row.param.name); });

/// Makes a cube of eight dimensions, half of whose corners are terminals, no two of them
/// neighbours: exact search is hopeless.
SteinerGraph MakeCube()
{
    constexpr std::uint32_t kNodeCount = 256;
    SteinerGraph graph;
    for (std::uint32_t node = 0; node < kNodeCount; ++node) {
        for (std::uint32_t bit = 1; bit < kNodeCount; bit *= 2) {
            if ((node & bit) == 0)
                graph.edges.push_back({{node}, {node | bit}, 1});
        }
        if (std::popcount(node) % 2 == 0)
            graph.terminals.push_back({node});
    }
    graph.Freeze(kNodeCount);
    return graph;
}

struct LimitCase
{
    SteinerLimits limits;
    ELimit limit;
};

TEST(SteinerLimits, AreKeptOnAHostileGraphAndWhatIsAnsweredIsATree)
{
    const SteinerGraph graph = MakeCube();
    const std::vector<LimitCase> cases{
        {{.effort = 0}, ELimit::Effort},
        {{.effort = 1'000'000}, ELimit::Effort},
        {{.effort = 10'000'000}, ELimit::Effort},
        {{.effort = 10'000'000, .memory = 2 << 20}, ELimit::Memory},
        {{.time = std::chrono::milliseconds(1)}, ELimit::Time},
    };
    for (const auto& [limits, limit] : cases) {
        const SteinerResult result = FindCheapestTrees(graph.View(), graph.terminals, limits);
        EXPECT_EQ(result.limit, limit);
        EXPECT_EQ(result.countProof, ECount::AtLeast);
        EXPECT_LE(result.lowerBound, result.weight);
        EXPECT_EQ(result.proof == EProof::Optimal, result.lowerBound == result.weight);
        // One tree is grown in any case, which takes a few times as many steps as there are edges.
        EXPECT_LE(result.steps, limits.effort + limits.effort / 10 + 10 * graph.edges.size());
        ASSERT_FALSE(result.trees.empty());
        for (const Tree& tree : result.trees) {
            DisjointSets parts(graph.View().GetNodeCount());
            for (const EdgeIndex edge : tree)
                EXPECT_TRUE(parts.Unite(graph.edges[edge.value].end1.value,
                                        graph.edges[edge.value].end2.value));
            for (const NodeIndex terminal : graph.terminals)
                EXPECT_EQ(parts.Find(terminal.value), parts.Find(graph.terminals[0].value));
            EXPECT_EQ(tree.size(), result.weight);
        }
        if (limit != ELimit::Time) {
            EXPECT_TRUE(FindCheapestTrees(graph.View(), graph.terminals, limits).trees ==
                        result.trees);
        }
    }
}

/// Makes a complete graph of equal edges whose first nodes are terminals.
SteinerGraph MakeCompleteGraph(std::uint32_t nodeCount, std::uint32_t terminalCount)
{
    SteinerGraph graph;
    for (std::uint32_t end1 = 0; end1 < nodeCount; ++end1) {
        for (std::uint32_t end2 = end1 + 1; end2 < nodeCount; ++end2)
            graph.edges.push_back({{end1}, {end2}, 17});
    }
    for (std::uint32_t terminal = 0; terminal < terminalCount; ++terminal)
        graph.terminals.push_back({terminal});
    graph.Freeze(nodeCount);
    return graph;
}

// As of a fact and all its roles of one dimension, each joined to each.
TEST(SteinerLimits, AreFarFromReachedByCompleteGraphsOfEqualEdges)
{
    const struct
    {
        std::uint32_t nodes;
        std::uint32_t terminals;
        std::uint64_t count;
    } cases[] = {{13, 13, 1792160394037U}, {16, 13, 1792160394037U}, {40, 40, ~std::uint64_t{0}}};
    for (const auto& [nodes, terminals, count] : cases) {
        const SteinerGraph graph = MakeCompleteGraph(nodes, terminals);
        const SteinerResult result = FindCheapestTrees(graph.View(), graph.terminals, {});
        EXPECT_EQ(result.weight, 17U * (terminals - 1));
        EXPECT_EQ(result.lowerBound, result.weight);
        EXPECT_EQ(result.count, count) << "of Cayley's formula, as far as 64 bits hold it";
        EXPECT_EQ(result.limit, ELimit::Trees);
        EXPECT_LT(result.steps, 1'000'000U);
        EXPECT_EQ(result.trees.size(), 1000U);
        EXPECT_TRUE(std::is_sorted(result.trees.begin(), result.trees.end()));
        EXPECT_TRUE(std::adjacent_find(result.trees.begin(), result.trees.end()) ==
                    result.trees.end());
    }
}

// What one tree leaves out was not asked for, so that no limit has kept it back.
TEST(SteinerLimits, KeepNothingFromWhoWantsOneTree)
{
    for (const std::uint32_t nodes : {13U, 16U}) {
        const SteinerGraph graph = MakeCompleteGraph(nodes, 13);
        for (const std::size_t maximumTrees : {0U, 1U, 5U}) {
            const SteinerResult result =
                FindCheapestTrees(graph.View(), graph.terminals,
                                  {.answer = EAnswer::OneTree, .maximumTrees = maximumTrees});
            EXPECT_EQ(result.weight, 17U * 12);
            EXPECT_EQ(result.trees.size(), 1U);
            EXPECT_EQ(result.count, 1U);
            EXPECT_EQ(result.countProof, ECount::AtLeast);
            EXPECT_EQ(result.limit, ELimit::None);
        }
    }
}

// A proven search whose derivations do not fit lists the trees that it lists when they do.
TEST(SteinerLimits, ListTheSameTreesWhetherTheyCanBeCountedOrNot)
{
    SteinerGraph graph;
    constexpr std::uint32_t kTerminals = 8;
    constexpr std::uint32_t kHubs = 8;
    for (std::uint32_t hub = 0; hub < kHubs; ++hub) {
        for (std::uint32_t terminal = 0; terminal < kTerminals; ++terminal)
            graph.edges.push_back({{terminal}, {kTerminals + hub}, 5});
    }
    for (std::uint32_t terminal = 0; terminal < kTerminals; ++terminal)
        graph.terminals.push_back({terminal});
    graph.Freeze(kTerminals + kHubs);
    const SteinerResult whole = FindCheapestTrees(graph.View(), graph.terminals, {});
    EXPECT_EQ(whole.countProof, ECount::Exact);
    bool isCut = false;
    for (std::size_t memory = std::size_t{1} << 15; memory < std::size_t{1} << 26;
         memory += memory / 4) {
        const SteinerResult part =
            FindCheapestTrees(graph.View(), graph.terminals, {.memory = memory});
        if (part.proof != EProof::Optimal || part.countProof == ECount::Exact)
            continue;
        isCut = true;
        EXPECT_EQ(part.limit, ELimit::Memory);
        EXPECT_EQ(part.weight, whole.weight);
        EXPECT_TRUE(std::includes(whole.trees.begin(), whole.trees.end(), part.trees.begin(),
                                  part.trees.end(), IsListedBefore));
    }
    EXPECT_TRUE(isCut);
}

} // namespace

} // namespace qe::graph
