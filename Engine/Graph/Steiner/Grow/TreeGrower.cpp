#include "Engine/Graph/Steiner/Grow/TreeGrower.h"

#include "Engine/Graph/Core/DisjointSets.h"
#include "Engine/Graph/Steiner/Network/Saturated.h"

#include <algorithm>
#include <functional>

namespace qe::graph {

TreeGrower::TreeGrower(const FlatNetwork& network)
    : mNetwork(network),
      mDistances(network.GetNodeCount(), Saturated),
      mEntries(network.GetNodeCount()),
      mWishes(network.GetNodeCount()),
      mIsInTree(network.GetNodeCount()),
      mIsKept(network.GetEdgeCount()),
      mPlaces(network.GetNodeCount()),
      mDegrees(network.GetNodeCount())
{
    for (const std::uint32_t terminal : network.GetTerminals())
        mWishes[terminal] = 1;
}

SteinerTree TreeGrower::Grow(std::uint32_t start, std::span<const std::uint8_t> isUsable)
{
    mEdges.clear();
    Connect(start, isUsable);
    SteinerTree tree;
    Span(tree);
    PruneNonTerminalLeaves(tree);
    return tree;
}

SteinerTree TreeGrower::Regrow(std::span<const std::uint32_t> forest, std::uint32_t start)
{
    mEdges.clear();
    for (const std::uint32_t edge : forest) {
        mIsKept[edge] = 1;
        ++mWishes[mNetwork.GetOrigin(2 * edge)];
        ++mWishes[mNetwork.GetOrigin(2 * edge + 1)];
    }
    Connect(start, {});
    for (const std::uint32_t edge : forest) {
        mIsKept[edge] = 0;
        --mWishes[mNetwork.GetOrigin(2 * edge)];
        --mWishes[mNetwork.GetOrigin(2 * edge + 1)];
    }
    SteinerTree tree;
    Span(tree);
    PruneNonTerminalLeaves(tree);
    return tree;
}

void TreeGrower::Connect(std::uint32_t start, std::span<const std::uint8_t> isUsable)
{
    mMissing = mNetwork.GetTerminals().size();
    Absorb(start);
    while (mMissing > 0 && !mQueue.empty()) {
        const auto [distance, node] = mQueue.front();
        std::pop_heap(mQueue.begin(), mQueue.end(), std::greater<>());
        mQueue.pop_back();
        if (distance > mDistances[node])
            continue;
        if (mWishes[node] > 0 && mIsInTree[node] == 0)
            AddPathTo(node);
        else
            Relax(node, distance, isUsable);
    }
    Reset();
}

void TreeGrower::Push(std::uint64_t distance, std::uint32_t node, std::uint32_t entry)
{
    if (mDistances[node] == Saturated)
        mTouched.push_back(node);
    mDistances[node] = distance;
    mEntries[node] = entry;
    mQueue.emplace_back(distance, node);
    std::push_heap(mQueue.begin(), mQueue.end(), std::greater<>());
}

void TreeGrower::Relax(std::uint32_t node, std::uint64_t distance,
                       std::span<const std::uint8_t> isUsable)
{
    mWork += mNetwork.GetArcs(node).size();
    for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(node)) {
        const bool isBanned = !isUsable.empty() && isUsable[arc.half / 2] == 0;
        if (!isBanned && distance + arc.weight < mDistances[arc.target])
            Push(distance + arc.weight, arc.target, arc.half);
    }
}

void TreeGrower::AddPathTo(std::uint32_t node)
{
    while (mIsInTree[node] == 0) {
        const std::uint32_t half = mEntries[node];
        const std::uint32_t previous = mNetwork.GetOrigin(half);
        mEdges.push_back(half / 2);
        Absorb(node);
        node = previous;
    }
}

/// Takes the node into the tree with all that kept edges connect to it.
void TreeGrower::Absorb(std::uint32_t node)
{
    mOpen.assign(1, node);
    mIsInTree[node] = 1;
    while (!mOpen.empty()) {
        const std::uint32_t current = mOpen.back();
        mOpen.pop_back();
        Push(0, current, 0);
        mMissing -= mNetwork.IsTerminal(current) ? 1U : 0U;
        if (mWishes[current] == (mNetwork.IsTerminal(current) ? 1U : 0U))
            continue;
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(current)) {
            if (mIsKept[arc.half / 2] == 0 || mIsInTree[arc.target] != 0)
                continue;
            mEdges.push_back(arc.half / 2);
            mIsInTree[arc.target] = 1;
            mOpen.push_back(arc.target);
        }
    }
}

void TreeGrower::Reset()
{
    for (const std::uint32_t node : mTouched) {
        mDistances[node] = Saturated;
        mIsInTree[node] = 0;
    }
    mTouched.clear();
    mQueue.clear();
}

/// Makes the tree a lightest spanning tree of the nodes that the grown edges touch.
void TreeGrower::Span(SteinerTree& tree)
{
    std::vector<std::uint32_t>& nodes = mOpen;
    nodes.clear();
    for (const std::uint32_t edge : mEdges) {
        for (const std::uint32_t half : {2 * edge, 2 * edge + 1})
            nodes.push_back(mNetwork.GetOrigin(half));
    }
    std::sort(nodes.begin(), nodes.end());
    nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
    for (std::uint32_t place = 0; place < nodes.size(); ++place) {
        mPlaces[nodes[place]] = place;
        mIsInTree[nodes[place]] = 1;
    }
    DisjointSets parts(static_cast<std::uint32_t>(nodes.size()));
    std::vector<QueueEntry>& candidates = mQueue;
    for (const std::uint32_t node : nodes) {
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(node)) {
            if (arc.target > node && mIsInTree[arc.target] != 0)
                candidates.emplace_back(arc.weight, arc.half / 2);
        }
    }
    std::sort(candidates.begin(), candidates.end());
    for (const auto& [weight, edge] : candidates) {
        if (parts.Unite(mPlaces[mNetwork.GetOrigin(2 * edge)],
                        mPlaces[mNetwork.GetOrigin(2 * edge + 1)]))
            tree.edges.push_back(edge);
    }
    candidates.clear();
    for (const std::uint32_t node : nodes)
        mIsInTree[node] = 0;
}

void TreeGrower::PruneNonTerminalLeaves(SteinerTree& tree)
{
    for (const std::uint32_t edge : tree.edges) {
        mDegrees[mNetwork.GetOrigin(2 * edge)] = 0;
        mDegrees[mNetwork.GetOrigin(2 * edge + 1)] = 0;
    }
    for (const std::uint32_t edge : tree.edges) {
        ++mDegrees[mNetwork.GetOrigin(2 * edge)];
        ++mDegrees[mNetwork.GetOrigin(2 * edge + 1)];
    }
    const auto isPrunable = [this](std::uint32_t node) {
        return mDegrees[node] == 1 && !mNetwork.IsTerminal(node);
    };
    for (bool isChanged = true; isChanged;) {
        const std::size_t before = tree.edges.size();
        std::erase_if(tree.edges, [&](std::uint32_t edge) {
            const std::uint32_t end1 = mNetwork.GetOrigin(2 * edge);
            const std::uint32_t end2 = mNetwork.GetOrigin(2 * edge + 1);
            if (!isPrunable(end1) && !isPrunable(end2))
                return false;
            --mDegrees[end1];
            --mDegrees[end2];
            return true;
        });
        isChanged = tree.edges.size() != before;
    }
    std::sort(tree.edges.begin(), tree.edges.end());
    tree.weight = 0;
    for (const std::uint32_t edge : tree.edges)
        tree.weight += mNetwork.GetWeight(edge);
}

} // namespace qe::graph
