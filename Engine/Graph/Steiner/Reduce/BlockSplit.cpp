#include "Engine/Graph/Steiner/Reduce/BlockSplit.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>

namespace qe::graph {

namespace {

class BlockSplit
{
public:
    explicit BlockSplit(const Network& network) : mNetwork(network), mVisits(network.GetNodeLimit())
    {
        mPath.reserve(network.GetNodeLimit());
        mEdges.reserve(network.GetEdgeCount());
    }

    std::vector<Network> Run();

private:
    struct Visit
    {
        std::uint32_t order = 0;
        std::uint32_t low = 0;
        HalfEdge next;
        HalfEdge entry;
        std::uint32_t firstEdge = 0;
        bool isTerminal = false;
        bool leadsToTerminal = false;
        NodeIndex local;
    };

    void Enter(NodeIndex node, HalfEdge half);
    void Follow(HalfEdge half);
    void Leave(NodeIndex node);
    void Emit(std::uint32_t firstEdge);
    void SortNodes(std::vector<NodeIndex>& nodes) const;

    const Network& mNetwork;
    IndexedVector<NodeIndex, Visit> mVisits;
    std::vector<NodeIndex> mPath;
    std::vector<EdgeIndex> mEdges;
    std::vector<Network> mBlocks;
    std::uint32_t mOrder = 0;
};

std::vector<Network> BlockSplit::Run()
{
    NodeIndex root{0};
    while (!mNetwork.IsTerminal(root))
        ++root.value;
    Enter(root, {});
    while (!mPath.empty()) {
        Visit& visit = mVisits[mPath.back()];
        if (!visit.next.IsValid()) {
            Leave(mPath.back());
            continue;
        }
        const HalfEdge half = visit.next;
        visit.next = mNetwork.GetNext(half);
        Follow(half);
    }
    return std::move(mBlocks);
}

void BlockSplit::Enter(NodeIndex node, HalfEdge half)
{
    Visit& visit = mVisits[node];
    visit.order = ++mOrder;
    visit.low = visit.order;
    visit.next = mNetwork.GetFirst(node);
    visit.entry = half;
    visit.firstEdge = static_cast<std::uint32_t>(mEdges.size());
    visit.isTerminal = mNetwork.IsTerminal(node);
    visit.leadsToTerminal = visit.isTerminal;
    if (half.IsValid())
        mEdges.push_back(half.Edge());
    mPath.push_back(node);
}

void BlockSplit::Follow(HalfEdge half)
{
    Visit& visit = mVisits[mPath.back()];
    if (visit.entry.IsValid() && half == visit.entry.Reversed())
        return;
    const NodeIndex target = mNetwork.GetTarget(half);
    const std::uint32_t order = mVisits[target].order;
    if (order == 0) {
        Enter(target, half);
    } else if (order < visit.order) {
        mEdges.push_back(half.Edge());
        visit.low = std::min(visit.low, order);
    }
}

void BlockSplit::Leave(NodeIndex node)
{
    mPath.pop_back();
    if (mPath.empty())
        return;
    const Visit& visit = mVisits[node];
    Visit& parent = mVisits[mPath.back()];
    parent.low = std::min(parent.low, visit.low);
    parent.leadsToTerminal |= visit.leadsToTerminal;
    if (visit.low < parent.order)
        return;
    if (visit.leadsToTerminal) {
        // The parent separates terminals below from the root, so every tree contains it.
        parent.isTerminal = true;
        Emit(visit.firstEdge);
    }
    mEdges.resize(visit.firstEdge);
}

/// Sorts the nodes of a block, which are marked; going through all nodes is faster when it has
/// most of them.
void BlockSplit::SortNodes(std::vector<NodeIndex>& nodes) const
{
    if (nodes.size() < mVisits.size() / 8) {
        std::sort(nodes.begin(), nodes.end());
        return;
    }
    nodes.clear();
    for (const NodeIndex node : mNetwork.GetNodes()) {
        if (mVisits[node].local.IsValid())
            nodes.push_back(node);
    }
}

void BlockSplit::Emit(std::uint32_t firstEdge)
{
    const std::span<const EdgeIndex> edges = std::span(mEdges).subspan(firstEdge);
    std::vector<NodeIndex> nodes;
    for (const EdgeIndex edge : edges) {
        for (const NodeIndex node : mNetwork.GetEnds(edge)) {
            if (mVisits[node].local.IsValid())
                continue;
            mVisits[node].local = {0};
            nodes.push_back(node);
        }
    }
    SortNodes(nodes);
    for (std::uint32_t local = 0; local < nodes.size(); ++local)
        mVisits[nodes[local]].local = {local};
    Network block(static_cast<std::uint32_t>(nodes.size()), mNetwork.GetStrands());
    block.Reserve(edges.size());
    for (const EdgeIndex edge : edges) {
        const auto [end1, end2] = mNetwork.GetEnds(edge);
        block.AppendEdge(mVisits[end1].local, mVisits[end2].local, mNetwork.GetWeight(edge),
                         mNetwork.GetStrand(edge));
    }
    for (const NodeIndex node : nodes) {
        if (mVisits[node].isTerminal)
            block.MakeTerminal(mVisits[node].local);
        mVisits[node].local = {};
    }
    mBlocks.push_back(std::move(block));
}

} // namespace

std::vector<Network> SplitIntoBlocks(const Network& network)
{
    return BlockSplit(network).Run();
}

} // namespace qe::graph
