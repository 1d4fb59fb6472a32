#ifndef ENGINE_GRAPH_CORE_SHORTESTPATHCACHE_H
#define ENGINE_GRAPH_CORE_SHORTESTPATHCACHE_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Core/ShortestPaths.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>

namespace qe::graph {

/// Remembers the least-weight paths from the sources asked for last, as long as the graph stays
/// as it is.
class ShortestPathCache
{
public:
    /// What is remembered takes at most about so many bytes, except that the paths from one
    /// source are always kept.
    static constexpr std::size_t MaximumBytes = std::size_t{64} << 20U;

    /// Gives the paths from `source` in the graph, whose state is told by `revision`. They are
    /// good until the next call.
    const ShortestPaths& Get(const GraphView& graph, std::uint64_t revision, NodeIndex source);

private:
    void DropStalest(const GraphView& graph);

    DijkstraSearch mSearch;
    std::uint64_t mRevision = 0;
    // The latest asked for stands first.
    std::list<ShortestPaths> mPaths;
    std::map<NodeIndex, std::list<ShortestPaths>::iterator> mBySource;
};

} // namespace qe::graph

#endif
