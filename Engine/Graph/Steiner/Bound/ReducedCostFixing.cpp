#include "Engine/Graph/Steiner/Bound/ReducedCostFixing.h"

#include "Engine/Graph/Steiner/Bound/DualAscent.h"
#include "Engine/Graph/Steiner/Bound/ReducedDistances.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"
#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/Network/Saturated.h"

namespace qe::graph {

namespace {

constexpr std::uint32_t None = 0xFFFFFFFF;

/// Returns the only edge that can connect the node, a terminal: of the half-edges that leave it,
/// or whose other halves enter it, `isUsable` holds for those of one. None when there are several.
template <typename IsUsable>
std::uint32_t FindOnlyEdge(const FlatNetwork& network, std::uint32_t node, const IsUsable& isUsable)
{
    std::uint32_t only = None;
    for (const FlatNetwork::Arc& arc : network.GetArcs(node)) {
        if (!isUsable(arc.half))
            continue;
        if (only != None)
            return None;
        only = arc.half / 2;
    }
    return only;
}

} // namespace

void ClassifyEdges(const FlatNetwork& network, const DualAscent& ascent, std::uint64_t weight,
                   std::vector<EEdgeStatus>& statuses)
{
    const std::uint64_t slack = weight - ascent.GetBound();
    const std::vector<std::uint64_t> fromRoot = GetReducedFromRoot(network, ascent, slack);
    const std::vector<std::uint64_t> toTerminal = GetReducedToTerminal(network, ascent, slack);
    const auto isUsable = [&](std::uint32_t half) {
        return statuses[half / 2] != EEdgeStatus::Excluded &&
               fromRoot[network.GetOrigin(half)] + ascent.GetReduced(half) +
                       toTerminal[network.GetTarget(half)] <=
                   slack;
    };
    for (std::uint32_t edge = 0; edge < network.GetEdgeCount(); ++edge) {
        const std::uint32_t half = 2 * edge;
        if (!isUsable(half) && !isUsable(half + 1))
            statuses[edge] = EEdgeStatus::Excluded;
    }
    for (const std::uint32_t terminal : network.GetTerminals()) {
        const std::uint32_t flip = terminal == ascent.GetRoot() ? 0 : 1;
        const std::uint32_t edge = FindOnlyEdge(
            network, terminal, [&](std::uint32_t half) { return isUsable(half ^ flip); });
        if (edge != None)
            statuses[edge] = EEdgeStatus::Forced;
    }
}

std::size_t RemoveExcluded(Network& network, const FlatNetwork& flat,
                           std::span<const EEdgeStatus> statuses)
{
    std::size_t count = 0;
    for (std::uint32_t edge = 0; edge < flat.GetEdgeCount(); ++edge) {
        const std::uint32_t networkEdge = flat.GetNetworkEdge(edge);
        if (statuses[edge] != EEdgeStatus::Excluded || !network.HasEdge(networkEdge))
            continue;
        network.RemoveEdge(networkEdge);
        ++count;
    }
    return count;
}

// Forced edges form a forest. Contracting a leaf of it moves no other edge of the forest, so their
// indices stay good.
void ContractForced(Network& network, const FlatNetwork& flat,
                    std::span<const EEdgeStatus> statuses)
{
    std::vector<std::uint32_t> open;
    std::vector<std::uint32_t> degrees(network.GetNodeLimit(), 0);
    for (std::uint32_t edge = 0; edge < flat.GetEdgeCount(); ++edge) {
        if (statuses[edge] != EEdgeStatus::Forced)
            continue;
        const std::uint32_t half = 2 * flat.GetNetworkEdge(edge);
        open.push_back(half);
        ++degrees[network.GetOrigin(half)];
        ++degrees[network.GetTarget(half)];
    }
    const auto contractLeaves = [&] {
        return std::erase_if(open, [&](std::uint32_t half) {
            const std::uint32_t leaf = degrees[network.GetOrigin(half)] == 1 ? half : half + 1;
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
