#include "Engine/Graph/Steiner/Network/NetworkBuilder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace qe::graph {

namespace {

using Components = IndexedVector<NodeIndex, NodeIndex>;

class NetworkBuilder
{
public:
    NetworkBuilder(const GraphView& graph, const Components& components)
        : mGraph(graph), mComponents(components), mLocal(graph.GetNodeCount())
    {}

    bool Collect(std::span<const NodeIndex> terminals);
    void Peel(std::span<const NodeIndex> terminals);
    Network Build(std::span<const NodeIndex> terminals, StrandPool& strands);

private:
    struct Link
    {
        NodeIndex end2;
        EdgeIndex edge;
    };

    [[nodiscard]] NodeIndex GetComponent(NodeIndex node) const
    {
        return mComponents.empty() ? node : mComponents[node];
    }
    std::uint32_t Number();
    void SortLinks(std::uint32_t count);

    const GraphView& mGraph;
    const Components& mComponents;
    /// Each node in the network; invalid for what is left out.
    IndexedVector<NodeIndex, NodeIndex> mLocal;
    std::vector<NodeIndex> mReached;
    std::vector<std::uint32_t> mFirstLink;
    std::vector<Link> mLinks;
};

/// Finds what is connected to the first terminal; returns whether that is all of them.
bool NetworkBuilder::Collect(std::span<const NodeIndex> terminals)
{
    mReached.push_back(terminals.front());
    mLocal[terminals.front()] = {0};
    for (std::size_t next = 0; next < mReached.size(); ++next) {
        for (const Arc& arc : mGraph.GetArcs(mReached[next])) {
            if (!mLocal[arc.target].IsValid()) {
                mLocal[arc.target] = {0};
                mReached.push_back(arc.target);
            }
        }
    }
    return std::all_of(terminals.begin(), terminals.end(),
                       [this](NodeIndex terminal) { return mLocal[terminal].IsValid(); });
}

void NetworkBuilder::Peel(std::span<const NodeIndex> terminals)
{
    constexpr std::uint32_t kStays = std::numeric_limits<std::uint32_t>::max();
    IndexedVector<NodeIndex, std::uint32_t> degrees(mGraph.GetNodeCount(), 0);
    for (const NodeIndex node : mReached)
        degrees[node] = static_cast<std::uint32_t>(mGraph.GetArcs(node).size());
    for (const NodeIndex terminal : terminals)
        degrees[terminal] = kStays;
    std::vector<NodeIndex> open;
    for (const NodeIndex node : mReached) {
        if (degrees[node] == 1)
            open.push_back(node);
    }
    while (!open.empty()) {
        const NodeIndex node = open.back();
        open.pop_back();
        mLocal[node] = {};
        for (const Arc& arc : mGraph.GetArcs(node)) {
            if (mLocal[arc.target].IsValid() && --degrees[arc.target] == 1)
                open.push_back(arc.target);
        }
    }
}

std::uint32_t NetworkBuilder::Number()
{
    std::uint32_t count = 0;
    for (const NodeIndex node : IndexRange<NodeIndex>(mGraph.GetNodeCount())) {
        if (!mLocal[node].IsValid())
            continue;
        const NodeIndex component = GetComponent(node);
        mLocal[node] = component == node ? NodeIndex{count++} : mLocal[component];
    }
    return count;
}

void NetworkBuilder::SortLinks(std::uint32_t count)
{
    std::vector<std::pair<NodeIndex, Link>> links;
    links.reserve(mGraph.GetEdgeCount());
    mFirstLink.assign(count + 1, 0);
    for (const EdgeIndex index : IndexRange<EdgeIndex>(mGraph.GetEdgeCount())) {
        const Edge& edge = mGraph.GetEdge(index);
        const NodeIndex end1 = mLocal[edge.end1];
        const NodeIndex end2 = mLocal[edge.end2];
        if (!end1.IsValid() || !end2.IsValid() || end1 == end2)
            continue;
        links.emplace_back(std::min(end1, end2), Link{std::max(end1, end2), index});
        ++mFirstLink[std::min(end1, end2).value + 1];
    }
    for (std::uint32_t node = 0; node < count; ++node)
        mFirstLink[node + 1] += mFirstLink[node];
    std::vector<std::uint32_t> place(mFirstLink.begin(), mFirstLink.end() - 1);
    mLinks.resize(links.size());
    for (const auto& [end1, link] : links)
        mLinks[place[end1.value]++] = link;
}

Network NetworkBuilder::Build(std::span<const NodeIndex> terminals, StrandPool& strands)
{
    const std::uint32_t count = Number();
    SortLinks(count);
    Network network(count, strands);
    network.Reserve(mLinks.size());
    strands.Reserve(mLinks.size());
    // The last edge seen towards each node; it is one of the current node when it is no older
    // than that node's first.
    IndexedVector<NodeIndex, std::uint32_t> lastEdge(count, 0);
    for (const NodeIndex node : network.GetNodes()) {
        const std::uint32_t firstEdge = network.GetEdgeLimit();
        for (std::uint32_t place = mFirstLink[node.value]; place < mFirstLink[node.value + 1];
             ++place) {
            const auto [target, edge] = mLinks[place];
            const std::uint64_t weight = mGraph.GetEdge(edge).weight;
            const StrandIndex strand = strands.AddEdge(edge);
            const std::uint32_t last = lastEdge[target];
            if (last > firstEdge) {
                network.MergeInto({last - 1}, weight, strand);
                continue;
            }
            network.AppendEdge(node, target, weight, strand);
            lastEdge[target] = network.GetEdgeLimit();
        }
    }
    for (const NodeIndex terminal : terminals)
        network.MakeTerminal(mLocal[terminal]);
    return network;
}

} // namespace

std::optional<Network> BuildNetwork(const GraphView& graph, std::span<const NodeIndex> terminals,
                                    const IndexedVector<NodeIndex, NodeIndex>& components,
                                    StrandPool& strands)
{
    NetworkBuilder builder(graph, components);
    if (!builder.Collect(terminals))
        return std::nullopt;
    if (components.empty())
        builder.Peel(terminals);
    return builder.Build(terminals, strands);
}

} // namespace qe::graph
