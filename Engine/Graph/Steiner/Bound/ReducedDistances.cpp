#include "Engine/Graph/Steiner/Bound/ReducedDistances.h"

#include "Engine/Graph/Steiner/Bound/DualAscent.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"

#include <span>
#include <vector>

namespace qe::graph {

namespace {

/// Returns the distances from the nearest source, where going along an arc of the network takes
/// `getLength` of its half-edge.
template <typename GetLength>
NodeDistances Measure(const FlatNetwork& network, std::span<const NodeIndex> sources,
                      std::uint64_t most, const GetLength& getLength)
{
    DijkstraSearch search(network.GetNodeCount());
    for (const NodeIndex source : sources)
        search.Reach(source, 0);
    search.Run([&](NodeIndex node, std::uint64_t distance) {
        for (const FlatNetwork::Arc& arc : network.GetArcs(node)) {
            const std::uint64_t next = distance + getLength(arc.half);
            if (next <= most)
                search.Reach(arc.target, next);
        }
        return DijkstraSearch::EStep::Continue;
    });
    return search.TakeDistances();
}

NodeDistances MeasureBackwards(const FlatNetwork& network, const DualAscent& ascent,
                               std::span<const NodeIndex> targets, std::uint64_t most)
{
    return Measure(network, targets, most,
                   [&](HalfEdge half) { return ascent.GetReduced(half.Reversed()); });
}

} // namespace

NodeDistances GetReducedFromRoot(const FlatNetwork& network, const DualAscent& ascent,
                                 std::uint64_t most)
{
    const NodeIndex root = ascent.GetRoot();
    return Measure(network, {&root, 1}, most,
                   [&](HalfEdge half) { return ascent.GetReduced(half); });
}

NodeDistances GetReducedTo(const FlatNetwork& network, const DualAscent& ascent, NodeIndex target,
                           std::uint64_t most)
{
    return MeasureBackwards(network, ascent, {&target, 1}, most);
}

NodeDistances GetReducedToTerminal(const FlatNetwork& network, const DualAscent& ascent,
                                   std::uint64_t most)
{
    const std::span<const NodeIndex> terminals = network.GetTerminals();
    std::vector<NodeIndex> targets(terminals.begin(), terminals.end());
    std::erase(targets, ascent.GetRoot());
    return MeasureBackwards(network, ascent, targets, most);
}

} // namespace qe::graph
