#include "Engine/Graph/Steiner/Bound/CompletionBound.h"

#include <algorithm>

namespace qe::graph {

template <std::size_t Words>
CompletionBound<Words>::CompletionBound(const FlatNetwork& network, NodeIndex searchRoot)
    : mNetwork(network),
      mSearchRoot(searchRoot),
      mBits(network.GetNodeCount(), kNoIndex),
      mLast(network.GetNodeCount(), kNoIndex)
{
    std::uint32_t bit = 0;
    for (const NodeIndex terminal : network.GetTerminals())
        mBits[terminal] = bit++;
}

template <std::size_t Words>
void CompletionBound<Words>::Raise(std::span<const NodeIndex> nodes,
                                   std::span<const ArcSlot> /*entering*/, std::uint64_t price)
{
    Set terminals;
    for (const NodeIndex node : nodes) {
        if (mBits[node] != kNoIndex)
            terminals.Add(mBits[node]);
    }
    const SetIndex set = mSets.Intern(terminals);
    mPrices.resize(mSets.GetCount());
    mPrices[set] += price;
    for (const NodeIndex node : nodes) {
        const std::uint32_t last = mLast[node];
        if (last != kNoIndex && mRaised[last].set == set) {
            mRaised[last].price += price;
            continue;
        }
        mLast[node] = static_cast<std::uint32_t>(mRaised.size());
        mRaised.push_back({node, set, price});
    }
}

template <std::size_t Words>
void CompletionBound<Words>::Finish(const DualAscent& ascent, std::uint64_t limit)
{
    mRootBit = mBits[ascent.GetRoot()];
    // A path that pays more than this is in no tree within the limit.
    const std::uint64_t slack = limit - std::min(limit, ascent.GetBound());
    mPathsFromRoot = GetReducedFromRoot(mNetwork, ascent, slack);
    mPathsToSearchRoot = GetReducedTo(mNetwork, ascent, mSearchRoot, slack);
    mTotals.assign(mNetwork.GetNodeCount(), 0);
    mFirst.assign(mNetwork.GetNodeCount() + 1, 0);
    for (const NumberedCharge& raised : mRaised) {
        ++mFirst[raised.node.value + 1];
        mTotals[raised.node] += raised.price;
    }
    for (std::uint32_t node = 0; node < mNetwork.GetNodeCount(); ++node)
        mFirst[node + 1] += mFirst[node];
    std::vector<std::uint32_t> place(mFirst.begin(), mFirst.end() - 1);
    mCharges.resize(mRaised.size());
    for (const NumberedCharge& raised : mRaised)
        mCharges[place[raised.node.value]++] = {mSets.Get(raised.set), raised.price};
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
