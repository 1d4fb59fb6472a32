#include "Engine/Graph/Steiner/Exact/SeparationTest.h"

#include "Engine/Graph/Steiner/Network/SearchTuning.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace qe::graph {

SeparationTest::SeparationTest(const FlatNetwork& network)
    : mNetwork(network),
      mClosures(network.GetNodeCount()),
      mReachedBy(network.GetNodeCount(), 0),
      mFrontOf(network.GetNodeCount(), 0)
{}

bool SeparationTest::IsSeparating(const LabelTable& labels, LabelIndex label,
                                  const NodeMarks& isMissing)
{
    ++mTest;
    FindBarriers(labels, label);
    const NodeIndex node = labels.Get(label).node;
    const bool isSeparating =
        ClosesMissing(isMissing) || IsClosed(node) || CutsOffMissing(node, isMissing);
    mSeparating += isSeparating ? 1U : 0U;
    return isSeparating;
}

void SeparationTest::FindBarriers(const LabelTable& labels, LabelIndex label)
{
    mBarriers.clear();
    mParts.assign(1, {label, 0, 0});
    while (!mParts.empty()) {
        const Part part = mParts.back();
        mParts.pop_back();
        ++mSteps;
        const Label& made = labels.Get(part.label);
        const std::uint64_t longest = std::max(part.segment, part.longest);
        if (made.second.IsValid()) {
            mParts.push_back({made.first, 0, longest});
            mParts.push_back({made.second, 0, longest});
            continue;
        }
        if (longest > 0)
            mBarriers.push_back({made.node, longest});
        if (made.first.IsValid())
            mParts.push_back({made.first,
                              part.segment + made.weight - labels.Get(made.first).weight,
                              part.longest});
    }
}

/// Closes the surroundings of the barriers, not all of wide ones. Returns whether a missing
/// terminal is among them.
bool SeparationTest::ClosesMissing(const NodeMarks& isMissing)
{
    mClosed.clear();
    mClosing.clear();
    // Along a segment the surroundings of the last barrier hold those of the others.
    for (auto barrier = mBarriers.rbegin(); barrier != mBarriers.rend(); ++barrier) {
        if (Close(*barrier, isMissing))
            return true;
    }
    for (std::size_t next = 0; next < mClosing.size(); ++next) {
        const Barrier from = mClosing[next];
        if (mClosures[from.node].radius != from.radius)
            continue;
        if (mClosed.size() >= tuning::kMostClosed)
            return false;
        mSteps += mNetwork.GetArcs(from.node).size();
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(from.node)) {
            if (arc.weight < from.radius &&
                Close({arc.target, from.radius - arc.weight}, isMissing))
                return true;
        }
    }
    return false;
}

/// Closes the node and records that its surroundings follow, unless they are closed as far as that
/// already. Returns whether the node is a missing terminal.
bool SeparationTest::Close(const Barrier& barrier, const NodeMarks& isMissing)
{
    Closure& closure = mClosures[barrier.node];
    if (closure.test != mTest)
        mClosed.push_back(barrier.node);
    else if (closure.radius >= barrier.radius)
        return false;
    closure = {.radius = barrier.radius, .test = mTest};
    mClosing.push_back(barrier);
    return isMissing[barrier.node] != 0;
}

/// Returns whether some missing terminal cannot be reached from the node over what is not closed.
/// Searches from the node and from all around what is closed, by turns, until all have met, so
/// that little of the network is seen where nothing is cut off; gives up where they stay apart.
bool SeparationTest::CutsOffMissing(NodeIndex node, const NodeMarks& isMissing)
{
    BeginFronts(node, isMissing);
    bool isNodeDone = false;
    std::size_t turn = 0;
    for (std::size_t count = 0; !mActive.empty() && count < tuning::kMostTurns; ++count) {
        turn = turn + 1 < mActive.size() ? turn + 1 : 0;
        const std::uint32_t active = mActive[turn];
        const Front& front = mFronts[active];
        const bool isMerged = mMergedInto[active] != active;
        if (!isMerged && front.holdsNode && mActive.size() == 1)
            return false;
        if (!isMerged && !front.holdsNode && front.holdsMissing &&
            (isNodeDone || front.next == front.nodes.size()))
            return true;
        if (isMerged || front.next == front.nodes.size()) {
            isNodeDone |= !isMerged && front.holdsNode;
            mActive[turn] = mActive.back();
            mActive.pop_back();
        } else {
            Advance(active, isMissing);
        }
    }
    return false;
}

void SeparationTest::BeginFronts(NodeIndex node, const NodeMarks& isMissing)
{
    mMergedInto.clear();
    mActive.clear();
    BeginFront(node, isMissing);
    mFronts.front().holdsNode = true;
    for (const NodeIndex closed : mClosed) {
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(closed)) {
            if (!IsClosed(arc.target) && mReachedBy[arc.target] != mTest)
                BeginFront(arc.target, isMissing);
        }
    }
}

void SeparationTest::BeginFront(NodeIndex node, const NodeMarks& isMissing)
{
    const auto front = static_cast<std::uint32_t>(mMergedInto.size());
    if (front == mFronts.size())
        mFronts.emplace_back();
    mFronts[front].Reset();
    mMergedInto.push_back(front);
    mActive.push_back(front);
    Reach(front, node, isMissing);
}

void SeparationTest::Reach(std::uint32_t front, NodeIndex node, const NodeMarks& isMissing)
{
    mReachedBy[node] = mTest;
    mFrontOf[node] = front;
    mFronts[front].nodes.push_back(node);
    mFronts[front].holdsMissing |= isMissing[node] != 0;
}

std::uint32_t SeparationTest::FindFront(NodeIndex node)
{
    std::uint32_t front = mFrontOf[node];
    while (mMergedInto[front] != front)
        front = mMergedInto[front] = mMergedInto[mMergedInto[front]];
    return front;
}

/// Goes on from one node of the front, and merges it with those that it meets.
void SeparationTest::Advance(std::uint32_t front, const NodeMarks& isMissing)
{
    const NodeIndex node = mFronts[front].nodes[mFronts[front].next++];
    mSteps += mNetwork.GetArcs(node).size();
    for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(node)) {
        if (IsClosed(arc.target))
            continue;
        if (mReachedBy[arc.target] != mTest)
            Reach(front, arc.target, isMissing);
        else
            front = Merge(front, FindFront(arc.target));
    }
}

/// Merges the smaller of two fronts into the other, and returns that.
std::uint32_t SeparationTest::Merge(std::uint32_t left, std::uint32_t right)
{
    if (left == right)
        return left;
    const auto getSize = [this](std::uint32_t front) {
        return mFronts[front].nodes.size() - mFronts[front].next;
    };
    if (getSize(left) < getSize(right))
        std::swap(left, right);
    Front& into = mFronts[left];
    const Front& from = mFronts[right];
    into.nodes.insert(into.nodes.end(), from.nodes.begin() + static_cast<std::ptrdiff_t>(from.next),
                      from.nodes.end());
    into.holdsMissing |= from.holdsMissing;
    into.holdsNode |= from.holdsNode;
    mMergedInto[right] = left;
    return left;
}

} // namespace qe::graph
