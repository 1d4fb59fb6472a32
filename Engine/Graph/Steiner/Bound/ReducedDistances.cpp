#include "Engine/Graph/Steiner/Bound/ReducedDistances.h"

#include "Engine/Graph/Core/Distance.h"
#include "Engine/Graph/Steiner/Bound/DualAscent.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"

#include <functional>
#include <queue>
#include <utility>
#include <vector>

namespace qe::graph {

namespace {

using QueueEntry = std::pair<std::uint64_t, NodeIndex>;
using Queue = std::priority_queue<QueueEntry, std::vector<QueueEntry>, std::greater<>>;

/// Spreads from what is queued; `flip` is 0 to walk with the half-edges and 1 to walk against
/// them.
void Spread(const FlatNetwork& network, const DualAscent& ascent, std::uint32_t flip,
            std::uint64_t most, Queue& queue, NodeDistances& distances)
{
    while (!queue.empty()) {
        const auto [distance, node] = queue.top();
        queue.pop();
        if (distance > distances[node])
            continue;
        for (const FlatNetwork::Arc& arc : network.GetArcs(node)) {
            const std::uint64_t next =
                distance + ascent.GetReduced(HalfEdge{arc.half.value ^ flip});
            if (next > most || next >= distances[arc.target])
                continue;
            distances[arc.target] = next;
            queue.emplace(next, arc.target);
        }
    }
}

} // namespace

NodeDistances GetReducedFromRoot(const FlatNetwork& network, const DualAscent& ascent,
                                 std::uint64_t most)
{
    NodeDistances distances(network.GetNodeCount(), kUnreached);
    Queue queue;
    distances[ascent.GetRoot()] = 0;
    queue.emplace(0, ascent.GetRoot());
    Spread(network, ascent, 0, most, queue, distances);
    return distances;
}

NodeDistances GetReducedTo(const FlatNetwork& network, const DualAscent& ascent, NodeIndex target,
                           std::uint64_t most)
{
    NodeDistances distances(network.GetNodeCount(), kUnreached);
    Queue queue;
    distances[target] = 0;
    queue.emplace(0, target);
    Spread(network, ascent, 1, most, queue, distances);
    return distances;
}

NodeDistances GetReducedToTerminal(const FlatNetwork& network, const DualAscent& ascent,
                                   std::uint64_t most)
{
    NodeDistances distances(network.GetNodeCount(), kUnreached);
    Queue queue;
    for (const NodeIndex terminal : network.GetTerminals()) {
        if (terminal == ascent.GetRoot())
            continue;
        distances[terminal] = 0;
        queue.emplace(0, terminal);
    }
    Spread(network, ascent, 1, most, queue, distances);
    return distances;
}

} // namespace qe::graph
