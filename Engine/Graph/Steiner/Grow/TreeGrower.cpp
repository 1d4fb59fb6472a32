#include "Engine/Graph/Steiner/Grow/TreeGrower.h"

#include "Engine/Graph/Core/DisjointSets.h"

#include <algorithm>

namespace qe::graph {

TreeGrower::TreeGrower(const FlatNetwork& network)
    : mNetwork(network),
      mSearch(network.GetNodeCount()),
      mEntries(network.GetNodeCount()),
      mWishes(network.GetNodeCount()),
      mIsInTree(network.GetNodeCount()),
      mIsKept(network.GetEdgeCount()),
      mPlaces(network.GetNodeCount()),
      mDegrees(network.GetNodeCount())
{
    for (const NodeIndex terminal : network.GetTerminals())
        mWishes[terminal] = 1;
}

SteinerTree TreeGrower::Grow(NodeIndex start, const EdgeMarks& isUsable)
{
    mEdges.clear();
    Connect(start, isUsable);
    SteinerTree tree;
    Span(tree);
    PruneNonTerminalLeaves(tree);
    return tree;
}

SteinerTree TreeGrower::Regrow(std::span<const EdgeIndex> forest, NodeIndex start)
{
    mEdges.clear();
    for (const EdgeIndex edge : forest) {
        mIsKept[edge] = 1;
        for (const NodeIndex end : mNetwork.GetEnds(edge))
            ++mWishes[end];
    }
    Connect(start, {});
    for (const EdgeIndex edge : forest) {
        mIsKept[edge] = 0;
        for (const NodeIndex end : mNetwork.GetEnds(edge))
            --mWishes[end];
    }
    SteinerTree tree;
    Span(tree);
    PruneNonTerminalLeaves(tree);
    return tree;
}

void TreeGrower::Connect(NodeIndex start, const EdgeMarks& isUsable)
{
    mMissing = mNetwork.GetTerminals().size();
    Absorb(start);
    if (mMissing > 0) {
        mSearch.Run([&](NodeIndex node, std::uint64_t distance) {
            if (mWishes[node] > 0 && mIsInTree[node] == 0)
                AddPathTo(node);
            else
                Relax(node, distance, isUsable);
            return mMissing > 0 ? DijkstraSearch::EStep::Continue : DijkstraSearch::EStep::Stop;
        });
    }
    Reset();
}

void TreeGrower::Relax(NodeIndex node, std::uint64_t distance, const EdgeMarks& isUsable)
{
    mWork += mNetwork.GetArcs(node).size();
    for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(node)) {
        const bool isBanned = !isUsable.empty() && isUsable[arc.half.Edge()] == 0;
        if (!isBanned && mSearch.Reach(arc.target, distance + arc.weight))
            mEntries[arc.target] = arc.half;
    }
}

void TreeGrower::AddPathTo(NodeIndex node)
{
    while (mIsInTree[node] == 0) {
        const HalfEdge half = mEntries[node];
        const NodeIndex previous = mNetwork.GetOrigin(half);
        mEdges.push_back(half.Edge());
        Absorb(node);
        node = previous;
    }
}

/// Takes the node into the tree with all that kept edges connect to it.
void TreeGrower::Absorb(NodeIndex node)
{
    mOpen.assign(1, node);
    mIsInTree[node] = 1;
    while (!mOpen.empty()) {
        const NodeIndex current = mOpen.back();
        mOpen.pop_back();
        mSearch.Reach(current, 0);
        mMissing -= mNetwork.IsTerminal(current) ? 1U : 0U;
        if (mWishes[current] == (mNetwork.IsTerminal(current) ? 1U : 0U))
            continue;
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(current)) {
            if (mIsKept[arc.half.Edge()] == 0 || mIsInTree[arc.target] != 0)
                continue;
            mEdges.push_back(arc.half.Edge());
            mIsInTree[arc.target] = 1;
            mOpen.push_back(arc.target);
        }
    }
}

void TreeGrower::Reset()
{
    for (const NodeIndex node : mSearch.GetReached())
        mIsInTree[node] = 0;
    mSearch.Reset();
}

/// Makes the tree a minimum spanning tree of the nodes that the grown edges touch.
void TreeGrower::Span(SteinerTree& tree)
{
    std::vector<NodeIndex>& nodes = mOpen;
    nodes.clear();
    for (const EdgeIndex edge : mEdges) {
        for (const NodeIndex end : mNetwork.GetEnds(edge))
            nodes.push_back(end);
    }
    std::sort(nodes.begin(), nodes.end());
    nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
    for (std::uint32_t place = 0; place < nodes.size(); ++place) {
        mPlaces[nodes[place]] = place;
        mIsInTree[nodes[place]] = 1;
    }
    DisjointSets parts(static_cast<std::uint32_t>(nodes.size()));
    mCandidates.clear();
    for (const NodeIndex node : nodes) {
        mWork += mNetwork.GetArcs(node).size();
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(node)) {
            if (arc.target > node && mIsInTree[arc.target] != 0)
                mCandidates.emplace_back(arc.weight, arc.half.Edge());
        }
    }
    std::sort(mCandidates.begin(), mCandidates.end());
    for (const auto& [weight, edge] : mCandidates) {
        const auto [end1, end2] = mNetwork.GetEnds(edge);
        if (parts.Unite(mPlaces[end1], mPlaces[end2]))
            tree.edges.push_back(edge);
    }
    for (const NodeIndex node : nodes)
        mIsInTree[node] = 0;
}

void TreeGrower::PruneNonTerminalLeaves(SteinerTree& tree)
{
    for (const EdgeIndex edge : tree.edges) {
        for (const NodeIndex end : mNetwork.GetEnds(edge))
            mDegrees[end] = 0;
    }
    for (const EdgeIndex edge : tree.edges) {
        for (const NodeIndex end : mNetwork.GetEnds(edge))
            ++mDegrees[end];
    }
    const auto isPrunable = [this](NodeIndex node) {
        return mDegrees[node] == 1 && !mNetwork.IsTerminal(node);
    };
    for (bool isChanged = true; isChanged;) {
        const std::size_t before = tree.edges.size();
        std::erase_if(tree.edges, [&](EdgeIndex edge) {
            const auto [end1, end2] = mNetwork.GetEnds(edge);
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
    for (const EdgeIndex edge : tree.edges)
        tree.weight += mNetwork.GetWeight(edge);
}

} // namespace qe::graph
