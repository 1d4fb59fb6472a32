#include "Engine/Graph/Steiner/BoundReduction.h"

#include "Engine/Graph/Steiner/DualAscent.h"
#include "Engine/Graph/Steiner/FlatNetwork.h"
#include "Engine/Graph/Steiner/ReducedDistances.h"
#include "Engine/Graph/Steiner/Saturated.h"

namespace qe::graph {

namespace {

constexpr std::uint32_t None = 0xFFFFFFFF;

/// Answers the only edge that can connect the node, a terminal: of the half-edges that leave it,
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

void JudgeEdges(const FlatNetwork& network, const DualAscent& ascent, std::uint64_t weight,
                EdgeVerdicts& verdicts)
{
    const std::uint64_t slack = weight - ascent.GetBound();
    const std::vector<std::uint64_t> fromRoot = GetReducedFromRoot(network, ascent, slack);
    const std::vector<std::uint64_t> toTerminal = GetReducedToTerminal(network, ascent, slack);
    const auto isUsable = [&](std::uint32_t half) {
        return verdicts.isDispensable[half / 2] == 0 &&
               fromRoot[network.GetOrigin(half)] + ascent.GetReduced(half) +
                       toTerminal[network.GetTarget(half)] <=
                   slack;
    };
    for (std::uint32_t edge = 0; edge < network.GetEdgeCount(); ++edge) {
        const std::uint32_t half = 2 * edge;
        if (!isUsable(half) && !isUsable(half + 1))
            verdicts.isDispensable[edge] = 1;
    }
    for (const std::uint32_t terminal : network.GetTerminals()) {
        const std::uint32_t flip = terminal == ascent.GetRoot() ? 0 : 1;
        const std::uint32_t edge = FindOnlyEdge(
            network, terminal, [&](std::uint32_t half) { return isUsable(half ^ flip); });
        if (edge != None)
            verdicts.isForced[edge] = 1;
    }
}

} // namespace qe::graph
