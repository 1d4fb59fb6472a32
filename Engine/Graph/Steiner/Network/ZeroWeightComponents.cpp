#include "Engine/Graph/Steiner/Network/ZeroWeightComponents.h"

#include "Engine/Graph/Core/DisjointSets.h"
#include "Engine/Graph/Steiner/Network/Budget.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace qe::graph {

ZeroWeightComponents::ZeroWeightComponents(const GraphView& graph,
                                           std::span<const NodeIndex> terminals)
    : mGraph(graph), mTerminals(terminals)
{
    const auto isInside = [](const Edge& edge) {
        return edge.weight == 0 && edge.end1 != edge.end2;
    };
    const std::span<const Edge> edges = graph.GetEdges();
    if (std::none_of(edges.begin(), edges.end(), isInside))
        return;
    DisjointSets components(graph.GetNodeCount());
    for (const Edge& edge : edges) {
        if (isInside(edge))
            components.Unite(edge.end1.value, edge.end2.value);
    }
    // Ascending order meets the smallest node of each component first.
    std::vector<NodeIndex> smallest(graph.GetNodeCount());
    for (const NodeIndex node : IndexRange<NodeIndex>(graph.GetNodeCount())) {
        NodeIndex& first = smallest[components.Find(node.value)];
        if (!first.IsValid())
            first = node;
        mComponents.push_back(first);
    }
}

ZeroWeightComponents::EStep ZeroWeightComponents::ForEachTree(std::span<const EdgeIndex> outer,
                                                              Budget& budget, const TreeTaker& take)
{
    FindWanted(outer);
    // No step leads into a dead end, so the first tree always comes soon.
    bool isTaken = false;
    const auto takeTree = [&] {
        isTaken = true;
        return take(mEdges);
    };
    if (!BeginPath(0))
        return takeTree();
    while (!mFrames.empty()) {
        budget.Spend(std::exchange(mSteps, 1));
        if (isTaken && budget.IsOverdrawn())
            return EStep::Stop;
        if (!Advance())
            continue;
        if (takeTree() == EStep::Stop)
            return EStep::Stop;
        MarkPath(EMark::OnPath);
        mEdges.pop_back();
    }
    return EStep::Continue;
}

/// Collects what the trees inside the components must touch, one component after the other, and
/// starts each of them.
void ZeroWeightComponents::FindWanted(std::span<const EdgeIndex> outer)
{
    mWanted.clear();
    for (const NodeIndex terminal : mTerminals)
        mWanted.push_back(terminal);
    for (const EdgeIndex edge : outer) {
        mWanted.push_back(mGraph.GetEdge(edge).end1);
        mWanted.push_back(mGraph.GetEdge(edge).end2);
    }
    std::sort(mWanted.begin(), mWanted.end(), [this](NodeIndex left, NodeIndex right) {
        return std::tie(mComponents[left], left) < std::tie(mComponents[right], right);
    });
    mSteps += mWanted.size() + mGraph.GetNodeCount();
    mMarks.assign(mGraph.GetNodeCount(), EMark::Free);
    mSeenStamps.resize(mGraph.GetNodeCount());
    for (std::size_t place = 0; place < mWanted.size(); ++place) {
        if (place == 0 || mComponents[mWanted[place]] != mComponents[mWanted[place - 1]])
            mMarks[mWanted[place]] = EMark::InTree;
    }
    mFrames.clear();
    mEdges.clear();
}

/// Begins a path at the next wanted node that is not in the tree; returns whether there is one.
bool ZeroWeightComponents::BeginPath(std::size_t wanted)
{
    while (wanted < mWanted.size() && mMarks[mWanted[wanted]] == EMark::InTree)
        ++wanted;
    if (wanted == mWanted.size())
        return false;
    mMarks[mWanted[wanted]] = EMark::OnPath;
    mFrames.push_back({mWanted[wanted], 0, mFrames.size(), wanted});
    return true;
}

/// Takes one step of the search; returns whether that completes a tree.
bool ZeroWeightComponents::Advance()
{
    Frame& frame = mFrames.back();
    const std::span<const Arc> arcs = mGraph.GetArcs(frame.node);
    if (frame.nextArc == arcs.size()) {
        Retreat();
        return false;
    }
    const Arc arc = arcs[frame.nextArc++];
    const NodeIndex target = arc.target;
    if (!IsInside(arc) || mMarks[target] == EMark::OnPath)
        return false;
    if (mMarks[target] == EMark::InTree) {
        mEdges.push_back(arc.edge);
        MarkPath(EMark::InTree);
        return !BeginPath(mFrames.back().wanted + 1);
    }
    if (CanReachTree(target)) {
        mEdges.push_back(arc.edge);
        mMarks[target] = EMark::OnPath;
        const Frame next{target, 0, frame.pathStart, frame.wanted};
        mFrames.push_back(next);
    }
    return false;
}

/// Leaves the last node; when its path began there, reopens the path before it.
void ZeroWeightComponents::Retreat()
{
    const Frame left = mFrames.back();
    mMarks[left.node] = EMark::Free;
    mFrames.pop_back();
    if (mFrames.size() == left.pathStart && !mFrames.empty())
        MarkPath(EMark::OnPath);
    if (!mEdges.empty())
        mEdges.pop_back();
}

void ZeroWeightComponents::MarkPath(EMark mark)
{
    mSteps += mFrames.size() - mFrames.back().pathStart;
    for (std::size_t place = mFrames.back().pathStart; place < mFrames.size(); ++place)
        mMarks[mFrames[place].node] = mark;
}

bool ZeroWeightComponents::CanReachTree(NodeIndex node)
{
    ++mSeenStamp;
    mSeen.assign(1, node);
    mSeenStamps[node] = mSeenStamp;
    while (!mSeen.empty()) {
        const NodeIndex current = mSeen.back();
        mSeen.pop_back();
        mSteps += mGraph.GetArcs(current).size();
        for (const Arc& arc : mGraph.GetArcs(current)) {
            const NodeIndex target = arc.target;
            if (!IsInside(arc) || mMarks[target] == EMark::OnPath ||
                mSeenStamps[target] == mSeenStamp)
                continue;
            if (mMarks[target] == EMark::InTree)
                return true;
            mSeenStamps[target] = mSeenStamp;
            mSeen.push_back(target);
        }
    }
    return false;
}

} // namespace qe::graph
