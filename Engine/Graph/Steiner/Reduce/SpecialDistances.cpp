#include "Engine/Graph/Steiner/Reduce/SpecialDistances.h"

#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/Network/Saturated.h"

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
    using Entry = std::tuple<std::uint64_t, std::uint32_t, std::uint32_t>;
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> queue;
    for (std::uint32_t node = 0; node < network.GetNodeLimit(); ++node) {
        if (network.IsTerminal(node))
            queue.emplace(0, node, node);
    }
    const auto isWanted = [&](std::uint32_t node, std::uint32_t terminal) {
        const std::span<const NearTerminal> nearest = GetNearest(node);
        return nearest.size() < (network.IsTerminal(node) ? 1 : Most) &&
               std::none_of(nearest.begin(), nearest.end(),
                            [&](const NearTerminal& near) { return near.terminal == terminal; });
    };
    while (!queue.empty()) {
        const auto [distance, node, terminal] = queue.top();
        queue.pop();
        if (!isWanted(node, terminal))
            continue;
        mNearest[node][mCounts[node]++] = {distance, terminal};
        for (std::uint32_t half = network.GetFirst(node); half != Network::None;
             half = network.GetNext(half)) {
            const std::uint32_t target = network.GetTarget(half);
            if (isWanted(target, terminal))
                queue.emplace(distance + network.GetWeight(half / 2), target, terminal);
        }
    }
}

/// Grows a lightest spanning tree of the terminals from the edges between the regions nearest to
/// them (Mehlhorn 1988).
void SpecialDistances::SpanTerminals(const Network& network)
{
    std::vector<std::tuple<std::uint64_t, std::uint32_t, std::uint32_t>> links;
    for (std::uint32_t edge = 0; edge < network.GetEdgeLimit(); ++edge) {
        if (!network.HasEdge(edge))
            continue;
        const std::uint32_t end1 = network.GetOrigin(2 * edge);
        const std::uint32_t end2 = network.GetOrigin(2 * edge + 1);
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
        if (mForest.Unite(terminal1, terminal2, static_cast<std::uint32_t>(mSteps.size())))
            mSteps.push_back(distance);
    }
}

std::uint64_t SpecialDistances::GetBottleneck(std::uint32_t terminal1,
                                              std::uint32_t terminal2) const
{
    if (terminal1 == terminal2)
        return 0;
    const std::uint32_t step = mForest.FindLastStep(terminal1, terminal2);
    return step == BottleneckForest::NotConnected ? Unreached : mSteps[step];
}

std::uint64_t SpecialDistances::GetBound(std::uint32_t node1, std::uint32_t node2) const
{
    std::uint64_t bound = Unreached;
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
