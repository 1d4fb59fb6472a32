#include "Engine/Graph/Steiner/Reduce/NearestNodeReduction.h"

#include "Engine/Graph/Core/Distance.h"
#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/Reduce/SpecialDistances.h"

#include <cstddef>
#include <cstdint>

namespace qe::graph {

namespace {

/// Returns the half-edge by which every minimum Steiner tree leaves the terminal; an invalid one
/// when none is known.
HalfEdge FindNeeded(const Network& network, const SpecialDistances& distances, NodeIndex terminal)
{
    HalfEdge lightest;
    std::uint64_t weight = kUnreached;
    std::uint64_t nextWeight = kUnreached;
    for (HalfEdge half = network.GetFirst(terminal); half.IsValid(); half = network.GetNext(half)) {
        const std::uint64_t other = network.GetWeight(half.Edge());
        if (other < weight) {
            nextWeight = weight;
            weight = other;
            lightest = half;
        } else if (other < nextWeight) {
            nextWeight = other;
        }
    }
    if (nextWeight == kUnreached)
        return {};
    for (const auto& near : distances.GetNearest(network.GetTarget(lightest))) {
        if (near.terminal != terminal)
            return weight + near.distance < nextWeight ? lightest : HalfEdge{};
    }
    return {};
}

} // namespace

std::size_t ContractNearest(Network& network, const SpecialDistances& distances)
{
    // What was measured before a contraction tells nothing about the ends of it.
    IndexedVector<NodeIndex, std::uint8_t> isTouched(network.GetNodeLimit(), 0);
    std::size_t count = 0;
    for (const NodeIndex node : network.GetNodes()) {
        if (!network.IsTerminal(node) || isTouched[node] != 0 || network.GetTerminalCount() == 1)
            continue;
        const HalfEdge half = FindNeeded(network, distances, node);
        if (!half.IsValid() || isTouched[network.GetTarget(half)] != 0)
            continue;
        isTouched[node] = 1;
        isTouched[network.GetTarget(half)] = 1;
        network.Contract(half);
        ++count;
    }
    return count;
}

} // namespace qe::graph
