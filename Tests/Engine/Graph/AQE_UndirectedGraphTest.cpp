#include "Tests/Support/GraphText.h"

#include "Engine/Graph/CheapestTrees.h"
#include "Engine/Graph/Core/GraphStorage.h"
#include "Engine/Graph/Core/ShortestPaths.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"

#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace qe::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// "5: a-b b-c", or "-1: " when there is no path.
std::string FindPath(const GraphText& graph, const std::string& from, const std::string& to)
{
    std::vector<amd_id> edges;
    int weight = 0;
    graph.Get().GetShortestPath(graph.Id(from), graph.Id(to), edges, weight);
    return std::to_string(weight) + ": " + graph.Write(edges);
}

std::string FindTree(const GraphText& graph, std::string_view names)
{
    std::vector<amd_id> nodes;
    std::vector<amd_id> edges;
    int weight = 0;
    graph.Get().GetShortestPathTree(graph.Ids(names), nodes, edges, weight);
    return std::to_string(weight) + ": " + graph.Write(nodes) + " | " + graph.Write(edges);
}

std::optional<int> FindCheapest(const GraphText& graph, std::string_view names,
                                std::vector<std::string>& trees)
{
    std::vector<std::vector<amd_id>> found;
    int weight = 0;
    const bool isConnected = graph.Get().GetCheapestTrees(graph.Ids(names), found, weight);
    trees = graph.Write(found);
    EXPECT_EQ(isConnected, weight != -1);
    return isConnected ? std::optional(weight) : std::nullopt;
}

