#include "Engine/Graph/Steiner/Reduce/DearEdgeReduction.h"

#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/Reduce/NearDistances.h"
#include "Engine/Graph/Steiner/Reduce/SpecialDistances.h"

#include <algorithm>

namespace qe::graph {

std::size_t RemoveDearEdges(Network& network, const SpecialDistances& distances)
{
    NearDistances near(network);
    const std::uint32_t edgesBefore = network.GetEdgeCount();
    for (const NodeIndex node : network.GetNodes()) {
        std::uint64_t heaviest = 0;
        for (HalfEdge half = network.GetFirst(node); half.IsValid();) {
            const EdgeIndex edge = half.Edge();
            const NodeIndex target = network.GetTarget(half);
            half = network.GetNext(half);
            if (target < node)
                continue;
            if (distances.GetBound(node, target) < network.GetWeight(edge))
                network.RemoveEdge(edge);
            else
                heaviest = std::max(heaviest, network.GetWeight(edge));
        }
        if (heaviest < 2)
            continue;
        near.Run(node, heaviest - 1);
        for (HalfEdge half = network.GetFirst(node); half.IsValid();) {
            const EdgeIndex edge = half.Edge();
            const NodeIndex target = network.GetTarget(half);
            half = network.GetNext(half);
            if (target > node && near.Get(target) < network.GetWeight(edge))
                network.RemoveEdge(edge);
        }
    }
    return edgesBefore - network.GetEdgeCount();
}

} // namespace qe::graph
