#include "Engine/Graph/Spanning/MinimumSpanningTree.h"

#include "Engine/Graph/Core/DisjointSets.h"

#include <algorithm>
#include <cstdint>
#include <utility>

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

void BottleneckForest::Reset(std::uint32_t nodeCount)
{
    mNodes.resize(nodeCount);
    for (std::uint32_t node = 0; node < nodeCount; ++node)
        mNodes[node] = {node, kNotConnected, 1};
}

std::uint32_t BottleneckForest::FindRoot(std::uint32_t node) const
{
    while (mNodes[node].parent != node)
        node = mNodes[node].parent;
    return node;
}

bool BottleneckForest::Unite(std::uint32_t left, std::uint32_t right, std::uint32_t step)
{
    left = FindRoot(left);
    right = FindRoot(right);
    if (left == right)
        return false;
    if (mNodes[left].size < mNodes[right].size)
        std::swap(left, right);
    mNodes[right].parent = left;
    mNodes[right].step = step;
    mNodes[left].size += mNodes[right].size;
    return true;
}

std::uint32_t BottleneckForest::FindLastStep(std::uint32_t left, std::uint32_t right) const
{
    // Steps never fall towards the root, so climbing from whichever node got its parent earlier
    // meets at the lowest set that holds both.
    std::uint32_t last = kNotConnected;
    while (left != right) {
        if (mNodes[left].step > mNodes[right].step)
            std::swap(left, right);
        last = mNodes[left].step;
        if (last == kNotConnected)
            break;
        left = mNodes[left].parent;
    }
    return last;
}

} // namespace qe::graph
