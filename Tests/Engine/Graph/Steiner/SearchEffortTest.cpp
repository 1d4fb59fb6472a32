#include "Engine/Graph/Steiner/SteinerSolver.h"
#include "Tests/Support/SteinerGraphReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace qe::graph {

namespace {

constexpr std::uint64_t kHastyEffort = 4000;

/// How the edges of a drawn graph lie.
enum class EShape
{
    Random, ///< Anywhere, upon a random tree.
    Grid,   ///< Between the neighbours of a square.
    Plane,  ///< Between points that are near each other, as heavy as they are apart.
    Hubs,   ///< Between nodes and a few hubs that they share, as facts and dimensions.
};

/// A graph that is the same on every machine; of a grid `edges` is the side, of a plane the
/// distance from which nodes are not near.
struct Drawing
{
    EShape shape;
    std::uint32_t nodes;
    std::uint32_t edges;
    std::uint32_t terminals;
    std::uint32_t lightest;
    std::uint32_t heaviest;
};

/// What is known of its cheapest trees, what the search for them takes, what one that is cut short
/// has to find and to prove, and what those take together that are cut short at all its stages.
struct Search
{
    std::uint64_t weight;
    std::uint64_t count;
    std::uint64_t steps;
    std::uint64_t hastyWeight;
    std::uint64_t hastyBound;
    std::uint64_t cutSteps;
};

struct Row
{
    const char* name;
    Drawing drawing;
    Search search;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.name;
}

class GraphDraw
{
public:
    explicit GraphDraw(const Drawing& drawing) : mDrawing(drawing) {}

    SteinerGraph Draw()
    {
        switch (mDrawing.shape) {
        case EShape::Random:
            DrawTree();
            DrawEdges(0, mDrawing.nodes);
            break;
        case EShape::Grid:
            DrawGrid();
            break;
        case EShape::Plane:
            DrawPlane();
            break;
        case EShape::Hubs:
            DrawHubs();
            break;
        }
        std::vector<std::uint32_t> nodes(mDrawing.nodes);
        for (std::uint32_t node = 0; node < mDrawing.nodes; ++node)
            std::swap(nodes[node] = node, nodes[Below(node + 1)]);
        for (std::uint32_t terminal = 0; terminal < mDrawing.terminals; ++terminal)
            mGraph.terminals.push_back({nodes[terminal]});
        mGraph.Freeze(mDrawing.nodes);
        return std::move(mGraph);
    }

private:
    std::uint32_t Below(std::uint32_t count)
    {
        return static_cast<std::uint32_t>(mRandom() % count);
    }

    void Add(std::uint32_t end1, std::uint32_t end2)
    {
        const std::uint32_t weight =
            mDrawing.lightest + Below(mDrawing.heaviest - mDrawing.lightest + 1);
        mGraph.edges.push_back({{end1}, {end2}, weight});
    }

    void DrawTree()
    {
        for (std::uint32_t node = 1; node < mDrawing.nodes; ++node)
            Add(node, Below(node));
    }

    /// Draws edges to the nodes from `first` on.
    void DrawEdges(std::uint32_t first, std::uint32_t count)
    {
        while (mGraph.edges.size() < mDrawing.edges) {
            // Compilers differ in which argument they draw first.
            const std::uint32_t end2 = first + Below(count);
            Add(Below(mDrawing.nodes), end2);
        }
    }

    void DrawHubs()
    {
        const std::uint32_t hubs = mDrawing.nodes / 8;
        const std::uint32_t first = mDrawing.nodes - hubs;
        for (std::uint32_t node = 0; node < first; ++node)
            Add(node, first + Below(hubs));
        DrawEdges(first, hubs);
    }

    void DrawGrid()
    {
        const std::uint32_t side = mDrawing.edges;
        for (std::uint32_t node = 0; node < mDrawing.nodes; ++node) {
            if (node % side != 0)
                Add(node - 1, node);
            if (node >= side)
                Add(node - side, node);
        }
    }