TEST(JoinGraph, ShortestPathIsOneAmongEquals)
{
    const struct
    {
        const char* what;
        const char* graph;
        const char* from;
        const char* to;
        const char* expected;
    } cases[] = {
        {"itself", "a-b:1", "b", "b", "0: "},
        {"unknown target", "a-b:1", "a", "x", "-1: "},
        {"unknown both", "a-b:1", "x", "x", "-1: "},
        {"the id of an edge is no node's", "a-b:1", "a", "a-b", "-1: "},
        {"parallel edges", "a-b:5 a-b:3 a-b:3", "a", "b", "3: a-b#2"},
        {"a ring passes the node settled first", "a-b:2 b-d:1 a-c:1 c-d:2", "a", "d", "3: a-c c-d"},
        {"weight zero", "a-b:0 b-c:0 a-c:0", "a", "c", "0: a-c"},
        {"avoided joins are finite", "a-b:8888", "a", "b", "8888: a-b"},
        {"negative counts zero", "a-b:-5 b-c:2", "a", "c", "2: a-b b-c"},
        {"sums saturate", "a-b:2147483647 b-c:2147483647", "a", "c", "2147483647: a-b b-c"},
        {"saturated sums still differ",
         "a-b:2147483647 b-c:2147483647 a-d:2147483647 d-c:2147483646", "a", "c",
         "2147483647: a-d d-c"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(FindPath(GraphText(test.graph), test.from, test.to), test.expected) << test.what;
}

TEST(ShortestPathCache, DropsTheSourceThatWasNotAskedForLongest)
{
    // What is remembered leads on, even in the other graph, where nothing does.
    graph::GraphStorage connected;
    graph::GraphStorage apart;
    for (int node = 1; node <= 4; ++node) {
        connected.AddEdge({0, 102, node}, {0, 100, node}, {0, 100, node % 4 + 1}, 1);
        apart.AddNode({0, 100, node});
    }
    const std::size_t bytesEach = sizeof(graph::ShortestPaths) + 4 * sizeof(graph::EdgeIndex);
    const auto remembered = [&](std::size_t limit, const std::string& asked) {
        std::string letters;
        for (const std::uint32_t source : {0U, 1U, 2U, 3U}) {
            graph::ShortestPathCache cache(limit);
            for (const char letter : asked)
                cache.Get(connected.GetView(), 1, {static_cast<std::uint32_t>(letter - 'a')});
            if (cache.Get(apart.GetView(), 1, {source}).Reaches({(source + 1) % 4}))
                letters += static_cast<char>('a' + source);
            EXPECT_FALSE(cache.Get(apart.GetView(), 2, {source}).Reaches({(source + 1) % 4}));
        }
        return letters;
    };
    EXPECT_EQ(remembered(0, "ab"), "b");
    EXPECT_EQ(remembered(2 * bytesEach, "abac"), "ac");
    EXPECT_EQ(remembered(3 * bytesEach - 1, "abc"), "bc");
    EXPECT_EQ(remembered(3 * bytesEach, "abc"), "abc");
    EXPECT_EQ(remembered(graph::ShortestPathCache::kMaximumBytes, "abcd"), "abcd");
}

TEST(JoinGraph, PresentNodesAndEdgesStayAsTheyAre)
{
    GraphText text("a-b:5 b-c:7");
    AQE_I_UndirectedGraph& graph = text.Get();
    const amd_id edge = text.Id("a-b");
    const amd_id stranger(0, 100, 77);
    graph.AddEdge(edge, text.Id("c"), stranger, 1, 0);
    EXPECT_TRUE(graph.IsConnected()) << "the ends of an edge that is there are not added";
    EXPECT_EQ(FindPath(text, "a", "b"), "5: a-b");

    graph.SetEdgeWeight(edge, 9);
    graph.AddEdge(edge, text.Id("a"), text.Id("b"), 1, 0);
    graph.SetEdgeWeight(stranger, 3);
    EXPECT_EQ(graph.GetPathWeight({edge, edge, text.Id("b-c"), text.Id("a"), stranger}), 25);

    std::vector<amd_id> edges{stranger};
    graph.GetEdges(edges);
    EXPECT_THAT(edges, ElementsAre(stranger, edge, text.Id("b-c")));
    graph.AddNode(stranger);
    EXPECT_FALSE(graph.IsConnected());
}

TEST(JoinGraph, NodeEdgesAreInIdOrderAndCountALoopOnce)
{
    const GraphText text("a-b:1 a-a:1 c-a:1 b-c:1 a-b:1 a-a:1");
    std::vector<amd_id> edges;
    text.Get().GetNodeEdges(text.Id("a"), edges);
    text.Get().GetNodeEdges(text.Id("x"), edges);
    EXPECT_EQ(text.Write(edges), "a-b a-a c-a a-b#2 a-a#2");
}

TEST(JoinGraph, ShortestPathTreeGrowsFromTheFirstNode)
{
    const GraphText text("a-m:1 m-b:1 m-c:1 b-c:1 c-d:1 x-y:1 a-b:3");
    EXPECT_EQ(FindTree(text, "a b c"), "3: a m b c | a-m m-b m-c");
    EXPECT_EQ(FindTree(text, "c a b"), "3: c m a b | m-c a-m b-c");
    EXPECT_EQ(FindTree(text, "a y unknown a b a"), "2: a m b | a-m m-b");
    EXPECT_EQ(FindTree(text, "a x"), "0: a | ");
    EXPECT_EQ(FindTree(text, "unknown a b"), "0:  | ");
    EXPECT_EQ(FindTree(text, ""), "0:  | ");
}

TEST(JoinGraph, PathsOfALargeGraphEndAtTheBoundWithTheLightest)
{
    // A ring of 3,000 edges of weight 8888, each of the first 300 with a twin that is 1 to 300
    // heavier: trees leave out one pair or single edge, and take twins.
    std::string ring;
    for (int i = 0; i < 3000; ++i) {
        const std::string ends =
            'n' + std::to_string(i) + "-n" + std::to_string((i + 1) % 3000) + ':';
        ring += ends + "8888 ";
        if (i < 300)
            ring += ends + std::to_string(8889 + i) + ' ';
    }
    const GraphText text(ring);
    std::vector<std::vector<amd_id>> paths;
    text.Get().GetPaths(paths);
    ASSERT_EQ(paths.size(), 1000U);
    // 2,700 single edges and 300 pairs can be left out at no cost.
    for (const std::vector<amd_id>& path : paths)
        ASSERT_EQ(text.Get().GetPathWeight(path), 2999 * 8888);
    EXPECT_LT(paths[0], paths[1]);
    EXPECT_LT(paths[998], paths[999]);
}

TEST(JoinGraph, HasNoPathsWithoutNodesAndAddsToTheEdgesOfATree)
{
    std::vector<std::vector<amd_id>> paths;
    GraphText("").Get().GetPaths(paths);
    EXPECT_THAT(paths, IsEmpty());

    const GraphText text("a-b:1 x-y:1 y-z:1");
    std::vector<amd_id> edges = text.Ids("a");
    text.Get().GetTreeEdges(text.Ids("z x"), edges);
    text.Get().GetTreeEdges(text.Ids("z a"), edges);
    EXPECT_EQ(text.Write(edges), "a y-z x-y");
}

struct NoticeCase
{
    int bound;
    int level;
    std::size_t listed;
    std::vector<std::string> notices;
};

TEST(JoinGraph, LimitsAreThoseOfTheUser)
{
    const SettingsOverride bound("JoinGraph", "CheapestTreesBound", 3);
    const SettingsOverride seconds("JoinGraph", "CheapestTreesSeconds", 4);
    const SettingsOverride megabytes("JoinGraph", "CheapestTreesMegabytes", -5);
    const graph::SteinerLimits byDefault = graph::ReadCheapestTreesLimits();
    EXPECT_EQ(byDefault.effort, 1'000'000'000U);
    const SettingsOverride effort("JoinGraph", "CheapestTreesEffort", 20);
    const graph::SteinerLimits limits = graph::ReadCheapestTreesLimits();
    EXPECT_EQ(limits.maximumTrees, 3U);
    EXPECT_EQ(limits.effort, 20'000'000U);
    EXPECT_EQ(limits.time, std::chrono::seconds(4));
    EXPECT_EQ(limits.memory, std::size_t{1} << 20U);
}

TEST(JoinGraph, TreesBeyondTheBoundAreCountedInTheLog)
{
    const GraphText text("a-b:1 a-b:1 a-b:1 a-b:2");
    const std::vector<NoticeCase> cases{
        {3, 1, 3, {}},
        {2, 1, 2, {"Cheapest trees: CheapestTreesBound exceeded, listed 2 of 3, weight 1"}},
        {2, 0, 2, {}},
        {0, 7, 1, {"Cheapest trees: CheapestTreesBound exceeded, listed 1 of 3, weight 1"}},
    };
    for (const NoticeCase& row : cases) {
        SCOPED_TRACE(testing::Message() << "bound " << row.bound << ", level " << row.level);
        const SettingsOverride bound("JoinGraph", "CheapestTreesBound", row.bound);
        const LogCapture log(row.level);
        std::vector<std::string> trees;
        EXPECT_EQ(FindCheapest(text, "a b", trees), 1);
        EXPECT_EQ(trees.size(), row.listed);
        std::vector<std::string> notices;
        for (const LogEntry& entry : log.GetEntries())
            notices.push_back(entry.text.ToStdString());
        EXPECT_EQ(notices, row.notices);
    }
}

TEST(JoinGraph, ExceededLimitIsNamedInTheLogWithWeightAndBound)
{
    // A cube of eight dimensions, half of whose corners are to be connected, no two of them
    // neighbours.
    std::string cube;
    std::string names;
    for (unsigned i = 0; i < 256; ++i) {
        const std::string node = 'n' + std::to_string(i);
        for (unsigned bit = 1; bit < 256; bit *= 2) {
            if ((i & bit) == 0)
                cube += node + "-n" + std::to_string(i | bit) + ":17 ";
        }
        if (std::popcount(i) % 2 == 0)
            names += node + ' ';
    }
    const GraphText text(cube);
    for (const char* key :
         {"CheapestTreesEffort", "CheapestTreesMegabytes", "CheapestTreesSeconds"}) {
        const SettingsOverride limit("JoinGraph", key, 1);
        const LogCapture log(1);
        std::vector<std::string> trees;
        const std::optional<int> weight = FindCheapest(text, names, trees);
        ASSERT_TRUE(weight);
        ASSERT_EQ(trees.size(), 1U);
        EXPECT_EQ(text.Get().GetPathWeight(text.Ids(trees.front())), weight);
        ASSERT_EQ(log.GetEntries().size(), 1U);
        EXPECT_THAT(log.GetEntries().front().text.ToStdString(),
                    testing::MatchesRegex(std::string("Cheapest trees: ") + key +
                                          " exceeded, weight " + std::to_string(*weight) +
                                          ", lower bound [0-9]+, not proven"));
    }
}

TEST(JoinGraph, OneTreeIsSearchedSilentlyAndACutListOfPathsIsNot)
{
    // All trees of the complete graph of eight nodes: 8^6 of them.
    std::string complete;
    std::string names;
    for (char end1 = 'a'; end1 < 'i'; ++end1) {
        names += std::string(1, end1) + ' ';
        for (char end2 = 'a'; end2 < end1; ++end2)
            complete += std::string{end1, '-', end2} + ":1 ";
    }
    const GraphText text(complete);
    const LogCapture log(1);
    std::vector<amd_id> edges;
    text.Get().GetTreeEdges(text.Ids(names), edges);
    EXPECT_EQ(edges.size(), 7U);
    EXPECT_EQ(log.GetEntries().size(), 0U);

    std::vector<std::vector<amd_id>> paths;
    text.Get().GetPaths(paths);
    EXPECT_EQ(paths.size(), 1000U);
    ASSERT_EQ(log.GetEntries().size(), 1U);
    EXPECT_EQ(log.GetEntries().front().text.ToStdString(),
              "Spanning trees: listed 1000, there are more");
}

TEST(JoinGraph, SumsOfManyWeightsSaturate)
{
    const GraphText text("a-b:2147483647 b-c:2147483647 c-a:1");
    EXPECT_EQ(text.Get().GetPathWeight(std::vector<amd_id>(1000, text.Id("a-b"))),
              std::numeric_limits<int>::max());
    std::vector<std::string> trees;
    EXPECT_EQ(FindCheapest(text, "a b c", trees), std::numeric_limits<int>::max());
    EXPECT_EQ(trees.size(), 2U);
}

} // namespace
} // namespace qe::test
