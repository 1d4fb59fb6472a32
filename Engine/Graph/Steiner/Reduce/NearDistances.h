#ifndef ENGINE_GRAPH_STEINER_REDUCE_NEARDISTANCES_H
#define ENGINE_GRAPH_STEINER_REDUCE_NEARDISTANCES_H

#include "Engine/Graph/Core/Indices.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace qe::graph {

class Network;

/// Measures distances around a node of a network that may change between two runs: Dijkstra's
/// algorithm, given up after a few nodes.
class NearDistances
{
public:
    explicit NearDistances(const Network& network);

    /// Measures from the node as far as the given distance, and forgets what was known.
    void Run(NodeIndex source, std::uint64_t most);

    /// Answers the weight of some way to the node, kUnreached when none was found.
    [[nodiscard]] std::uint64_t Get(NodeIndex node) const { return mDistances[node]; }

private:
    using QueueEntry = std::pair<std::uint64_t, NodeIndex>;

    void Push(std::uint64_t distance, NodeIndex node);

    const Network& mNetwork;
    IndexedVector<NodeIndex, std::uint64_t> mDistances;
    std::vector<NodeIndex> mTouched;
    std::vector<QueueEntry> mQueue;
};

} // namespace qe::graph

#endif