    void DrawPlane()
    {
        std::vector<std::pair<int, int>> points;
        for (std::uint32_t node = 0; node < mDrawing.nodes; ++node) {
            const int across = static_cast<int>(Below(1000));
            points.emplace_back(across, static_cast<int>(Below(1000)));
        }
        const int near = static_cast<int>(mDrawing.edges);
        for (std::uint32_t end1 = 0; end1 < mDrawing.nodes; ++end1) {
            for (std::uint32_t end2 = 0; end2 < end1; ++end2) {
                const int distance = std::abs(points[end1].first - points[end2].first) +
                                     std::abs(points[end1].second - points[end2].second);
                if (distance < near)
                    mGraph.edges.push_back({{end1}, {end2}, static_cast<std::uint32_t>(distance)});
            }
        }
    }

    const Drawing& mDrawing;
    std::mt19937 mRandom{20261123};
    SteinerGraph mGraph;
};

class SearchEffort : public testing::TestWithParam<Row>
{};

// A reduction or bound that is lost changes no answer: it shows in the steps. They are the same on
// every machine; a change that is meant to save some is noted here.
TEST_P(SearchEffort, IsWhatItWas)
{
    const auto& [name, drawing, known] = GetParam();
    const SteinerGraph graph = GraphDraw(drawing).Draw();
    const SteinerResult result = FindCheapestTrees(graph.View(), graph.terminals, {});
    EXPECT_EQ(result.proof, EProof::Optimal);
    EXPECT_EQ(result.weight, known.weight);
    EXPECT_EQ(result.count, known.count);
    EXPECT_EQ(result.steps, known.steps);
}

TEST_P(SearchEffort, IsNotWastedWhenItIsCutShort)
{
    const auto& [name, drawing, known] = GetParam();
    const SteinerGraph graph = GraphDraw(drawing).Draw();
    const SteinerResult result =
        FindCheapestTrees(graph.View(), graph.terminals, {.effort = kHastyEffort});
    EXPECT_LE(result.weight, known.hastyWeight);
    EXPECT_GE(result.lowerBound, known.hastyBound);
    EXPECT_LE(result.lowerBound, known.weight);
    EXPECT_GE(result.weight, known.weight);
}

TEST_P(SearchEffort, CanBeCutShortAtAnyStage)
{
    const auto& [name, drawing, known] = GetParam();
    const SteinerGraph graph = GraphDraw(drawing).Draw();
    std::uint64_t steps = 0;
    for (std::uint64_t effort = 500; effort < known.steps; effort += effort / 2) {
        const SteinerResult result =
            FindCheapestTrees(graph.View(), graph.terminals, {.effort = effort});
        EXPECT_LE(result.lowerBound, known.weight);
        EXPECT_GE(result.weight, known.weight);
        EXPECT_EQ(result.proof == EProof::Optimal, result.lowerBound == result.weight);
        EXPECT_FALSE(result.trees.empty());
        steps += result.steps;
    }
    EXPECT_EQ(steps, known.cutSteps);
}

INSTANTIATE_TEST_SUITE_P(
    Drawn, SearchEffort,
    testing::Values(
        Row{"SparseFewTerminals",
            {EShape::Random, 400, 800, 8, 1, 10},
            {79, 1, 13'431, 79, 59, 58'150}},
        Row{"SparseManyTerminals",
            {EShape::Random, 400, 800, 60, 1, 10},
            {368, 68, 2'247'908, 371, 307, 5'012'713}},
        Row{"SparseMostTerminals",
            {EShape::Random, 300, 650, 90, 1, 100},
            {4116, 2, 558'934, 4163, 3507, 1'504'020}},
        Row{"DenseFewTerminals",
            {EShape::Random, 100, 1200, 12, 1, 100},
            {136, 1, 15'248, 136, 100, 70'995}},
        Row{"DenseUnit",
            {EShape::Random, 80, 400, 15, 1, 1},
            {17, 8058, 4'407'451, 19, 17, 10'777'181}},
        Row{"SparseUnit",
            {EShape::Random, 150, 300, 16, 1, 1},
            {26, 335, 353'587, 26, 5, 1'182'414}},
        Row{"Large",
            {EShape::Random, 1500, 3000, 30, 1, 100},
            {2399, 1, 1'550'889, 2539, 68, 3'451'882}},
        Row{"Grid", {EShape::Grid, 400, 20, 24, 5, 9}, {490, 32, 1'047'926, 508, 265, 2'249'709}},
        Row{"GridUnit", {EShape::Grid, 196, 14, 16, 1, 1}, {47, 288, 62'455, 49, 44, 141'749}},
        Row{"GridWide",
            {EShape::Grid, 900, 30, 26, 90, 110},
            {11581, 1, 1'638'627, 12289, 2398, 3'434'464}},
        Row{"Plane",
            {EShape::Plane, 400, 130, 40, 0, 0},
            {4979, 597196800, 2'299'135, 5167, 41, 5'114'313}},
        Row{"PlaneDense",
            {EShape::Plane, 80, 600, 30, 0, 0},
            {4354, 32, 36'221, 4360, 1111, 132'490}},
        Row{"Hubs", {EShape::Hubs, 120, 300, 20, 1, 3}, {35, 12, 600'895, 38, 28, 1'465'495}},
        Row{"HubsManyTerminals",
            {EShape::Hubs, 96, 400, 40, 10, 30},
            {606, 4, 7'905, 607, 602, 24'720}}),
    [](const auto& row) { return std::string(row.param.name); });

/// What it takes to list and count the trees of a graph that is hardly searched.
struct Listing
{
    const char* name;
    Drawing drawing;
    std::uint64_t count;
    std::uint64_t steps;
    std::size_t bytes;
    /// Of the search that has three quarters of those bytes.
    std::uint64_t cutSteps;
};

void PrintTo(const Listing& listing, std::ostream* out)
{
    *out << listing.name;
}

class ListingEffort : public testing::TestWithParam<Listing>
{};

/// Returns the least memory within which the trees are counted.
std::size_t FindLeastMemory(const SteinerGraph& graph)
{
    std::size_t few = 0;
    std::size_t enough = std::size_t{1} << 26;
    while (enough - few > 64) {
        const std::size_t memory = few + (enough - few) / 2;
        const SteinerResult result =
            FindCheapestTrees(graph.View(), graph.terminals, {.memory = memory});
        (result.limit == ELimit::Memory ? few : enough) = memory;
    }
    return enough;
}

// Work that is not charged would let a hostile graph exceed the limits: so what is charged is held
// from both sides.
TEST_P(ListingEffort, IsCharged)
{
    const auto& [name, drawing, count, steps, bytes, cutSteps] = GetParam();
    const SteinerGraph graph = GraphDraw(drawing).Draw();
    const SteinerResult result = FindCheapestTrees(graph.View(), graph.terminals, {});
    EXPECT_EQ(result.count, count);
    EXPECT_EQ(result.steps, steps);
    EXPECT_NEAR(static_cast<double>(FindLeastMemory(graph)), static_cast<double>(bytes), 64);
    const SteinerResult cut =
        FindCheapestTrees(graph.View(), graph.terminals, {.memory = bytes / 4 * 3});
    EXPECT_EQ(cut.steps, cutSteps);
}

INSTANTIATE_TEST_SUITE_P(
    Drawn, ListingEffort,
    testing::Values(
        Listing{"OnlyZero", {EShape::Random, 14, 24, 5, 0, 0}, 1640, 36641, 79168, 19884},
        Listing{"WithZero", {EShape::Random, 30, 50, 8, 0, 1}, 146, 31072, 21312, 20538},
        Listing{"Spanning", {EShape::Random, 14, 40, 14, 1, 2}, 3, 91, 448, 78},
        Listing{
            "SpanningParallel", {EShape::Hubs, 16, 60, 16, 3, 3}, 1154764800, 26021, 153152, 20276},
        Listing{"Table", {EShape::Random, 80, 320, 10, 1, 2}, 115, 27061, 94208, 30643}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace

} // namespace qe::graph
