#include "Engine/Graph/Steiner/Network/FlatNetwork.h"

#include "Engine/Graph/Steiner/Network/Network.h"

namespace qe::graph {

FlatNetwork::FlatNetwork(const Network& network)
{
    std::vector<std::uint32_t> local(network.GetNodeLimit(), 0);
    std::uint32_t count = 0;
    mFirstArc.push_back(0);
    for (std::uint32_t node = 0; node < network.GetNodeLimit(); ++node) {
        if (network.GetDegree(node) == 0 && !network.IsTerminal(node))
            continue;
        if (network.IsTerminal(node))
            mTerminals.push_back(count);
        mIsTerminal.push_back(network.IsTerminal(node) ? 1 : 0);
        mFirstArc.push_back(mFirstArc.back() + network.GetDegree(node));
        local[node] = count++;
    }
    mArcs.resize(mFirstArc.back());
    std::vector<std::uint32_t> place(mFirstArc.begin(), mFirstArc.end() - 1);
    for (std::uint32_t edge = 0; edge < network.GetEdgeLimit(); ++edge) {
        if (!network.HasEdge(edge))
            continue;
        const std::uint32_t end1 = local[network.GetOrigin(2 * edge)];
        const std::uint32_t end2 = local[network.GetOrigin(2 * edge + 1)];
        const std::uint32_t half = GetHalfCount();
        const std::uint64_t weight = network.GetWeight(edge);
        mArcs[place[end1]++] = {end2, half, weight};
        mArcs[place[end2]++] = {end1, half + 1, weight};
        mOrigins.push_back(end1);
        mOrigins.push_back(end2);
        mWeights.push_back(weight);
        mNetworkEdges.push_back(edge);
    }
}

} // namespace qe::graph
