#include "Engine/Graph/Steiner/Bound/ReducedCosts.h"

#include "Engine/Graph/Steiner/Bound/DualAscent.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"
#include "Engine/Graph/Steiner/Network/Network.h"

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

namespace {

/// Returns the only edge that can connect the node, a terminal: of the half-edges that leave it,
/// or whose other halves enter it, `isUsable` holds for those of one. An invalid one when
/// there are several.
template <typename IsUsable>
EdgeIndex FindOnlyEdge(const FlatNetwork& network, NodeIndex node, const IsUsable& isUsable)
{
    EdgeIndex only;
    for (const FlatNetwork::Arc& arc : network.GetArcs(node)) {
        if (!isUsable(arc.half))
            continue;
        if (only.IsValid())
            return {};
        only = arc.half.Edge();
    }
    return only;
}

} // namespace

void ClassifyEdges(const FlatNetwork& network, const DualAscent& ascent, std::uint64_t weight,
                   EdgeStatuses& statuses)
{
    const std::uint64_t slack = weight - ascent.GetBound();
    const NodeDistances fromRoot = GetReducedFromRoot(network, ascent, slack);
    const NodeDistances toTerminal = GetReducedToTerminal(network, ascent, slack);
    const auto isUsable = [&](HalfEdge half) {
        return statuses[half.Edge()] != EEdgeStatus::Excluded &&
               fromRoot[network.GetOrigin(half)] + ascent.GetReduced(half) +
                       toTerminal[network.GetTarget(half)] <=
                   slack;
    };
    for (const EdgeIndex edge : network.GetEdges()) {
        if (!isUsable(HalfEdge::Forward(edge)) && !isUsable(HalfEdge::Backward(edge)))
            statuses[edge] = EEdgeStatus::Excluded;
    }
    for (const NodeIndex terminal : network.GetTerminals()) {
        const bool isRoot = terminal == ascent.GetRoot();
        const EdgeIndex edge = FindOnlyEdge(network, terminal, [&](HalfEdge half) {
            return isUsable(isRoot ? half : half.Reversed());
        });
        if (edge.IsValid())
            statuses[edge] = EEdgeStatus::Forced;
    }
}

std::size_t RemoveExcluded(Network& network, const FlatNetwork& flat, const EdgeStatuses& statuses)
{
    std::size_t count = 0;
    for (const EdgeIndex edge : flat.GetEdges()) {
        const EdgeIndex networkEdge = flat.GetNetworkEdge(edge);
        if (statuses[edge] != EEdgeStatus::Excluded || !network.HasEdge(networkEdge))
            continue;
        network.RemoveEdge(networkEdge);
        ++count;
    }
    return count;
}

// Forced edges form a forest. Contracting a leaf of it moves no other edge of the forest, so their
// indices stay good.
void ContractForced(Network& network, const FlatNetwork& flat, const EdgeStatuses& statuses)
{
    std::vector<HalfEdge> open;
    IndexedVector<NodeIndex, std::uint32_t> degrees(network.GetNodeLimit(), 0);
    for (const EdgeIndex edge : flat.GetEdges()) {
        if (statuses[edge] != EEdgeStatus::Forced)
            continue;
        const HalfEdge half = HalfEdge::Forward(flat.GetNetworkEdge(edge));
        open.push_back(half);
        ++degrees[network.GetOrigin(half)];
        ++degrees[network.GetTarget(half)];
    }
    const auto contractLeaves = [&] {
        return std::erase_if(open, [&](HalfEdge half) {
            const HalfEdge leaf = degrees[network.GetOrigin(half)] == 1 ? half : half.Reversed();
            if (degrees[network.GetOrigin(leaf)] != 1)
                return false;
            --degrees[network.GetOrigin(leaf)];
            --degrees[network.GetTarget(leaf)];
            network.Contract(leaf);
            return true;
        });
    };
    while (contractLeaves() > 0) {}
}

} // namespace qe::graph
