#include "Engine/Graph/Steiner/BoundReduction.h"

#include "Engine/Graph/Steiner/DualAscent.h"
#include "Engine/Graph/Steiner/FlatNetwork.h"
#include "Engine/Graph/Steiner/ReducedDistances.h"
#include "Engine/Graph/Steiner/Saturated.h"

namespace qe::graph {

void MarkDispensable(const FlatNetwork& network, const DualAscent& ascent, std::uint64_t weight,
                     std::vector<std::uint8_t>& isDispensable)
{
    const std::uint64_t slack = weight - ascent.GetBound();
    const std::vector<std::uint64_t> fromRoot = GetReducedFromRoot(network, ascent, slack);
    const std::vector<std::uint64_t> toTerminal = GetReducedToTerminal(network, ascent, slack);
    const auto isAbove = [&](std::uint32_t half) {
        return fromRoot[network.GetOrigin(half)] + ascent.GetReduced(half) +
                   toTerminal[network.GetTarget(half)] >
               slack;
    };
    for (std::uint32_t edge = 0; edge < network.GetEdgeCount(); ++edge) {
        if (isAbove(2 * edge) && isAbove(2 * edge + 1))
            isDispensable[edge] = 1;
    }
}

} // namespace qe::graph
