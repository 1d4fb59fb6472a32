#include "Engine/Graph/Spanning/MinimumSpanningTrees.h"

#include <numeric>
#include <utility>

namespace qe::graph {

MinimumSpanningTrees::MinimumSpanningTrees(std::uint32_t nodeCount, std::span<const Link> links)
    : mNodeCount(nodeCount), mLinks(links), mParents(nodeCount), mSizes(nodeCount, 1)
{
    std::iota(mParents.begin(), mParents.end(), 0U);
}

bool MinimumSpanningTrees::MoveNext()
{
    if (!mIsStarted) {
        mIsStarted = true;
        Complete(0);
        return true;
    }
    while (!mTree.empty()) {
        const std::uint32_t place = mTree.back();
        UndoTo(mTree.size() - 1);
        if (CanBeReplaced(place)) {
            Complete(place + 1);
            return true;
        }
    }
    return false;
}

std::uint32_t MinimumSpanningTrees::Find(std::uint32_t node) const
{
    while (mParents[node] != node)
        node = mParents[node];
    return node;
}

bool MinimumSpanningTrees::Unite(const Link& link)
{
    ++mSteps;
    std::uint32_t parent = Find(link.end1.value);
    std::uint32_t child = Find(link.end2.value);
    if (parent == child)
        return false;
    if (mSizes[parent] < mSizes[child])
        std::swap(parent, child);
    mParents[child] = parent;
    mSizes[parent] += mSizes[child];
    mUnions.push_back(child);
    return true;
}

/// Takes back the last unions, and the links of the tree that made them.
void MinimumSpanningTrees::UndoTo(std::size_t unions)
{
    while (mUnions.size() > unions) {
        const std::uint32_t child = mUnions.back();
        mUnions.pop_back();
        mSizes[mParents[child]] -= mSizes[child];
        mParents[child] = child;
    }
    if (mTree.size() > unions)
        mTree.resize(unions);
}

/// Takes every link from the given one on that joins two parts.
void MinimumSpanningTrees::Complete(std::uint32_t next)
{
    for (; mTree.size() + 1 < mNodeCount && next < mLinks.size(); ++next) {
        if (Unite(mLinks[next]))
            mTree.push_back(next);
    }
}

/// Returns whether links behind this one, as light as it is, join its ends as well.
bool MinimumSpanningTrees::CanBeReplaced(std::uint32_t place)
{
    const Link& link = mLinks[place];
    const std::size_t unions = mUnions.size();
    bool isJoined = false;
    for (std::uint32_t other = place + 1;
         !isJoined && other < mLinks.size() && mLinks[other].weight == link.weight; ++other)
        isJoined = Unite(mLinks[other]) && Find(link.end1.value) == Find(link.end2.value);
    UndoTo(unions);
    return isJoined;
}

} // namespace qe::graph
