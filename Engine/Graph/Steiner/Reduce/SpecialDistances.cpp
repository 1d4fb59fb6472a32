#include "Engine/Graph/Steiner/Reduce/SpecialDistances.h"

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Network/Network.h"

#include <algorithm>
#include <functional>
#include <queue>
#include <tuple>

namespace qe::graph {

SpecialDistances::SpecialDistances(const Network& network)
    : mNearest(network.GetNodeLimit()),
      mCounts(network.GetNodeLimit()),
      mForest(network.GetNodeLimit())
{
    FindNearest(network);
    SpanTerminals(network);
}

void SpecialDistances::FindNearest(const Network& network)
{
    using Entry = std::tuple<std::uint64_t, NodeIndex, NodeIndex>;
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> queue;
    for (const NodeIndex node : network.GetNodes()) {
        if (network.IsTerminal(node))
            queue.emplace(0, node, node);
    }
    const auto isWanted = [&](NodeIndex node, NodeIndex terminal) {
        const std::span<const NearTerminal> nearest = GetNearest(node);
        return nearest.size() < (network.IsTerminal(node) ? 1 : kMost) &&
               std::none_of(nearest.begin(), nearest.end(),
                            [&](const NearTerminal& near) { return near.terminal == terminal; });
    };
    while (!queue.empty()) {
        const auto [distance, node, terminal] = queue.top();
        queue.pop();
        if (!isWanted(node, terminal))
            continue;
        mNearest[node][mCounts[node]++] = {distance, terminal};
        for (HalfEdge half = network.GetFirst(node); half.IsValid(); half = network.GetNext(half)) {
            const NodeIndex target = network.GetTarget(half);
            if (isWanted(target, terminal))
                queue.emplace(distance + network.GetWeight(half.Edge()), target, terminal);
        }
    }
}

/// Grows a minimum spanning tree of the terminals from the edges between the regions nearest to
/// them (Mehlhorn 1988).
void SpecialDistances::SpanTerminals(const Network& network)
{
    std::vector<std::tuple<std::uint64_t, NodeIndex, NodeIndex>> links;
    for (const EdgeIndex edge : network.GetEdgeIndices()) {
        if (!network.HasEdge(edge))
            continue;
        const auto [end1, end2] = network.GetEnds(edge);
        if (mCounts[end1] == 0 || mCounts[end2] == 0)
            continue;
        const NearTerminal& near1 = mNearest[end1][0];
        const NearTerminal& near2 = mNearest[end2][0];
        if (near1.terminal != near2.terminal)
            links.emplace_back(near1.distance + network.GetWeight(edge) + near2.distance,
                               near1.terminal, near2.terminal);
    }
    std::sort(links.begin(), links.end());
    for (const auto& [distance, terminal1, terminal2] : links) {
        if (mForest.Unite(terminal1.value, terminal2.value,
                          static_cast<std::uint32_t>(mSteps.size())))
            mSteps.push_back(distance);
    }
}

std::uint64_t SpecialDistances::GetBottleneck(NodeIndex terminal1, NodeIndex terminal2) const
{
    if (terminal1 == terminal2)
        return 0;
    const std::uint32_t step = mForest.FindLastStep(terminal1.value, terminal2.value);
    return step == BottleneckForest::kNotConnected ? kUnreached : mSteps[step];
}

std::uint64_t SpecialDistances::GetBound(NodeIndex node1, NodeIndex node2) const
{
    std::uint64_t bound = kUnreached;
    for (const NearTerminal& near1 : GetNearest(node1)) {
        for (const NearTerminal& near2 : GetNearest(node2)) {
            const std::uint64_t legs = std::max(near1.distance, near2.distance);
            if (legs < bound)
                bound =
                    std::min(bound, std::max(legs, GetBottleneck(near1.terminal, near2.terminal)));
        }
    }
    return bound;
}

} // namespace qe::graph
