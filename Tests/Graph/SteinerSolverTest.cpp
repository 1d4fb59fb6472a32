#include "Engine/Graph/Steiner/SteinerSolver.h"
#include "Tests/Graph/SmallGraph.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>
#include <random>
#include <string>
#include <tuple>

namespace qe::graph {

namespace {

using test::SmallGraph;
using Tree = std::vector<EdgeIndex>;

bool IsListedBefore(const Tree& left, const Tree& right)
{
    return std::tuple(left.size(), left) < std::tuple(right.size(), right);
}

/// Owns what a GraphView looks at.
class FrozenGraph
{
public:
    FrozenGraph(std::size_t nodeCount, const std::vector<Edge>& edges)
        : mEdges(edges), mFirstArc(1, 0)
    {
        for (std::uint32_t node = 0; node < nodeCount; ++node) {
            for (std::uint32_t index = 0; index < mEdges.size(); ++index) {
                const auto [end1, end2, weight] = mEdges[index];
                if (end1 != end2 && (end1.value == node || end2.value == node))
                    mArcs.push_back({end1.value == node ? end2 : end1, {index}});
            }
            mFirstArc.push_back(static_cast<std::uint32_t>(mArcs.size()));
        }
    }
    [[nodiscard]] GraphView View() const { return {mEdges, mFirstArc, mArcs}; }

private:
    std::vector<Edge> mEdges;
    std::vector<std::uint32_t> mFirstArc;
    std::vector<Arc> mArcs;
};

NodeIndex Node(std::size_t node)
{
    return {static_cast<std::uint32_t>(node)};
}

FrozenGraph Freeze(const SmallGraph& graph)
{
    std::vector<Edge> edges;
    for (const auto& [end1, end2, weight] : graph.edges)
        edges.push_back({Node(end1), Node(end2), static_cast<std::uint32_t>(weight)});
    return {graph.nodeCount, edges};
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
        const FrozenGraph frozen = Freeze(graph);
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

} // namespace

} // namespace qe::graph
