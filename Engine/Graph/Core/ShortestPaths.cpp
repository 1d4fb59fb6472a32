#include "Engine/Graph/Core/ShortestPaths.h"

#include <algorithm>
#include <functional>
#include <limits>

namespace qe::graph {

namespace {

constexpr std::uint64_t Unreached = std::numeric_limits<std::uint64_t>::max();

} // namespace

NodeIndex ShortestPaths::GetPrevious(const GraphView& graph, NodeIndex node) const
{
    const Edge& edge = graph.GetEdge(lastEdges[node.value]);
    return edge.end1 == node ? edge.end2 : edge.end1;
}

std::vector<EdgeIndex> ShortestPaths::GetPath(const GraphView& graph, NodeIndex target) const
{
    std::vector<EdgeIndex> path;
    if (!Reaches(target))
        return path;
    for (NodeIndex node = target; node != source; node = GetPrevious(graph, node))
        path.push_back(lastEdges[node.value]);
    std::reverse(path.begin(), path.end());
    return path;
}

ShortestPaths ShortestPathSearch::Run(const GraphView& graph, NodeIndex source)
{
    ShortestPaths paths{source, std::vector<EdgeIndex>(graph.GetNodeCount())};
    mDistances.assign(graph.GetNodeCount(), Unreached);
    mDistances[source.value] = 0;
    mQueue.assign(1, {0, source.value});
    while (!mQueue.empty()) {
        const QueuedNode nearest = mQueue.front();
        std::pop_heap(mQueue.begin(), mQueue.end(), std::greater<>());
        mQueue.pop_back();
        // A node stays queued under the distances that it had before; only the last one counts.
        if (nearest.first == mDistances[nearest.second])
            Settle(graph, nearest, paths.lastEdges);
    }
    return paths;
}

void ShortestPathSearch::Settle(const GraphView& graph, QueuedNode node,
                                std::vector<EdgeIndex>& lastEdges)
{
    for (const Arc& arc : graph.GetArcs(NodeIndex{node.second})) {
        const std::uint64_t distance = node.first + graph.GetEdge(arc.edge).weight;
        if (distance >= mDistances[arc.target.value])
            continue;
        mDistances[arc.target.value] = distance;
        lastEdges[arc.target.value] = arc.edge;
        mQueue.emplace_back(distance, arc.target.value);
        std::push_heap(mQueue.begin(), mQueue.end(), std::greater<>());
    }
}

} // namespace qe::graph
