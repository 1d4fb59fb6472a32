#include "Engine/Graph/Core/ShortestPaths.h"

#include <algorithm>
#include <cstdint>

namespace qe::graph {

NodeIndex ShortestPaths::GetPrevious(const GraphView& graph, NodeIndex node) const
{
    const Edge& edge = graph.GetEdge(lastEdges[node]);
    return edge.end1 == node ? edge.end2 : edge.end1;
}

std::vector<EdgeIndex> ShortestPaths::GetPath(const GraphView& graph, NodeIndex target) const
{
    std::vector<EdgeIndex> path;
    if (!Reaches(target))
        return path;
    for (NodeIndex node = target; node != source; node = GetPrevious(graph, node))
        path.push_back(lastEdges[node]);
    std::reverse(path.begin(), path.end());
    return path;
}

ShortestPaths FindShortestPaths(const GraphView& graph, NodeIndex source, DijkstraSearch& search)
{
    ShortestPaths paths{source, IndexedVector<NodeIndex, EdgeIndex>(graph.GetNodeCount())};
    search.Reset(graph.GetNodeCount());
    search.Reach(source, 0);
    search.Run([&](NodeIndex node, std::uint64_t distance) {
        for (const Arc& arc : graph.GetArcs(node)) {
            if (search.Reach(arc.target, distance + graph.GetEdge(arc.edge).weight))
                paths.lastEdges[arc.target] = arc.edge;
        }
        return DijkstraSearch::EStep::Continue;
    });
    return paths;
}

const ShortestPaths& ShortestPathCache::Get(const GraphView& graph, std::uint64_t revision,
                                            NodeIndex source)
{
    if (revision != mRevision) {
        mBySource.clear();
        mPaths.clear();
        mRevision = revision;
    }
    const auto known = mBySource.find(source);
    if (known != mBySource.end()) {
        mPaths.splice(mPaths.begin(), mPaths, known->second);
        return mPaths.front();
    }
    DropStalest(graph);
    mPaths.push_front(FindShortestPaths(graph, source, mSearch));
    mBySource.emplace(source, mPaths.begin());
    return mPaths.front();
}

// Makes room for the paths from one more source.
void ShortestPathCache::DropStalest(const GraphView& graph)
{
    const std::size_t bytesEach = sizeof(ShortestPaths) + graph.GetNodeCount() * sizeof(EdgeIndex);
    const std::size_t most = std::max<std::size_t>(1, mMaximumBytes / bytesEach);
    while (mPaths.size() >= most) {
        mBySource.erase(mPaths.back().source);
        mPaths.pop_back();
    }
}

} // namespace qe::graph
