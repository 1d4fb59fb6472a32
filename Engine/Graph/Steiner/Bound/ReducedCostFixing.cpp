#include "Engine/Graph/Steiner/Bound/ReducedCostFixing.h"

#include "Engine/Graph/Steiner/Bound/DualAscent.h"
#include "Engine/Graph/Steiner/Bound/ReducedDistances.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"
#include "Engine/Graph/Steiner/Network/Network.h"

#include <vector>

namespace qe::graph {

namespace {

/// Answers the only edge that can connect the node, a terminal: of the half-edges that leave it,
/// or whose other halves enter it, `isUsable` holds for those of one. invalid when there are
/// several.
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
                   EdgeVerdicts& verdicts)
{
    const std::uint64_t slack = weight - ascent.GetBound();
    const NodeDistances fromRoot = GetReducedFromRoot(network, ascent, slack);
    const NodeDistances toTerminal = GetReducedToTerminal(network, ascent, slack);
    const auto isUsable = [&](HalfEdge half) {
        return verdicts.isExcluded[half.Edge()] == 0 &&
               fromRoot[network.GetOrigin(half)] + ascent.GetReduced(half) +
                       toTerminal[network.GetTarget(half)] <=
                   slack;
    };
    for (const EdgeIndex edge : network.GetEdges()) {
        if (!isUsable(HalfEdge::Forward(edge)) && !isUsable(HalfEdge::Backward(edge)))
            verdicts.isExcluded[edge] = 1;
    }
    for (const NodeIndex terminal : network.GetTerminals()) {
        const bool isRoot = terminal == ascent.GetRoot();
        const EdgeIndex edge = FindOnlyEdge(network, terminal, [&](HalfEdge half) {
            return isUsable(isRoot ? half : half.Reversed());
        });
        if (edge.IsValid())
            verdicts.isForced[edge] = 1;
    }
}

std::size_t RemoveExcluded(Network& network, const FlatNetwork& flat, const EdgeVerdicts& verdicts)
{
    std::size_t count = 0;
    for (const EdgeIndex edge : flat.GetEdges()) {
        const EdgeIndex networkEdge = flat.GetNetworkEdge(edge);
        if (verdicts.isExcluded[edge] == 0 || !network.HasEdge(networkEdge))
            continue;
        network.RemoveEdge(networkEdge);
        ++count;
    }
    return count;
}

// Forced edges form a forest. Contracting a leaf of it moves no other edge of the forest, so their
// indices stay good.
void ContractForced(Network& network, const FlatNetwork& flat, const EdgeVerdicts& verdicts)
{
    std::vector<HalfEdge> open;
    IndexedVector<NodeIndex, std::uint32_t> degrees(network.GetNodeLimit(), 0);
    for (const EdgeIndex edge : flat.GetEdges()) {
        if (verdicts.isForced[edge] == 0)
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
