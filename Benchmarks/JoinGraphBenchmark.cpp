// Times the join graph at sizes up to 20,000 nodes and 60,000 edges, weighted like joins.

#include "AQE_I_UndirectedGraph.h"

#include <benchmark/benchmark.h>
#include <cstddef>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace {

struct Join
{
    amd_id id;
    amd_id end1;
    amd_id end2;
    int weight;
};

struct Model
{
    std::vector<amd_id> nodes;
    std::vector<Join> joins;
};

// A connected random multigraph with three edges to a node.
Model DrawModel(std::int64_t nodeCount)
{
    constexpr std::array kWeights{1, 2, 3, 5, 7, 11, 17, 8888};
    std::mt19937 random(5);
    const auto draw = [&random](std::size_t count) { return random() % count; };
    Model model;
    for (std::int32_t i = 1; i <= nodeCount; ++i)
        model.nodes.emplace_back(0, 100, i);
    const auto count = static_cast<std::size_t>(nodeCount);
    for (std::size_t i = 1; i < 3 * count; ++i) {
        const std::size_t end1 = i < count ? i : draw(count);
        const std::size_t end2 = draw(i < count ? i : count);
        model.joins.push_back({amd_id(0, 102, static_cast<std::int32_t>(i)), model.nodes[end1],
                               model.nodes[end2], kWeights[draw(kWeights.size())]});
    }
    std::shuffle(model.nodes.begin(), model.nodes.end(), random);
    std::shuffle(model.joins.begin(), model.joins.end(), random);
    return model;
}

AUT_RefPtr<AQE_I_UndirectedGraph> Load(const Model& model)
{
    AUT_RefPtr<AQE_I_UndirectedGraph> graph = AQE_I_UndirectedGraph::Create();
    for (const amd_id& node : model.nodes)
        graph->AddNode(node);
    for (const Join& join : model.joins)
        graph->AddEdge(join.id, join.end1, join.end2, join.weight, 0);
    return graph;
}

// The measure for bulk loading: the ids alone.
void SortIds(benchmark::State& state)
{
    const Model model = DrawModel(state.range(0));
    for (auto _ : state) {
        std::vector<amd_id> nodes = model.nodes;
        std::vector<amd_id> edges;
        edges.reserve(model.joins.size());
        for (const Join& join : model.joins)
            edges.push_back(join.id);
        std::sort(nodes.begin(), nodes.end());
        std::sort(edges.begin(), edges.end());
        benchmark::DoNotOptimize(nodes.data());
        benchmark::DoNotOptimize(edges.data());
    }
}

// Loads a graph and makes it ready for searching.
void BulkLoad(benchmark::State& state)
{
    const Model model = DrawModel(state.range(0));
    for (auto _ : state) {
        std::vector<amd_id> edges;
        Load(model)->GetNodeEdges(model.nodes.front(), edges);
        benchmark::DoNotOptimize(edges.data());
    }
}

// Adds joins one by one, each weighted anew and asked for at once.
void GrowAndAsk(benchmark::State& state)
{
    const Model model = DrawModel(state.range(0));
    for (auto _ : state) {
        const AUT_RefPtr<AQE_I_UndirectedGraph> graph = AQE_I_UndirectedGraph::Create();
        int sum = 0;
        for (const Join& join : model.joins) {
            graph->AddNode(join.end1);
            graph->AddEdge(join.id, join.end1, join.end2, join.weight, 0);
            graph->SetEdgeWeight(join.id, 1);
            sum += graph->GetPathWeight({join.id});
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(model.joins.size()));
}

void ShortestPathsFromOneSource(benchmark::State& state)
{
    const Model model = DrawModel(state.range(0));
    const AUT_RefPtr<AQE_I_UndirectedGraph> graph = Load(model);
    const auto targets = std::min<std::size_t>(model.nodes.size(), 1000);
    int weightOfFirst = 1;
    for (auto _ : state) {
        // A changed weight makes the graph forget its paths.
        graph->SetEdgeWeight(model.joins.front().id, weightOfFirst = 3 - weightOfFirst);
        for (std::size_t i = 0; i < targets; ++i) {
            std::vector<amd_id> path;
            int weight = 0;
            graph->GetShortestPath(model.nodes.back(), model.nodes[i], path, weight);
            benchmark::DoNotOptimize(weight);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(targets));
}

void FirstSpanningTrees(benchmark::State& state)
{
    const AUT_RefPtr<AQE_I_UndirectedGraph> graph = Load(DrawModel(state.range(0)));
    for (auto _ : state) {
        std::vector<std::vector<amd_id>> paths;
        graph->GetPaths(paths);
        state.counters["trees"] = static_cast<double>(paths.size());
    }
}

// Roles of one dimension, each joined to each, and a fact that is joined to all of them.
Model MakeRoles(std::int64_t roleCount)
{
    Model model;
    for (std::int32_t node = 0; node <= roleCount; ++node) {
        for (const amd_id& before : model.nodes)
            model.joins.push_back({amd_id(0, 102, static_cast<std::int32_t>(model.joins.size())),
                                   before, amd_id(0, 100, node), 17});
        model.nodes.emplace_back(0, 100, node);
    }
    return model;
}

// Connects all roles, without the fact.
void CheapestTreesOfRoles(benchmark::State& state)
{
    Model model = MakeRoles(state.range(0));
    const AUT_RefPtr<AQE_I_UndirectedGraph> graph = Load(model);
    model.nodes.pop_back();
    for (auto _ : state) {
        std::vector<std::vector<amd_id>> trees;
        int weight = 0;
        graph->GetCheapestTrees(model.nodes, trees, weight);
        state.counters["trees"] = static_cast<double>(trees.size());
    }
}

void Sizes(benchmark::internal::Benchmark* run)
{
    run->Arg(20)->Arg(200)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(SortIds)->Apply(Sizes);
BENCHMARK(BulkLoad)->Apply(Sizes);
BENCHMARK(GrowAndAsk)->Apply(Sizes);
BENCHMARK(ShortestPathsFromOneSource)->Apply(Sizes);
BENCHMARK(FirstSpanningTrees)->Apply(Sizes);
BENCHMARK(CheapestTreesOfRoles)->Arg(13)->Arg(40)->Arg(200)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
