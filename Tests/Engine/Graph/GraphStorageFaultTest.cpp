#include "Engine/Graph/Core/GraphStorage.h"
#include "Tests/Support/CountedAllocation.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>

#include <new>
#include <ostream>
#include <vector>

namespace qe::graph {
namespace {

using test::CountedAllocation;

amd_id NodeId(std::int32_t number)
{
    return {0, 100, number};
}

amd_id EdgeId(std::int32_t number)
{
    return {0, 102, number};
}

/// Returns everything that the graph shows.
std::vector<std::uint32_t> Read(GraphStorage& graph)
{
    std::vector<std::uint32_t> words;
    const auto addId = [&words](const amd_id& id) {
        words.push_back(static_cast<std::uint32_t>(id.number));
    };
    std::vector<amd_id> edges;
    graph.AppendEdgeIds(edges);
    for (const amd_id& edge : edges) {
        addId(edge);
        words.push_back(*graph.FindEdgeWeight(edge));
    }
    const GraphView view = graph.GetView();
    for (NodeIndex node{0}; node.value < view.GetNodeCount(); ++node.value) {
        EXPECT_EQ(graph.FindNode(graph.GetNodeId(node)), node);
        addId(graph.GetNodeId(node));
        for (const Arc& arc : view.GetArcs(node)) {
            addId(graph.GetEdgeId(arc.edge));
            addId(graph.GetNodeId(arc.target));
            words.push_back(view.GetEdge(arc.edge).weight);
        }
        for (const Arc& loop : graph.GetSelfLoops(node))
            addId(graph.GetEdgeId(loop.edge));
    }
    return words;
}

/// Adds a path whose nodes and edges have numbers from `first` on, and a self-loop at its start.
void AddPath(GraphStorage& graph, std::int32_t first, std::int32_t count)
{
    for (std::int32_t number = first; number < first + count; ++number)
        graph.AddEdge(EdgeId(number), NodeId(number), NodeId(number + 1), 5);
    graph.AddEdge(EdgeId(-first), NodeId(first), NodeId(first), 7);
}

struct Operation
{
    const char* name;
    void (*run)(GraphStorage&);

    friend void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }
};

const Operation kOperations[] = {
    {"AddNode", [](GraphStorage& graph) { graph.AddNode(NodeId(-9)); }},
    {"AddEdge", [](GraphStorage& graph) { graph.AddEdge(EdgeId(-9), NodeId(2), NodeId(-9), 3); }},
    {"SetEdgeWeight", [](GraphStorage& graph) { graph.SetEdgeWeight(EdgeId(1), 9); }},
    {"FindEdgeWeight", [](GraphStorage& graph) { (void)graph.FindEdgeWeight(EdgeId(1)); }},
    {"GetRevision", [](GraphStorage& graph) { (void)graph.GetRevision(); }},
    {"FindNode", [](GraphStorage& graph) { (void)graph.FindNode(NodeId(1)); }},
    {"GetView", [](GraphStorage& graph) { (void)graph.GetView(); }},
};

/// Runs the operation while a request for memory fails. Returns whether that made it throw: a sort
/// can do without the memory that it asks for.
bool RunAndFail(const Operation& operation, GraphStorage& graph, std::size_t request)
{
    CountedAllocation::FailAtRequest(request);
    try {
        operation.run(graph);
    } catch (const std::bad_alloc&) {
        return true;
    }
    CountedAllocation::FailAtRequest(0);
    return false;
}

/// Lets every request for memory of the operation fail in turn, each on a graph of its own. What
/// threw has changed nothing and can be done again. Returns how often it threw.
template <typename Fill>
std::size_t FailEverywhere(const Fill& fill, const Operation& operation)
{
    GraphStorage untouched;
    fill(untouched);
    GraphStorage changed;
    fill(changed);
    operation.run(changed);
    const std::vector<std::uint32_t> before = Read(untouched);
    const std::vector<std::uint32_t> after = Read(changed);
    std::size_t failures = 0;
    for (std::size_t request = 1;; ++request) {
        // To read a graph merges what waits, so that another is left alone.
        for (const bool isReadBetween : {true, false}) {
            GraphStorage graph;
            fill(graph);
            const bool hasThrown = RunAndFail(operation, graph, request);
            if (!CountedAllocation::HasFailed())
                return failures;
            failures += hasThrown ? 1U : 0U;
            EXPECT_TRUE(!hasThrown || !isReadBetween || Read(graph) == before) << request;
            if (hasThrown)
                operation.run(graph);
            EXPECT_TRUE(Read(graph) == after) << request;
        }
    }
}

class GraphStorageFault : public testing::TestWithParam<Operation>
{};

TEST_P(GraphStorageFault, LeavesTheGraphAsItWas)
{
    // Runs of several lengths, adjacency that is out of date, and additions that wait.
    const auto fill = [](GraphStorage& graph) {
        AddPath(graph, 1, 600);
        (void)graph.GetView();
        AddPath(graph, 1000, 90);
        (void)graph.FindEdgeWeight(EdgeId(1));
        graph.AddNode(NodeId(5000));
        AddPath(graph, 990, 20);
    };
    const bool onlyWaits = GetParam().name[0] == 'A';
    EXPECT_GE(FailEverywhere(fill, GetParam()), onlyWaits ? 0U : 10U);
}

TEST_P(GraphStorageFault, LeavesSoMuchThatItIsMergedFirst)
{
    const auto fill = [](GraphStorage& graph) {
        AddPath(graph, 1, 10);
        (void)graph.GetView();
        for (std::int32_t round = 0; round < 1 << 7; ++round) {
            for (std::int32_t number = 0; number < 1 << 10; ++number)
                graph.AddNode(NodeId(2000 + number));
            AddPath(graph, 1, (1 << 10) - 1);
        }
    };
    EXPECT_GE(FailEverywhere(fill, GetParam()), 10U);
}

INSTANTIATE_TEST_SUITE_P(Operations, GraphStorageFault, testing::ValuesIn(kOperations),
                         [](const auto& operation) { return operation.param.name; });

} // namespace
} // namespace qe::graph
