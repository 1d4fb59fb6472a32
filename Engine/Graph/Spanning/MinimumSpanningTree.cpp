#include "Engine/Graph/Spanning/MinimumSpanningTree.h"

#include "Engine/Graph/Core/DisjointSets.h"

#include <algorithm>
#include <cstdint>

namespace qe::graph {

std::vector<EdgeIndex> SortByWeight(std::span<const Edge> edges)
{
    std::vector<std::uint64_t> keys;
    keys.reserve(edges.size());
    for (std::uint32_t i = 0; i < edges.size(); ++i) {
        if (edges[i].end1 != edges[i].end2)
            keys.push_back(std::uint64_t{edges[i].weight} << 32U | i);
    }
    std::sort(keys.begin(), keys.end());
    std::vector<EdgeIndex> sorted;
    sorted.reserve(keys.size());
    for (const std::uint64_t key : keys)
        sorted.push_back(EdgeIndex{static_cast<std::uint32_t>(key)});
    return sorted;
}

std::vector<EdgeIndex> FindMinimumSpanningTree(const GraphView& graph)
{
    DisjointSets parts(graph.GetNodeCount());
    std::vector<EdgeIndex> tree;
    for (const EdgeIndex index : SortByWeight(graph.GetEdges())) {
        const Edge& edge = graph.GetEdge(index);
        if (parts.Unite(edge.end1.value, edge.end2.value))
            tree.push_back(index);
    }
    std::sort(tree.begin(), tree.end());
    return tree;
}

} // namespace qe::graph
