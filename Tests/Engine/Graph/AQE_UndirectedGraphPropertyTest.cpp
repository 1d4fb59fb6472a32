// Compares the graph with exhaustive search on small random multigraphs.

#include "Tests/Support/SmallGraph.h"

#include "Engine/Graph/Core/GraphStorage.h"
#include "Engine/Graph/Spanning/SpanningTrees.h"

#include <cstddef>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <vector>

#include <algorithm>
#include <numeric>
#include <set>

namespace qe::test {
namespace {

using Ids = std::vector<amd_id>;
using IdLists = std::vector<Ids>;

const amd_id Unknown(7, 100, 7);

IdLists ToIds(const std::vector<SmallGraph::EdgeSet>& sets)
{
    IdLists lists;
    for (const SmallGraph::EdgeSet& set : sets)
        lists.push_back(SmallGraph::GetEdgeIds(set));
    return lists;
}

std::vector<std::size_t> DrawNodes(const SmallGraph& graph, std::mt19937& random)
{
    std::vector<std::size_t> nodes(1 + random() % 5);
    std::generate(nodes.begin(), nodes.end(), [&] { return random() % graph.nodeCount; });
    return nodes;
}

Ids ToNodeIds(const std::vector<std::size_t>& nodes)
{
    Ids ids;
    for (const std::size_t node : nodes)
        ids.push_back(SmallGraph::GetNodeId(node));
    return ids;
}

// Follows the edges from a node to node; gives where they end, or nothing when they do not meet.
std::optional<std::size_t> Walk(const SmallGraph& graph, std::size_t node, const Ids& path)
{
    for (const amd_id& id : path) {
        std::size_t edge = 0;
        while (SmallGraph::GetEdgeId(edge) != id)
            ++edge;
        const SmallGraph::Edge& ends = graph.edges[edge];
        if (ends.end1 != node && ends.end2 != node)
            return std::nullopt;
        node = ends.end1 == node ? ends.end2 : ends.end1;
    }
    return node;
}

// At each step the lowest edge that touches what is connected.
Ids OrderNaively(const SmallGraph& graph, std::size_t start, SmallGraph::EdgeSet tree)
{
    std::set<std::size_t> connected{start};
    SmallGraph::EdgeSet ordered;
    while (!tree.empty()) {
        const auto next = std::find_if(tree.begin(), tree.end(), [&](std::size_t edge) {
            return connected.contains(graph.edges[edge].end1) ||
                   connected.contains(graph.edges[edge].end2);
        });
        connected.insert({graph.edges[*next].end1, graph.edges[*next].end2});
        ordered.push_back(*next);
        tree.erase(next);
    }
    return SmallGraph::GetEdgeIds(ordered);
}

struct Answers
{
    bool isConnected = false;
    Ids edges;
    Ids tree;
    int treeWeight = 0;
    IdLists nodeEdges;
    IdLists paths;
    IdLists walks;
    std::vector<int> weights;

