#ifndef ENGINE_GRAPH_STEINER_REDUCE_NEARDISTANCES_H
#define ENGINE_GRAPH_STEINER_REDUCE_NEARDISTANCES_H

#include "Engine/Graph/Core/Dijkstra.h"

#include <cstdint>

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
    [[nodiscard]] std::uint64_t Get(NodeIndex node) const { return mSearch.GetDistance(node); }

private:
    const Network& mNetwork;
    DijkstraSearch mSearch;
};

} // namespace qe::graph

#endif
