#include "Engine/Graph/Steiner/Exact/DijkstraSteinerSearch.h"

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Network/Budget.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

namespace qe::graph {

template <std::size_t Words>
DijkstraSteinerSearch<Words>::DijkstraSteinerSearch(const FlatNetwork& network, NodeIndex root,
                                                    std::span<const CompletionBound<Words>> bounds,
                                                    std::uint64_t limit, Budget& budget)
    : mNetwork(network),
      mCompletionBounds(bounds),
      mBudget(budget),
      mRoot(root),
      mLimit(limit),
      mBits(network.GetNodeCount()),
      mBoundOrder(bounds.size()),
      mSettledAt(network.GetNodeCount()),
      mIsMissing(network.GetNodeCount(), 0),
      mSeparation(network)
{
    std::iota(mBoundOrder.begin(), mBoundOrder.end(), 0U);
    std::uint32_t bit = 0;
    for (const NodeIndex terminal : network.GetTerminals()) {
        mBits[terminal] = bit++;
        if (terminal != root)
            mAll.Add(mBits[terminal]);
    }
}

template <std::size_t Words>
typename DijkstraSteinerSearch<Words>::EOutcome
DijkstraSteinerSearch<Words>::Run(std::size_t mostSettled)
{
    OfferTerminals();
    for (std::size_t settled = 0; !mQueue.empty();) {
        mBound = std::min(mQueue.front().key, mLimit);
        if (mQueue.front().key > mLimit)
            break;
        if (mBudget.IsExhausted())
            return EOutcome::Exhausted;
        if (settled > mostSettled)
            return EOutcome::Paused;
        settled += SettleNext() ? 1U : 0U;
        ChargeBudget();
    }
    mBound = mLimit;
    return EOutcome::Solved;
}

template <std::size_t Words>
typename DijkstraSteinerSearch<Words>::EOutcome
DijkstraSteinerSearch<Words>::Dive(double inflation, std::size_t mostSettled)
{
    mInflation = inflation;
    OfferTerminals();
    for (std::size_t settled = 0; !mQueue.empty() && settled <= mostSettled;) {
        if (mBudget.IsExhausted())
            return EOutcome::Exhausted;
        settled += SettleNext() ? 1U : 0U;
        ChargeBudget();
        if (FindSettled(mRoot, mAll).IsValid())
            return EOutcome::Solved;
    }
    return EOutcome::Paused;
}

template <std::size_t Words>
void DijkstraSteinerSearch<Words>::OfferTerminals()
{
    for (const NodeIndex terminal : mNetwork.GetTerminals()) {
        if (terminal != mRoot)
            Offer(terminal, Intern(Set::Single(mBits[terminal])), 0, {});
    }
}

/// Takes the first entry from the queue and settles its label. Returns false when that entry is
/// stale: its label was settled or made lighter since.
template <std::size_t Words>
bool DijkstraSteinerSearch<Words>::SettleNext()
{
    ++mLookups;
    const QueueEntry entry = mQueue.front();
    std::pop_heap(mQueue.begin(), mQueue.end(), std::greater<>());
    mQueue.pop_back();
    const Label& label = mLabels.Get(entry.label);
    if (label.state != ELabelState::Open || label.weight + label.completionBound != entry.key)
        return false;
    Settle(entry.label);
    return true;
}

template <std::size_t Words>
void DijkstraSteinerSearch<Words>::ChargeBudget()
{
    mBudget.Spend(std::exchange(mLookups, 0));
    // Lists that double when they are full take up to three times their contents meanwhile.
    constexpr std::size_t kDoubling = 3;
    constexpr std::size_t kSetBytes = sizeof(SetInfo) + sizeof(Set) + 2 * sizeof(std::uint32_t);
    const std::size_t perSet = kSetBytes + mCompletionBounds.size() * sizeof(std::uint64_t);
    const std::size_t bytes = mLabels.GetBytes() + kDoubling * mQueue.size() * sizeof(QueueEntry) +
                              kDoubling * mSetInfos.size() * perSet +
                              2 * mSettledCount * NodeLabels<Words>::kEntryBytes + mTableBytes;
    mBudget.Release(mCharged);
    mBudget.Charge(bytes);
    mCharged = bytes;
}

template <std::size_t Words>
DijkstraSteinerSearch<Words>::~DijkstraSteinerSearch()
{
    mBudget.Release(mCharged);
}

template <std::size_t Words>
SetIndex DijkstraSteinerSearch<Words>::Intern(const Set& set)
{
    const SetIndex index = mSets.Intern(set);
    if (index.value < mSetInfos.size())
        return index;
    std::uint64_t alone = 0;
    for (const CompletionBound<Words>& bound : mCompletionBounds) {
        mSetParts.push_back(bound.GetSetPart(set));
        alone = std::max(alone, bound.GetAlone(set, mSetParts.back()));
    }
    mSetInfos.push_back({.completionBound = alone, .cap = kUnreached});
    return index;
}

/// Returns the greatest bound, or the first one that is above the limit.
template <std::size_t Words>
std::uint64_t DijkstraSteinerSearch<Words>::GetCompletionBound(NodeIndex node, SetIndex set,
                                                               std::uint64_t limit)
{
    const std::uint64_t* const setParts = mSetParts.data() + set.value * mCompletionBounds.size();
    std::uint64_t greatest = 0;
    for (std::uint32_t& next : mBoundOrder) {
        const std::uint64_t bound =
            mCompletionBounds[next].Get(node, mSets.Get(set), setParts[next]);
        if (bound > limit) {
            std::swap(next, mBoundOrder.front());
            return bound;
        }
        greatest = std::max(greatest, bound);
    }
    return greatest;
}

template <std::size_t Words>
void DijkstraSteinerSearch<Words>::Offer(NodeIndex node, SetIndex set, std::uint64_t weight,
                                         const Origin& origin)
{
    const SetInfo& info = mSetInfos[set];
    if (weight > info.cap || weight + info.completionBound > mLimit)
        return;
    const bool isBranch = !origin.second.IsValid();
    LabelIndex index = mLabels.Find(node, set);
    if (index.IsValid()) {
        Label& label = mLabels.Get(index);
        if (label.state != ELabelState::Open || weight > label.weight)
            return;
        if (weight == label.weight) {
            label.isBranch |= isBranch;
            return;
        }
        label.weight = weight;
        label.first = origin.first;
        label.second = origin.second;
        label.isBranch = isBranch;
    } else {
        mLookups += mCompletionBounds.size();
        const std::uint64_t bound = GetCompletionBound(node, set, mLimit - weight);
        if (weight + bound > mLimit)
            return;
        const auto inflation = static_cast<std::uint64_t>(static_cast<double>(bound) * mInflation);
        index = mLabels.Add({.node = node,
                             .set = set,
                             .weight = weight,
                             .completionBound = bound + inflation,
                             .first = origin.first,
                             .second = origin.second,
                             .isBranch = isBranch});
    }
    mQueue.push_back({weight + mLabels.Get(index).completionBound, index});
    std::push_heap(mQueue.begin(), mQueue.end(), std::greater<>());
}

template <std::size_t Words>
void DijkstraSteinerSearch<Words>::Settle(LabelIndex index)
{
    mLabels.Get(index).state = ELabelState::Settled;
    const Label label = mLabels.Get(index);
    SetInfo& info = mSetInfos[label.set];
    if (label.weight > info.cap)
        return;
    const Set set = mSets.Get(label.set);
    const bool isOutside = label.node == mRoot ||
                           (mNetwork.IsTerminal(label.node) && !set.Contains(mBits[label.node]));
    if (isOutside)
        info.cap = label.weight;
    if (label.node == mRoot && set == mAll) {
        mLimit = label.weight;
        return;
    }
    if (IsSeparating(index)) {
        mLabels.Get(index).state = ELabelState::Discarded;
        return;
    }
    if (!isOutside)
        GrowFrom(label, index);
    if (label.node == mRoot)
        JoinAtRoot(label, index);
    else
        JoinAt(label, index);
}

/// Returns whether the label's partial tree stands in the way of what is missing. Easy searches end
/// before it is worth asking.
template <std::size_t Words>
bool DijkstraSteinerSearch<Words>::IsSeparating(LabelIndex index)
{
    if (mSettledCount < mUntestedLabels || mInflation > 0 || !mSeparation.IsWorthwhile())
        return false;
    const Label& label = mLabels.Get(index);
    const Set& set = mSets.Get(label.set);
    for (const NodeIndex terminal : mNetwork.GetTerminals()) {
        const bool isInSet = terminal != mRoot && set.Contains(mBits[terminal]);
        mIsMissing[terminal] = !isInSet && terminal != label.node ? 1 : 0;
    }
    const std::uint64_t before = mSeparation.GetSteps();
    const bool isSeparating = mSeparation.IsSeparating(mLabels, index, mIsMissing);
    mLookups += mSeparation.GetSteps() - before;
    return isSeparating;
}

template <std::size_t Words>
void DijkstraSteinerSearch<Words>::GrowFrom(const Label& label, LabelIndex index)
{
    mLookups += mNetwork.GetArcs(label.node).size();
    for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(label.node))
        Offer(arc.target, label.set, label.weight + arc.weight, {.first = index});
}