    friend bool operator==(const Answers&, const Answers&) = default;
};

// Asks for everything but the minimum Steiner trees.
Answers AskAll(AQE_I_UndirectedGraph& graph, std::size_t nodeCount)
{
    Answers answers;
    answers.isConnected = graph.IsConnected();
    graph.GetEdges(answers.edges);
    graph.GetMinimumSpanningTree(answers.tree, answers.treeWeight);
    graph.GetPaths(answers.paths);
    for (const amd_id& edge : answers.edges)
        answers.weights.push_back(graph.GetPathWeight({edge}));
    for (std::size_t from = 0; from < nodeCount; ++from) {
        graph.GetNodeEdges(SmallGraph::GetNodeId(from), answers.nodeEdges.emplace_back());
        for (std::size_t to = 0; to < nodeCount; ++to)
            graph.GetShortestPath(SmallGraph::GetNodeId(from), SmallGraph::GetNodeId(to),
                                  answers.walks.emplace_back(), answers.weights.emplace_back());
    }
    return answers;
}

class JoinGraphProperty : public testing::TestWithParam<unsigned>
{
protected:
    std::mt19937 mRandom{GetParam()};
};

TEST_P(JoinGraphProperty, SpanningTreesAreThoseOfExhaustiveSearch)
{
    for (int round = 0; round < 600; ++round) {
        const SmallGraph graph = SmallGraph::Draw(mRandom, 11);
        SCOPED_TRACE(testing::Message() << graph);
        const std::vector<SmallGraph::EdgeSet> forests = graph.FindSpanningForests();
        const bool isConnected = forests.front().size() + 1 == graph.nodeCount;
        const Answers answers = AskAll(*graph.Make(mRandom), graph.nodeCount);
        ASSERT_EQ(answers.isConnected, isConnected);
        ASSERT_EQ(answers.tree, SmallGraph::GetEdgeIds(forests.front()));
        ASSERT_EQ(answers.treeWeight, graph.GetWeight(forests.front()));
        IdLists expected = isConnected ? ToIds(forests) : IdLists();
        expected.resize(std::min<std::size_t>(expected.size(), 1000));
        ASSERT_EQ(answers.paths, expected);
    }
}

TEST_P(JoinGraphProperty, BoundKeepsTheFirstSpanningTrees)
{
    for (int round = 0; round < 300; ++round) {
        const SmallGraph graph = SmallGraph::Draw(mRandom, 11);
        SCOPED_TRACE(testing::Message() << graph);
        graph::GraphStorage storage;
        for (std::size_t i = 0; i < graph.nodeCount; ++i)
            storage.AddNode(SmallGraph::GetNodeId(i));
        for (std::size_t i = 0; i < graph.edges.size(); ++i)
            storage.AddEdge(SmallGraph::GetEdgeId(i), SmallGraph::GetNodeId(graph.edges[i].end1),
                            SmallGraph::GetNodeId(graph.edges[i].end2),
                            static_cast<std::uint32_t>(graph.edges[i].weight));
        const std::vector<SmallGraph::EdgeSet> forests = graph.FindSpanningForests();
        const std::size_t count =
            forests.front().size() + 1 == graph.nodeCount ? forests.size() : 0;
        for (std::size_t bound = 1; bound < 12; ++bound) {
            graph::SpanningTrees trees(storage.GetView(), bound);
            for (std::size_t i = 0; i < std::min(bound, count); ++i) {
                const std::optional<std::vector<graph::EdgeIndex>> next = trees.GetNext();
                ASSERT_TRUE(next);
                Ids tree;
                for (const graph::EdgeIndex edge : *next)
                    tree.push_back(storage.GetEdgeId(edge));
                ASSERT_EQ(tree, SmallGraph::GetEdgeIds(forests[i])) << "bound " << bound;
            }
            ASSERT_FALSE(trees.GetNext());
            ASSERT_FALSE(trees.GetNext());
        }
    }
}

TEST_P(JoinGraphProperty, ShortestPathsAreWalksOfLeastWeight)
{
    for (int round = 0; round < 600; ++round) {
        const SmallGraph small = SmallGraph::Draw(mRandom, 11);
        SCOPED_TRACE(testing::Message() << small);
        const AUT_RefPtr<AQE_I_UndirectedGraph> graph = small.Make(mRandom);
        for (std::size_t from = 0; from < small.nodeCount; ++from) {
            for (std::size_t to = 0; to < small.nodeCount; ++to) {
                Ids path;
                int weight = 0;
                graph->GetShortestPath(SmallGraph::GetNodeId(from), SmallGraph::GetNodeId(to), path,
                                       weight);
                ASSERT_EQ(weight, small.FindDistance(from, to));
                ASSERT_EQ(graph->GetPathWeight(path), std::max(0, weight));
                ASSERT_EQ(Walk(small, from, path), weight < 0 ? from : to);
            }
        }
    }
}

TEST_P(JoinGraphProperty, ShortestPathTreeHoldsALeastPathToEachNode)
{
    for (int round = 0; round < 600; ++round) {
        const SmallGraph small = SmallGraph::Draw(mRandom, 11);
        const std::vector<std::size_t> given = DrawNodes(small, mRandom);
        SCOPED_TRACE(testing::Message() << small << ", " << testing::PrintToString(given));
        Ids nodes;
        Ids edges;
        int weight = 0;
        const AUT_RefPtr<AQE_I_UndirectedGraph> graph = small.Make(mRandom);
        graph->GetShortestPathTree(ToNodeIds(given), nodes, edges, weight);
        ASSERT_EQ(weight, graph->GetPathWeight(edges));
        ASSERT_EQ(nodes.size(), edges.size() + 1);

        // A tree of its own, in which each edge reaches the next node and only given ones end.
        SmallGraph tree{small.nodeCount, {}};
        for (const amd_id& id : edges) {
            std::size_t edge = 0;
            while (SmallGraph::GetEdgeId(edge) != id)
                ++edge;
            tree.edges.push_back(small.edges[edge]);
            const bool isEnd1 =
                SmallGraph::GetNodeId(small.edges[edge].end1) == nodes[tree.edges.size()];
            ASSERT_TRUE(isEnd1 ||
                        SmallGraph::GetNodeId(small.edges[edge].end2) == nodes[tree.edges.size()]);
        }
        ASSERT_EQ(tree.FindSpanningForests().front().size(), edges.size());
        std::vector<std::size_t> reached;
        for (const std::size_t node : given) {
            ASSERT_EQ(tree.FindDistance(given[0], node), small.FindDistance(given[0], node));
            if (small.FindDistance(given[0], node) >= 0)
                reached.push_back(node);
        }
        ASSERT_EQ(tree.FindCheapestTrees(reached)->weight, weight);
    }
}

TEST_P(JoinGraphProperty, CheapestTreesAreThoseOfExhaustiveSearch)
{
    for (int round = 0; round < 400; ++round) {
        const SmallGraph small = SmallGraph::Draw(mRandom, 11);
        std::vector<std::size_t> given = DrawNodes(small, mRandom);
        SCOPED_TRACE(testing::Message() << small << ", " << testing::PrintToString(given));
        const std::optional<SmallGraph::Trees> expected = small.FindCheapestTrees(given);
        Ids firstBefore;
        for (int order = 0; order < 2; ++order) {
            IdLists walks;
            for (const SmallGraph::EdgeSet& tree :
                 expected ? expected->trees : std::vector<SmallGraph::EdgeSet>())
                walks.push_back(OrderNaively(small, given.front(), tree));
            const AUT_RefPtr<AQE_I_UndirectedGraph> graph = small.Make(mRandom);
            IdLists trees;
            Ids first;
            int weight = 0;
            ASSERT_EQ(graph->GetCheapestTrees(ToNodeIds(given), trees, weight),
                      expected.has_value());
            graph->GetTreeEdges(ToNodeIds(given), first);
            ASSERT_EQ(weight, expected ? expected->weight : -1);
            ASSERT_EQ(trees, walks);
            ASSERT_EQ(std::count(walks.begin(), walks.end(), first), walks.empty() ? 0 : 1);
            std::sort(first.begin(), first.end());
            ASSERT_TRUE(order == 0 || first == firstBefore);
            firstBefore = first;
            std::shuffle(given.begin(), given.end(), mRandom);
        }
        Ids withStranger = ToNodeIds(given);
        withStranger.insert(withStranger.begin() + static_cast<int>(mRandom() % 2), Unknown);
        IdLists none;
        int weight = 0;
        ASSERT_FALSE(small.Make(mRandom)->GetCheapestTrees(withStranger, none, weight));
        ASSERT_EQ(weight, -1);
        ASSERT_EQ(none, IdLists());
    }
}

// A graph that is changed and asked in turns answers like one that is filled at once.
TEST_P(JoinGraphProperty, ChangedGraphEqualsAFreshOne)
{
    for (int round = 0; round < 150; ++round) {
        const SmallGraph drawn = SmallGraph::Draw(mRandom, 11);
        SmallGraph now{drawn.nodeCount, {}};
        const AUT_RefPtr<AQE_I_UndirectedGraph> graph = now.Make(mRandom);
        for (const SmallGraph::Edge& edge : drawn.edges) {
            graph->AddEdge(SmallGraph::GetEdgeId(now.edges.size()),
                           SmallGraph::GetNodeId(edge.end1), SmallGraph::GetNodeId(edge.end2),
                           edge.weight, 0);
            now.edges.push_back(edge);
            if (mRandom() % 2 == 0)
                (void)AskAll(*graph, now.nodeCount);
            const std::size_t changed = mRandom() % (now.edges.size() + 1);
            graph->SetEdgeWeight(SmallGraph::GetEdgeId(changed), 4);
            if (changed < now.edges.size())
                now.edges[changed].weight = 4;
            graph->AddEdge(SmallGraph::GetEdgeId(mRandom() % now.edges.size()), Unknown, Unknown, 1,
                           0);
            SCOPED_TRACE(testing::Message() << now);
            ASSERT_EQ(AskAll(*graph, now.nodeCount), AskAll(*now.Make(mRandom), now.nodeCount));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, JoinGraphProperty, testing::Range(1U, 5U));

} // namespace
} // namespace qe::test
