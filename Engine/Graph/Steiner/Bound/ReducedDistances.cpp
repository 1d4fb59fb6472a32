#include "Engine/Graph/Steiner/Bound/ReducedDistances.h"

#include "Engine/Graph/Steiner/Bound/DualAscent.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"
#include "Engine/Graph/Steiner/Network/Saturated.h"

#include <functional>
#include <queue>
#include <utility>

namespace qe::graph {

namespace {

using QueueEntry = std::pair<std::uint64_t, std::uint32_t>;
using Queue = std::priority_queue<QueueEntry, std::vector<QueueEntry>, std::greater<>>;

/// Spreads from what is queued; `flip` is 0 to walk with the half-edges and 1 to walk against
/// them.
void Spread(const FlatNetwork& network, const DualAscent& ascent, std::uint32_t flip,
            std::uint64_t most, Queue& queue, std::vector<std::uint64_t>& distances)
{
    while (!queue.empty()) {
        const auto [distance, node] = queue.top();
        queue.pop();
        if (distance > distances[node])
            continue;
        for (const FlatNetwork::Arc& arc : network.GetArcs(node)) {
            const std::uint64_t next = distance + ascent.GetReduced(arc.half ^ flip);
            if (next > most || next >= distances[arc.target])
                continue;
            distances[arc.target] = next;
            queue.emplace(next, arc.target);
        }
    }
}

} // namespace

std::vector<std::uint64_t> GetReducedFromRoot(const FlatNetwork& network, const DualAscent& ascent,
                                              std::uint64_t most)
{
    std::vector<std::uint64_t> distances(network.GetNodeCount(), Unreached);
    Queue queue;
    distances[ascent.GetRoot()] = 0;
    queue.emplace(0, ascent.GetRoot());
    Spread(network, ascent, 0, most, queue, distances);
    return distances;
}

std::vector<std::uint64_t> GetReducedTo(const FlatNetwork& network, const DualAscent& ascent,
                                        std::uint32_t target, std::uint64_t most)
{
    std::vector<std::uint64_t> distances(network.GetNodeCount(), Unreached);
    Queue queue;
    distances[target] = 0;
    queue.emplace(0, target);
    Spread(network, ascent, 1, most, queue, distances);
    return distances;
}

std::vector<std::uint64_t> GetReducedToTerminal(const FlatNetwork& network,
                                                const DualAscent& ascent, std::uint64_t most)
{
    std::vector<std::uint64_t> distances(network.GetNodeCount(), Unreached);
    Queue queue;
    for (const std::uint32_t terminal : network.GetTerminals()) {
        if (terminal == ascent.GetRoot())
            continue;
        distances[terminal] = 0;
        queue.emplace(0, terminal);
    }
    Spread(network, ascent, 1, most, queue, distances);
    return distances;
}

} // namespace qe::graph
