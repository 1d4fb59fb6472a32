#include "Engine/Graph/Core/ShortestPathCache.h"

#include <algorithm>

namespace qe::graph {

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
    const std::size_t most = std::max<std::size_t>(1, MaximumBytes / bytesEach);
    while (mPaths.size() >= most) {
        mBySource.erase(mPaths.back().source);
        mPaths.pop_back();
    }
}

} // namespace qe::graph
