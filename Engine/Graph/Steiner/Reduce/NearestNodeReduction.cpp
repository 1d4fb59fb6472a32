#include "Engine/Graph/Steiner/Reduce/NearestNodeReduction.h"

#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/Network/Saturated.h"
#include "Engine/Graph/Steiner/Reduce/SpecialDistances.h"

#include <vector>

namespace qe::graph {

namespace {

/// Answers the half-edge by which every lightest tree leaves the terminal, or None.
std::uint32_t FindNeeded(const Network& network, const SpecialDistances& distances,
                         std::uint32_t terminal)
{
    std::uint32_t lightest = Network::None;
    std::uint64_t weight = Unreached;
    std::uint64_t nextWeight = Unreached;
    for (std::uint32_t half = network.GetFirst(terminal); half != Network::None;
         half = network.GetNext(half)) {
        const std::uint64_t other = network.GetWeight(half / 2);
        if (other < weight) {
            nextWeight = weight;
            weight = other;
            lightest = half;
        } else if (other < nextWeight) {
            nextWeight = other;
        }
    }
    if (nextWeight == Unreached)
        return Network::None;
    for (const auto& near : distances.GetNearest(network.GetTarget(lightest))) {
        if (near.terminal != terminal)
            return weight + near.distance < nextWeight ? lightest : Network::None;
    }
    return Network::None;
}

} // namespace

std::size_t ContractNearest(Network& network, const SpecialDistances& distances)
{
    // What was measured before a contraction tells nothing about the ends of it.
    std::vector<std::uint8_t> isTouched(network.GetNodeLimit(), 0);
    std::size_t count = 0;
    for (std::uint32_t node = 0; node < network.GetNodeLimit(); ++node) {
        if (!network.IsTerminal(node) || isTouched[node] != 0 || network.GetTerminalCount() == 1)
            continue;
        const std::uint32_t half = FindNeeded(network, distances, node);
        if (half == Network::None || isTouched[network.GetTarget(half)] != 0)
            continue;
        isTouched[node] = 1;
        isTouched[network.GetTarget(half)] = 1;
        network.Contract(half);
        ++count;
    }
    return count;
}

} // namespace qe::graph
