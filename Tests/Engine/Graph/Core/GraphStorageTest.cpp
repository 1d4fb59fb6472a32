#include "Engine/Graph/Core/GraphStorage.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace qe::graph {
namespace {

constexpr amd_id kNode1{1, 1, 1};
constexpr amd_id kNode2{1, 1, 2};
constexpr amd_id kNode3{1, 1, 3};
constexpr amd_id kEdge1{1, 2, 1};
constexpr amd_id kEdge2{1, 2, 2};

// Whatever is remembered of the graph is good until the revision grows.
TEST(GraphStorage, RevisionGrowsWithChangesOnly)
{
    const struct
    {
        const char* name;
        void (*run)(GraphStorage&);
        bool isChange;
    } rows[] = {
        {"a node that is there", [](GraphStorage& graph) { graph.AddNode(kNode1); }, false},
        {"a new node", [](GraphStorage& graph) { graph.AddNode(kNode3); }, true},
        {"an edge that is there",
         [](GraphStorage& graph) { graph.AddEdge(kEdge1, kNode1, kNode3, 9); }, false},
        {"a new edge", [](GraphStorage& graph) { graph.AddEdge(kEdge2, kNode1, kNode2, 5); }, true},
        {"another weight", [](GraphStorage& graph) { graph.SetEdgeWeight(kEdge1, 6); }, true},
        {"the same weight", [](GraphStorage& graph) { graph.SetEdgeWeight(kEdge1, 5); }, false},
        {"the weight of no edge", [](GraphStorage& graph) { graph.SetEdgeWeight(kEdge2, 6); },
         false},
        {"a look", [](GraphStorage& graph) { static_cast<void>(graph.GetView()); }, false},
    };
    for (const auto& [name, run, isChange] : rows) {
        SCOPED_TRACE(name);
        GraphStorage graph;
        graph.AddEdge(kEdge1, kNode1, kNode2, 5);
        const std::uint64_t before = graph.GetRevision();
        run(graph);
        EXPECT_EQ(graph.GetRevision() > before, isChange);
    }
}

} // namespace
} // namespace qe::graph
