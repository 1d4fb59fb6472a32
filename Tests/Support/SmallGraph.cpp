#include "Tests/Support/SmallGraph.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <ostream>
#include <tuple>

namespace qe::test {

namespace {

constexpr std::size_t kMostNodes = 12;

// A set of edges as bits, with what joining them makes of the nodes.
struct Subset
{
    Subset(const SmallGraph& graph, std::uint32_t bits)
        : isForest(static_cast<std::size_t>(std::popcount(bits)) < graph.nodeCount)
    {
        std::iota(parts.begin(), parts.end(), std::size_t{0});
        for (std::size_t i = 0; i < graph.edges.size() && isForest; ++i) {
            if ((bits >> i & 1U) == 0)
                continue;
            edges.push_back(i);
            const std::size_t left = parts[graph.edges[i].end1];
            const std::size_t right = parts[graph.edges[i].end2];
            isForest = left != right;
            std::replace(parts.begin(), parts.end(), left, right);
            ++degrees[graph.edges[i].end1];
            ++degrees[graph.edges[i].end2];
        }
    }

    SmallGraph::EdgeSet edges;
    std::array<std::size_t, kMostNodes> parts{};
    std::array<int, kMostNodes> degrees{};
    bool isForest;
};

} // namespace

SmallGraph SmallGraph::Draw(std::mt19937& random, std::size_t maximumEdges)
{
    constexpr std::array kWeights{0, 1, 2, 3, 5, 7, 11, 17, 8888};
    const auto draw = [&random](std::size_t count) { return random() % count; };
    SmallGraph graph;
    graph.nodeCount = 1 + draw(7);
    const std::size_t edgeCount = draw(maximumEdges + 1);
    const std::size_t weightCount = 1 + draw(kWeights.size());
    const std::size_t firstWeight = draw(kWeights.size());
    for (std::size_t i = 0; i < edgeCount; ++i)
        graph.edges.push_back({draw(graph.nodeCount), draw(graph.nodeCount),
                               kWeights[(firstWeight + draw(weightCount)) % kWeights.size()]});
    return graph;
}

// The words rise through negative values, so that a wrong order of ids shows.
amd_id SmallGraph::GetNodeId(std::size_t node)
{
    const auto index = static_cast<std::int32_t>(node);
    return {index / 4 - 1, 100, index % 4 - 2};
}

amd_id SmallGraph::GetEdgeId(std::size_t edge)
{
    const auto index = static_cast<std::int32_t>(edge);
    return {0, index / 5 - 1, index % 5 - 2};
}

std::vector<amd_id> SmallGraph::GetEdgeIds(const EdgeSet& set)
{
    std::vector<amd_id> ids;
    for (const std::size_t edge : set)
        ids.push_back(GetEdgeId(edge));
    return ids;
}

AUT_RefPtr<AQE_I_UndirectedGraph> SmallGraph::Make(std::mt19937& random) const
{
    std::vector<std::size_t> order(nodeCount + edges.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::shuffle(order.begin(), order.end(), random);
    AUT_RefPtr<AQE_I_UndirectedGraph> graph = AQE_I_UndirectedGraph::Create();
    for (const std::size_t item : order) {
        if (item < nodeCount) {
            graph->AddNode(GetNodeId(item));
            continue;
        }
        const Edge& edge = edges[item - nodeCount];
        graph->AddEdge(GetEdgeId(item - nodeCount), GetNodeId(edge.end1), GetNodeId(edge.end2),
                       edge.weight, 0);
    }
    return graph;
}

std::int64_t SmallGraph::GetWeight(const EdgeSet& set) const
{
    std::int64_t weight = 0;
    for (const std::size_t edge : set)
        weight += edges[edge].weight;
    return weight;
}

std::vector<SmallGraph::EdgeSet> SmallGraph::FindSpanningForests() const
{
    std::vector<EdgeSet> forests;
    for (std::uint32_t bits = 0; bits < 1U << edges.size(); ++bits) {
        const Subset subset(*this, bits);
        if (!subset.isForest || (!forests.empty() && subset.edges.size() < forests[0].size()))
            continue;
        if (!forests.empty() && subset.edges.size() > forests[0].size())
            forests.clear();
        forests.push_back(subset.edges);
    }
    std::sort(forests.begin(), forests.end(), [this](const EdgeSet& left, const EdgeSet& right) {
        return std::tuple(GetWeight(left), left) < std::tuple(GetWeight(right), right);
    });
    return forests;
}

std::optional<SmallGraph::Trees>
SmallGraph::FindCheapestTrees(const std::vector<std::size_t>& terminals) const
{
    std::optional<Trees> best;
    for (std::uint32_t bits = 0; bits < 1U << edges.size(); ++bits) {
        const Subset subset(*this, bits);
        if (!subset.isForest)
            continue;
        const std::size_t part = subset.parts[terminals.front()];
        bool isTree = true;
        for (const std::size_t terminal : terminals)
            isTree = isTree && subset.parts[terminal] == part;
        for (std::size_t node = 0; node < nodeCount; ++node) {
            const bool isTerminal =
                std::find(terminals.begin(), terminals.end(), node) != terminals.end();
            isTree = isTree && (subset.degrees[node] == 0 || subset.parts[node] == part) &&
                     (subset.degrees[node] != 1 || isTerminal);
        }
        const std::int64_t weight = GetWeight(subset.edges);
        if (!isTree || (best && weight > best->weight))
            continue;
        if (!best || weight < best->weight)
            best = Trees{weight, {}};
        best->trees.push_back(subset.edges);
    }
    if (best)
        std::sort(best->trees.begin(), best->trees.end(),
                  [](const EdgeSet& left, const EdgeSet& right) {
                      return std::tuple(left.size(), left) < std::tuple(right.size(), right);
                  });
    return best;
}

std::int64_t SmallGraph::FindDistance(std::size_t from, std::size_t to) const
{
    std::vector<std::int64_t> distances(nodeCount, -1);
    distances[from] = 0;
    const auto relax = [&distances](std::size_t near, std::size_t far, int weight) {
        if (distances[near] >= 0 &&
            (distances[far] < 0 || distances[far] > distances[near] + weight))
            distances[far] = distances[near] + weight;
    };
    for (std::size_t round = 0; round < nodeCount; ++round) {
        for (const Edge& edge : edges) {
            relax(edge.end1, edge.end2, edge.weight);
            relax(edge.end2, edge.end1, edge.weight);
        }
    }
    return distances[to];
}

std::ostream& operator<<(std::ostream& out, const SmallGraph& graph)
{
    out << graph.nodeCount << " nodes";
    for (const SmallGraph::Edge& edge : graph.edges)
        out << ' ' << edge.end1 << '-' << edge.end2 << ':' << edge.weight;
    return out;
}

} // namespace qe::test
