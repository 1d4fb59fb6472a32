#include "Engine/Graph/Steiner/BoundReduction.h"

#include "Engine/Graph/Steiner/DualAscent.h"
#include "Engine/Graph/Steiner/FlatNetwork.h"
#include "Engine/Graph/Steiner/ReducedDistances.h"
#include "Engine/Graph/Steiner/Saturated.h"

namespace qe::graph {

void MarkDispensable(const FlatNetwork& network, const DualAscent& ascent, std::uint64_t weight,
                     std::vector<std::uint8_t>& isDispensable)
{
    const std::vector<std::uint64_t> fromRoot = GetReducedFromRoot(network, ascent);
    const std::vector<std::uint64_t> toTerminal = GetReducedToTerminal(network, ascent);
    const auto getBound = [&](std::uint32_t half) {
        const std::uint64_t way =
            SaturatingAdd(fromRoot[network.GetOrigin(half)], toTerminal[network.GetTarget(half)]);
        return SaturatingAdd(way, ascent.GetReduced(half) + ascent.GetBound());
    };
    for (std::uint32_t edge = 0; edge < network.GetEdgeCount(); ++edge) {
        if (getBound(2 * edge) > weight && getBound(2 * edge + 1) > weight)
            isDispensable[edge] = 1;
    }
}

} // namespace qe::graph