template <std::size_t Words>
void DijkstraSteinerSearch<Words>::JoinAt(const Label& label, LabelIndex index)
{
    const Set set = mSets.Get(label.set);
    NodeLabels<Words>& settled = mSettledAt[label.node];
    mLookups +=
        settled.ForEachDisjoint(set, mAll, [&](const typename NodeLabels<Words>::Entry& other) {
            if (!(set.IsLower(other.set) ? label.isBranch : other.isBranch))
                return;
            const std::uint64_t weight = label.weight + other.weight;
            const Set joined = set.Union(other.set);
            if (weight <= mLimit && settled.RecordOffer(joined, weight))
                Offer(label.node, Intern(joined), weight, {.first = index, .second = other.label});
        });
    AddSettled(settled, {set, label.weight, index, label.isBranch});
}

template <std::size_t Words>
void DijkstraSteinerSearch<Words>::AddSettled(NodeLabels<Words>& settled,
                                              const typename NodeLabels<Words>::Entry& entry)
{
    const std::size_t before = settled.GetTableBytes();
    settled.Add(entry, mAll);
    mTableBytes += settled.GetTableBytes() - before;
    ++mSettledCount;
}

/// Adds the next branch to those begun with the smallest terminal. Other pairs are not joined, but
/// cap the labels of what they would join.
template <std::size_t Words>
void DijkstraSteinerSearch<Words>::JoinAtRoot(const Label& label, LabelIndex index)
{
    const Set set = mSets.Get(label.set);
    NodeLabels<Words>& settled = mSettledAt[mRoot];
    mLookups +=
        settled.ForEachDisjoint(set, mAll, [&](const typename NodeLabels<Words>::Entry& other) {
            const std::uint64_t weight = label.weight + other.weight;
            const Set joined = set.Union(other.set);
            if ((label.isBranch && IsNextBranch(set, other.set)) ||
                (other.isBranch && IsNextBranch(other.set, set))) {
                if (weight <= mLimit)
                    Offer(mRoot, Intern(joined), weight, {.first = index, .second = other.label});
                return;
            }
            const SetIndex known = mSets.Find(joined);
            if (known.IsValid())
                mSetInfos[known].cap = std::min(mSetInfos[known].cap, weight);
        });
    AddSettled(settled, {set, label.weight, index, label.isBranch});
}

template <std::size_t Words>
bool DijkstraSteinerSearch<Words>::IsNextBranch(const Set& branch, const Set& begun) const
{
    return begun.Contains(mAll.GetLowest()) && branch.Contains(mAll.Without(begun).GetLowest());
}

template <std::size_t Words>
LabelIndex DijkstraSteinerSearch<Words>::FindSettled(NodeIndex node, const Set& set) const
{
    const SetIndex index = mSets.Find(set);
    return index.IsValid() ? FindSettled(node, index) : LabelIndex();
}

template <std::size_t Words>
LabelIndex DijkstraSteinerSearch<Words>::FindSettled(NodeIndex node, SetIndex set) const
{
    const LabelIndex label = mLabels.Find(node, set);
    return label.IsValid() && mLabels.Get(label).state == ELabelState::Settled ? label
                                                                               : LabelIndex();
}

template class DijkstraSteinerSearch<1>;
template class DijkstraSteinerSearch<2>;
template class DijkstraSteinerSearch<4>;
template class DijkstraSteinerSearch<8>;

} // namespace qe::graph
