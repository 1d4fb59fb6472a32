#include "Engine/Graph/Steiner/Network/FlatNetwork.h"

#include "Engine/Graph/Steiner/Network/Network.h"

#include <cstddef>

namespace qe::graph {

FlatNetwork::FlatNetwork(const Network& network)
{
    IndexedVector<NodeIndex, NodeIndex> local(network.GetNodeLimit());
    mFirstArc.reserve(network.GetNodeLimit() + std::size_t{1});
    mIsTerminal.reserve(network.GetNodeLimit());
    mTerminals.reserve(network.GetTerminalCount());
    mOrigins.reserve(2 * std::size_t{network.GetEdgeCount()});
    mWeights.reserve(network.GetEdgeCount());
    mNetworkEdges.reserve(network.GetEdgeCount());
    mFirstArc.push_back(0);
    for (const NodeIndex node : network.GetNodes()) {
        if (network.GetDegree(node) == 0 && !network.IsTerminal(node))
            continue;
        local[node] = {GetNodeCount()};
        if (network.IsTerminal(node))
            mTerminals.push_back(local[node]);
        mIsTerminal.push_back(network.IsTerminal(node) ? 1 : 0);
        mFirstArc.push_back(mFirstArc.back() + network.GetDegree(node));
    }
    mArcs.resize(mFirstArc.back());
    std::vector<std::uint32_t> place(mFirstArc.begin(), mFirstArc.end() - 1);
    for (const EdgeIndex edge : network.GetEdgeIndices()) {
        if (!network.HasEdge(edge))
            continue;
        const auto [networkEnd1, networkEnd2] = network.GetEnds(edge);
        const NodeIndex end1 = local[networkEnd1];
        const NodeIndex end2 = local[networkEnd2];
        const EdgeIndex flatEdge{GetEdgeCount()};
        const std::uint64_t weight = network.GetWeight(edge);
        mArcs[place[end1.value]++] = {end2, HalfEdge::Forward(flatEdge), weight};
        mArcs[place[end2.value]++] = {end1, HalfEdge::Backward(flatEdge), weight};
        mOrigins.push_back(end1);
        mOrigins.push_back(end2);
        mWeights.push_back(weight);
        mNetworkEdges.push_back(edge);
    }
}

} // namespace qe::graph
