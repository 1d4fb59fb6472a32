#ifndef ENGINE_GRAPH_CORE_SHORTESTPATHS_H
#define ENGINE_GRAPH_CORE_SHORTESTPATHS_H

#include "Engine/Graph/Core/Dijkstra.h"
#include "Engine/Graph/Core/GraphView.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <vector>

namespace qe::graph {

/// Least-weight paths from one node to every node: for each node the last edge of its path. The
/// source itself, and what cannot be reached, has an invalid one.
struct ShortestPaths
{
    NodeIndex source;
    IndexedVector<NodeIndex, EdgeIndex> lastEdges;

    [[nodiscard]] bool Reaches(NodeIndex node) const
    {
        return node == source || lastEdges[node].IsValid();
    }

    /// Returns the node before `node` on its path; `node` is reached and is not the source.
    [[nodiscard]] NodeIndex GetPrevious(const GraphView& graph, NodeIndex node) const;

    /// Returns the path to `target` in walking order, empty from the source to itself or when
    /// there is none.
    [[nodiscard]] std::vector<EdgeIndex> GetPath(const GraphView& graph, NodeIndex target) const;
};

/// Finds the least-weight paths from `source` by Dijkstra's algorithm: O((n + m) log n). The search
/// is workspace only, and can serve any graph.
///
/// Each node is reached from the neighbour on one of its least-weight paths that is settled first,
/// by the lowest of the edges that fit, so that equal weights always lead to the same path, also
/// along edges of weight 0.
[[nodiscard]] ShortestPaths FindShortestPaths(const GraphView& graph, NodeIndex source,
                                              DijkstraSearch& search);

/// Remembers the least-weight paths from the sources asked for last, as long as the graph stays as
/// it is.
class ShortestPathCache
{
public:
    static constexpr std::size_t kMaximumBytes = std::size_t{64} << 20U;

    /// What is remembered takes at most about `maximumBytes`, except that the paths from one source
    /// are always kept.
    explicit ShortestPathCache(std::size_t maximumBytes = kMaximumBytes)
        : mMaximumBytes(maximumBytes)
    {}

    /// Returns the paths from `source` in the graph, whose state `revision` tells. They are good
    /// until the next call.
    const ShortestPaths& Get(const GraphView& graph, std::uint64_t revision, NodeIndex source);

private:
    void DropStalest(const GraphView& graph);

    std::size_t mMaximumBytes;
    DijkstraSearch mSearch;
    std::uint64_t mRevision = 0;
    // The latest asked for stands first.
    std::list<ShortestPaths> mPaths;
    std::map<NodeIndex, std::list<ShortestPaths>::iterator> mBySource;
};

} // namespace qe::graph

#endif
