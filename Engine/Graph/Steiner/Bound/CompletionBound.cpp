#include "Engine/Graph/Steiner/Bound/CompletionBound.h"

#include <algorithm>
#include <utility>

namespace qe::graph {

template <std::size_t Words>
CompletionBound<Words>::CompletionBound(const FlatNetwork& network, NodeIndex searchRoot)
    : mNetwork(network),
      mSearchRoot(searchRoot),
      mBits(network.GetNodeCount(), kNoIndex),
      mLast(network.GetNodeCount())
{
    std::uint32_t bit = 0;
    for (const NodeIndex terminal : network.GetTerminals())
        mBits[terminal] = bit++;
}

template <std::size_t Words>
void CompletionBound<Words>::Raise(const RaisedCut& cut)
{
    if (cut.raisedBefore == 0) {
        ChargeGrown();
        mGrown.clear();
        mGrownTerminals = {};
    }
    Set terminals = mGrownTerminals;
    const std::span<const NodeIndex> added = cut.nodes.subspan(cut.raisedBefore);
    for (const NodeIndex node : added) {
        if (mBits[node] != kNoIndex)
            terminals.Add(mBits[node]);
    }
    if (!(terminals == mGrownTerminals)) {
        ChargeGrown();
        mGrownTerminals = terminals;
        mGrownSet = mSets.Intern(terminals);
        mPrices.resize(mSets.GetCount());
    }
    for (const NodeIndex node : added)
        mGrown.push_back({node, mGrownPrice});
    mPrices[mGrownSet] += cut.price;
    mGrownPrice += cut.price;
}

/// Charges the nodes of the set at hand for what it was raised since they were charged last.
template <std::size_t Words>
void CompletionBound<Words>::ChargeGrown()
{
    for (auto& [node, priceBefore] : mGrown) {
        const std::uint64_t price = mGrownPrice - std::exchange(priceBefore, mGrownPrice);
        LastCharge& last = mLast[node];
        if (last.set == mGrownSet) {
            mRaised[last.place].price += price;
            continue;
        }
        last = {mGrownSet, static_cast<std::uint32_t>(mRaised.size())};
        mRaised.push_back({node, mGrownSet, price});
    }
}

template <std::size_t Words>
void CompletionBound<Words>::Finish(const DualAscent& ascent, std::uint64_t limit)
{
    ChargeGrown();
    mGrown = {};
    mRootBit = mBits[ascent.GetRoot()];
    mGrainShift = ascent.GetGrainShift();
    // A path that pays more than this is in no tree within the limit.
    const std::uint64_t limitGrains = limit << mGrainShift;
    const std::uint64_t slack = limitGrains - std::min(limitGrains, ascent.GetBound());
    const NodeDistances pathsFromRoot = GetReducedFromRoot(mNetwork, ascent, slack);
    const NodeDistances pathsToSearchRoot = GetReducedTo(mNetwork, ascent, mSearchRoot, slack);
    mParts.assign(mNetwork.GetNodeCount(), {});
    for (const NumberedCharge& raised : mRaised) {
        ++mParts[raised.node].endCharge;
        mParts[raised.node].total += raised.price;
    }
    std::uint32_t first = 0;
    for (const NodeIndex node : mNetwork.GetNodes()) {
        NodePart& part = mParts[node];
        part.firstCharge = first;
        first += std::exchange(part.endCharge, first);
        part.pathFromRoot = pathsFromRoot[node];
        part.pathToSearchRoot = pathsToSearchRoot[node];
    }
    mCharges.resize(mRaised.size());
    for (const NumberedCharge& raised : mRaised)
        mCharges[mParts[raised.node].endCharge++] = {mSets.Get(raised.set), raised.price};
    mRaised = {};
}

template <std::size_t Words>
std::uint64_t CompletionBound<Words>::GetSetPart(const Set& set) const
{
    std::uint64_t bound = 0;
    for (const SetIndex raised : mSets.GetIndices()) {
        if (!mSets.Get(raised).IsSubsetOf(set))
            bound += mPrices[raised];
    }
    return bound;
}

template class CompletionBound<1>;
template class CompletionBound<2>;
template class CompletionBound<4>;
template class CompletionBound<8>;

} // namespace qe::graph
