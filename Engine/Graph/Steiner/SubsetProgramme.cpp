#include "Engine/Graph/Steiner/SubsetProgramme.h"

#include "Engine/Graph/Steiner/Budget.h"
#include "Engine/Graph/Steiner/Saturated.h"

#include <algorithm>
#include <functional>

namespace qe::graph {

template <std::size_t Words>
SubsetProgramme<Words>::SubsetProgramme(const FlatNetwork& network, std::uint32_t root,
                                        std::span<const RestBound<Words>> bounds,
                                        std::uint64_t knownWeight, Budget& budget)
    : mNetwork(network),
      mRestBounds(bounds),
      mBudget(budget),
      mRoot(root),
      mLimit(knownWeight),
      mBits(network.GetNodeCount()),
      mSettledAt(network.GetNodeCount())
{
    std::uint32_t bit = 0;
    for (const std::uint32_t terminal : network.GetTerminals()) {
        mBits[terminal] = bit++;
        if (terminal != root)
            mAll.Add(mBits[terminal]);
    }
}

template <std::size_t Words>
typename SubsetProgramme<Words>::EOutcome SubsetProgramme<Words>::Run(std::size_t mostSettled)
{
    for (const std::uint32_t terminal : mNetwork.GetTerminals()) {
        if (terminal != mRoot)
            Offer(terminal, Intern(Set::Single(mBits[terminal])), 0, EOrigin::Grown);
    }
    std::size_t charged = 0;
    std::size_t settled = 0;
    while (!mQueue.empty()) {
        const QueueEntry entry = mQueue.front();
        mBound = std::min(entry.key, mLimit);
        if (entry.key > mLimit)
            break;
        if (mBudget.IsExhausted())
            return EOutcome::Exhausted;
        if (settled > mostSettled)
            return EOutcome::Paused;
        std::pop_heap(mQueue.begin(), mQueue.end(), std::greater<>());
        mQueue.pop_back();
        const Label& label = mLabels.Get(entry.label);
        if (!label.isSettled && label.weight + label.rest == entry.key) {
            Settle(entry.label);
            ++settled;
        }
        const std::size_t bytes = mLabels.GetBytes() + mQueue.capacity() * sizeof(QueueEntry) +
                                  mSetInfos.capacity() * (sizeof(SetInfo) + sizeof(Set) + 8) +
                                  mLabels.GetCount() * (sizeof(Set) + 8);
        mBudget.Charge(bytes - charged);
        charged = bytes;
    }
    mBound = mLimit;
    return EOutcome::Solved;
}

template <std::size_t Words>
std::uint32_t SubsetProgramme<Words>::Intern(const Set& set)
{
    const std::uint32_t number = mSets.Intern(set);
    if (number < mSetInfos.size())
        return number;
    std::uint64_t least = 0;
    for (const RestBound<Words>& bound : mRestBounds) {
        mSetParts.push_back(bound.GetSetPart(set));
        if (bound.IsBoundAlone(set))
            least = std::max(least, mSetParts.back());
    }
    mSetInfos.push_back({least, Saturated});
    return number;
}

/// Answers the greatest bound, or the first one that is above the limit.
template <std::size_t Words>
std::uint64_t SubsetProgramme<Words>::GetRest(std::uint32_t node, std::uint32_t set,
                                              std::uint64_t limit) const
{
    std::uint64_t rest = 0;
    for (std::size_t bound = 0; bound < mRestBounds.size() && rest <= limit; ++bound) {
        const std::uint64_t setPart = mSetParts[set * mRestBounds.size() + bound];
        rest = std::max(rest, mRestBounds[bound].Get(node, mSets.Get(set), setPart));
    }
    return rest;
}

template <std::size_t Words>
void SubsetProgramme<Words>::Offer(std::uint32_t node, std::uint32_t set, std::uint64_t weight,
                                   EOrigin origin)
{
    const SetInfo& info = mSetInfos[set];
    if (weight > info.cap || weight + info.rest > mLimit)
        return;
    const bool isBranch = origin == EOrigin::Grown;
    std::uint32_t number = mLabels.Find(node, set);
    if (number != LabelTable::None) {
        Label& label = mLabels.Get(number);
        if (label.isSettled || weight > label.weight)
            return;
        if (weight == label.weight) {
            label.isBranch |= isBranch;
            return;
        }
        label.weight = weight;
        label.isBranch = isBranch;
    } else {
        const std::uint64_t rest = GetRest(node, set, mLimit - weight);
        if (weight + rest > mLimit)
            return;
        number = mLabels.Add({node, set, weight, rest, isBranch});
    }
    mQueue.push_back({weight + mLabels.Get(number).rest, number});
    std::push_heap(mQueue.begin(), mQueue.end(), std::greater<>());
}

template <std::size_t Words>
void SubsetProgramme<Words>::Settle(std::uint32_t number)
{
    mLabels.Get(number).isSettled = true;
    const Label label = mLabels.Get(number);
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
    if (!isOutside)
        GrowFrom(label);
    JoinAt(label, number);
}

template <std::size_t Words>
void SubsetProgramme<Words>::GrowFrom(const Label& label)
{
    for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(label.node))
        Offer(arc.target, label.set, label.weight + arc.weight, EOrigin::Grown);
}

template <std::size_t Words>
void SubsetProgramme<Words>::JoinAt(const Label& label, std::uint32_t number)
{
    const Set set = mSets.Get(label.set);
    NodeLabels<Words>& settled = mSettledAt[label.node];
    settled.ForEachDisjoint(set, mAll, [&](const typename NodeLabels<Words>::Entry& other) {
        if (!(set.IsLower(other.set) ? label.isBranch : other.isBranch))
            return;
        const std::uint64_t weight = label.weight + other.weight;
        const Set joined = set.Union(other.set);
        if (weight <= mLimit && settled.Improves(joined, weight))
            Offer(label.node, Intern(joined), weight, EOrigin::Joined);
    });
    settled.Add({set, label.weight, number, label.isBranch}, mAll);
}

template <std::size_t Words>
std::uint32_t SubsetProgramme<Words>::FindSettled(std::uint32_t node, const Set& set) const
{
    const std::uint32_t number = mSets.Find(set);
    return number == SetTable<Words>::None ? LabelTable::None : FindSettled(node, number);
}

template <std::size_t Words>
std::uint32_t SubsetProgramme<Words>::FindSettled(std::uint32_t node, std::uint32_t set) const
{
    const std::uint32_t label = mLabels.Find(node, set);
    return label != LabelTable::None && mLabels.Get(label).isSettled ? label : LabelTable::None;
}

template class SubsetProgramme<1>;
template class SubsetProgramme<2>;
template class SubsetProgramme<4>;
template class SubsetProgramme<8>;

} // namespace qe::graph
