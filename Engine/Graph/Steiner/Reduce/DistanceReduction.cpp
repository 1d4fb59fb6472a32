#include "Engine/Graph/Steiner/Reduce/DistanceReduction.h"

#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/Reduce/BranchReduction.h"
#include "Engine/Graph/Steiner/Reduce/DearEdgeReduction.h"
#include "Engine/Graph/Steiner/Reduce/DegreeReduction.h"
#include "Engine/Graph/Steiner/Reduce/NearestNodeReduction.h"
#include "Engine/Graph/Steiner/Reduce/SpecialDistances.h"

#include <cstddef>

namespace qe::graph {

void ReduceByDistances(Network& network, Budget& budget)
{
    // A round that takes out less than this share of the edges is the last.
    constexpr std::size_t WorthwhileShare = 50;
    ReduceDegrees(network);
    for (bool isWorthwhile = true; isWorthwhile && !budget.IsExhausted();) {
        if (network.GetTerminalCount() <= 1)
            return;
        const std::uint32_t edgesBefore = network.GetEdgeCount();
        // All three speak of the lightest trees of what was measured, so they fit together.
        const SpecialDistances distances(network);
        RemoveDearEdges(network, distances);
        BypassBranchless(network, distances);
        ContractNearest(network, distances);
        ReduceDegrees(network);
        isWorthwhile = WorthwhileShare * (edgesBefore - network.GetEdgeCount()) > edgesBefore;
    }
}

} // namespace qe::graph
