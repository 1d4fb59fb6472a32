#include "Engine/Graph/Steiner/Network/NetworkBuilder.h"

#include <algorithm>
#include <utility>

namespace qe::graph {

namespace {

class NetworkBuilder
{
public:
    NetworkBuilder(const GraphView& graph, std::span<const std::uint32_t> groups)
        : mGraph(graph), mGroups(groups), mLocal(graph.GetNodeCount(), Network::None)
    {}

    bool Collect(std::span<const NodeIndex> terminals);
    void Peel(std::span<const NodeIndex> terminals);
    Network Build(std::span<const NodeIndex> terminals, StrandPool& strands);

private:
    struct Link
    {
        std::uint32_t end2;
        std::uint32_t edge;
    };

    [[nodiscard]] std::uint32_t GetGroup(std::uint32_t node) const
    {
        return mGroups.empty() ? node : mGroups[node];
    }
    std::uint32_t Number();
    void SortLinks(std::uint32_t count);

    const GraphView& mGraph;
    std::span<const std::uint32_t> mGroups;
    /// Number of each node in the network; None for what is left out.
    std::vector<std::uint32_t> mLocal;
    std::vector<std::uint32_t> mReached;
    std::vector<std::uint32_t> mFirstLink;
    std::vector<Link> mLinks;
};

bool NetworkBuilder::Collect(std::span<const NodeIndex> terminals)
{
    mReached.push_back(terminals.front().value);
    mLocal[terminals.front().value] = 0;
    for (std::size_t next = 0; next < mReached.size(); ++next) {
        for (const Arc& arc : mGraph.GetArcs({mReached[next]})) {
            if (mLocal[arc.target.value] == Network::None) {
                mLocal[arc.target.value] = 0;
                mReached.push_back(arc.target.value);
            }
        }
    }
    for (const NodeIndex terminal : terminals) {
        if (mLocal[terminal.value] == Network::None)
            return false;
    }
    return true;
}

void NetworkBuilder::Peel(std::span<const NodeIndex> terminals)
{
    std::vector<std::uint32_t> degrees(mGraph.GetNodeCount(), 0);
    for (const std::uint32_t node : mReached)
        degrees[node] = static_cast<std::uint32_t>(mGraph.GetArcs({node}).size());
    for (const NodeIndex terminal : terminals)
        degrees[terminal.value] = Network::None;
    std::vector<std::uint32_t> open;
    for (const std::uint32_t node : mReached) {
        if (degrees[node] == 1)
            open.push_back(node);
    }
    while (!open.empty()) {
        const std::uint32_t node = open.back();
        open.pop_back();
        mLocal[node] = Network::None;
        for (const Arc& arc : mGraph.GetArcs({node})) {
            const std::uint32_t target = arc.target.value;
            if (mLocal[target] != Network::None && --degrees[target] == 1)
                open.push_back(target);
        }
    }
}

std::uint32_t NetworkBuilder::Number()
{
    std::uint32_t count = 0;
    for (std::uint32_t node = 0; node < mGraph.GetNodeCount(); ++node) {
        if (mLocal[node] == Network::None)
            continue;
        const std::uint32_t group = GetGroup(node);
        mLocal[node] = group == node ? count++ : mLocal[group];
    }
    return count;
}

void NetworkBuilder::SortLinks(std::uint32_t count)
{
    std::vector<std::pair<std::uint32_t, Link>> links;
    links.reserve(mGraph.GetEdgeCount());
    mFirstLink.assign(count + 1, 0);
    for (std::uint32_t index = 0; index < mGraph.GetEdgeCount(); ++index) {
        const Edge& edge = mGraph.GetEdge({index});
        const std::uint32_t end1 = mLocal[edge.end1.value];
        const std::uint32_t end2 = mLocal[edge.end2.value];
        if (end1 == Network::None || end2 == Network::None || end1 == end2)
            continue;
        links.emplace_back(std::min(end1, end2), Link{std::max(end1, end2), index});
        ++mFirstLink[std::min(end1, end2) + 1];
    }
    for (std::uint32_t node = 0; node < count; ++node)
        mFirstLink[node + 1] += mFirstLink[node];
    std::vector<std::uint32_t> place(mFirstLink.begin(), mFirstLink.end() - 1);
    mLinks.resize(links.size());
    for (const auto& [end1, link] : links)
        mLinks[place[end1]++] = link;
}

Network NetworkBuilder::Build(std::span<const NodeIndex> terminals, StrandPool& strands)
{
    const std::uint32_t count = Number();
    SortLinks(count);
    Network network(count, strands);
    // The last edge seen towards each node; it is one of the current node when it is no older
    // than that node's first.
    std::vector<std::uint32_t> lastEdge(count, 0);
    for (std::uint32_t node = 0; node < count; ++node) {
        const std::uint32_t firstEdge = network.GetEdgeLimit();
        for (std::uint32_t place = mFirstLink[node]; place < mFirstLink[node + 1]; ++place) {
            const auto [target, edge] = mLinks[place];
            const std::uint64_t weight = mGraph.GetEdge({edge}).weight;
            const StrandIndex strand = strands.AddEdge({edge});
            const std::uint32_t last = lastEdge[target];
            if (last > firstEdge) {
                network.MergeInto(last - 1, weight, strand);
                continue;
            }
            network.AppendEdge(node, target, weight, strand);
            lastEdge[target] = network.GetEdgeLimit();
        }
    }
    for (const NodeIndex terminal : terminals)
        network.MakeTerminal(mLocal[terminal.value]);
    return network;
}

} // namespace

std::optional<Network> BuildNetwork(const GraphView& graph, std::span<const NodeIndex> terminals,
                                    std::span<const std::uint32_t> groups, StrandPool& strands)
{
    NetworkBuilder builder(graph, groups);
    if (!builder.Collect(terminals))
        return std::nullopt;
    if (groups.empty())
        builder.Peel(terminals);
    return builder.Build(terminals, strands);
}

} // namespace qe::graph
