#ifndef ENGINE_GRAPH_CORE_DIJKSTRA_H
#define ENGINE_GRAPH_CORE_DIJKSTRA_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Core/Indices.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <functional>
#include <span>
#include <utility>
#include <vector>

namespace qe::graph {

/// A distance for each node.
using NodeDistances = IndexedVector<NodeIndex, std::uint64_t>;

/// Dijkstra's algorithm (1959) on a binary heap, for any graph that the caller goes through:
/// O((n + m) log n) for what is reached, and O(that) to begin anew.
///
/// The caller reaches the sources at their distances and runs the search. That calls `settle` with
/// each node in order of (distance, node), and `settle` reaches the node's neighbours. So ties are
/// broken by node, whatever the graph, and of several edges to a neighbour the first one counts.
class DijkstraSearch
{
public:
    enum class EStep
    {
        Continue,
        Stop,
    };

    explicit DijkstraSearch(std::uint32_t nodeCount = 0) : mDistances(nodeCount, kUnreached)
    {
        mReached.reserve(std::min(nodeCount, kFewReached));
        mQueue.reserve(std::min(nodeCount, kFewReached));
    }

    /// Forgets what was reached.
    void Reset()
    {
        for (const NodeIndex node : mReached)
            mDistances[node] = kUnreached;
        mReached.clear();
        mQueue.clear();
    }

    /// Forgets what was reached, and takes a graph of so many nodes.
    void Reset(std::uint32_t nodeCount)
    {
        mDistances.assign(nodeCount, kUnreached);
        mReached.clear();
        mQueue.clear();
    }

    /// Lowers the distance of the node and queues it; returns false, and does nothing, when the
    /// distance is no lower.
    bool Reach(NodeIndex node, std::uint64_t distance)
    {
        std::uint64_t& known = mDistances[node];
        if (distance >= known)
            return false;
        if (known == kUnreached)
            mReached.push_back(node);
        known = distance;
        mQueue.push_back({distance, node});
        std::push_heap(mQueue.begin(), mQueue.end(), std::greater<>());
        return true;
    }

    /// Calls `settle(node, distance)` for each reached node, nearest first, until it returns
    /// EStep::Stop or no node is left. A node that is reached again at a lower distance than it
    /// was settled at is settled again.
    template <typename Settle>
    void Run(const Settle& settle)
    {
        while (!mQueue.empty()) {
            const QueuedNode nearest = mQueue.front();
            std::pop_heap(mQueue.begin(), mQueue.end(), std::greater<>());
            mQueue.pop_back();
            // A node stays queued under the distances that it had before; only the last counts.
            if (nearest.distance != mDistances[nearest.node])
                continue;
            if (settle(nearest.node, nearest.distance) == EStep::Stop)
                return;
        }
    }

    /// Returns the distance of the node, not final before it is settled; kUnreached for none.
    [[nodiscard]] std::uint64_t GetDistance(NodeIndex node) const { return mDistances[node]; }
    /// Returns the distances of all nodes; the object is of no use then before Reset(nodeCount).
    [[nodiscard]] NodeDistances TakeDistances() { return std::move(mDistances); }
    /// Returns the nodes with a distance, in the order in which they were reached first.
    [[nodiscard]] std::span<const NodeIndex> GetReached() const { return mReached; }

private:
    struct QueuedNode
    {
        std::uint64_t distance;
        NodeIndex node;
        friend auto operator<=>(const QueuedNode&, const QueuedNode&) = default;
    };

    static constexpr std::uint32_t kFewReached = 64;

    NodeDistances mDistances;
    std::vector<NodeIndex> mReached;
    std::vector<QueuedNode> mQueue;
};

} // namespace qe::graph

#endif
