#include "Engine/Graph/Steiner/Reduce/BlockSplit.h"

#include <algorithm>
#include <utility>

namespace qe::graph {

namespace {

class BlockSplit
{
public:
    explicit BlockSplit(const Network& network) : mNetwork(network), mVisits(network.GetNodeLimit())
    {}

    std::vector<Network> Run();

private:
    struct Visit
    {
        std::uint32_t order = 0;
        std::uint32_t low = 0;
        std::uint32_t next = Network::None;
        std::uint32_t entry = Network::None;
        std::uint32_t firstEdge = 0;
        bool isTerminal = false;
        bool leadsToTerminal = false;
        std::uint32_t local = Network::None;
    };

    void Enter(std::uint32_t node, std::uint32_t half);
    void Follow(std::uint32_t half);
    void Leave(std::uint32_t node);
    void Emit(std::uint32_t firstEdge);
    void SortNodes(std::vector<std::uint32_t>& nodes) const;

    const Network& mNetwork;
    std::vector<Visit> mVisits;
    std::vector<std::uint32_t> mPath;
    std::vector<std::uint32_t> mEdges;
    std::vector<Network> mBlocks;
    std::uint32_t mOrder = 0;
};

std::vector<Network> BlockSplit::Run()
{
    std::uint32_t root = 0;
    while (!mNetwork.IsTerminal(root))
        ++root;
    Enter(root, Network::None);
    while (!mPath.empty()) {
        Visit& visit = mVisits[mPath.back()];
        if (visit.next == Network::None) {
            Leave(mPath.back());
            continue;
        }
        const std::uint32_t half = visit.next;
        visit.next = mNetwork.GetNext(half);
        Follow(half);
    }
    return std::move(mBlocks);
}

void BlockSplit::Enter(std::uint32_t node, std::uint32_t half)
{
    Visit& visit = mVisits[node];
    visit.order = ++mOrder;
    visit.low = visit.order;
    visit.next = mNetwork.GetFirst(node);
    visit.entry = half;
    visit.firstEdge = static_cast<std::uint32_t>(mEdges.size());
    visit.isTerminal = mNetwork.IsTerminal(node);
    visit.leadsToTerminal = visit.isTerminal;
    if (half != Network::None)
        mEdges.push_back(half / 2);
    mPath.push_back(node);
}

void BlockSplit::Follow(std::uint32_t half)
{
    Visit& visit = mVisits[mPath.back()];
    if (half == (visit.entry ^ 1U))
        return;
    const std::uint32_t target = mNetwork.GetTarget(half);
    const std::uint32_t order = mVisits[target].order;
    if (order == 0) {
        Enter(target, half);
    } else if (order < visit.order) {
        mEdges.push_back(half / 2);
        visit.low = std::min(visit.low, order);
    }
}

void BlockSplit::Leave(std::uint32_t node)
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

/// Sorts the nodes of a block, which are marked; going through all nodes is the faster way to do
/// so when it has most of them.
void BlockSplit::SortNodes(std::vector<std::uint32_t>& nodes) const
{
    if (nodes.size() < mVisits.size() / 8) {
        std::sort(nodes.begin(), nodes.end());
        return;
    }
    nodes.clear();
    for (std::uint32_t node = 0; node < mVisits.size(); ++node) {
        if (mVisits[node].local != Network::None)
            nodes.push_back(node);
    }
}

void BlockSplit::Emit(std::uint32_t firstEdge)
{
    std::vector<std::uint32_t> nodes;
    for (std::size_t place = firstEdge; place < mEdges.size(); ++place) {
        for (const std::uint32_t half : {2 * mEdges[place], 2 * mEdges[place] + 1}) {
            const std::uint32_t node = mNetwork.GetOrigin(half);
            if (mVisits[node].local != Network::None)
                continue;
            mVisits[node].local = 0;
            nodes.push_back(node);
        }
    }
    SortNodes(nodes);
    for (std::uint32_t local = 0; local < nodes.size(); ++local)
        mVisits[nodes[local]].local = local;
    Network block(static_cast<std::uint32_t>(nodes.size()), mNetwork.GetStrands());
    for (std::size_t place = firstEdge; place < mEdges.size(); ++place) {
        const std::uint32_t edge = mEdges[place];
        block.AppendEdge(mVisits[mNetwork.GetOrigin(2 * edge)].local,
                         mVisits[mNetwork.GetOrigin(2 * edge + 1)].local, mNetwork.GetWeight(edge),
                         mNetwork.GetStrand(edge));
    }
    for (const std::uint32_t node : nodes) {
        if (mVisits[node].isTerminal)
            block.MakeTerminal(mVisits[node].local);
        mVisits[node].local = Network::None;
    }
    mBlocks.push_back(std::move(block));
}

} // namespace

std::vector<Network> SplitIntoBlocks(const Network& network)
{
    return BlockSplit(network).Run();
}

} // namespace qe::graph
