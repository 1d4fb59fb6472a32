#include "Engine/Graph/Steiner/Network/SetTable.h"

namespace qe::graph {

namespace {

constexpr std::size_t kFirstSize = 64;

} // namespace

template <std::size_t Words>
SetTable<Words>::SetTable() : mSlots(kFirstSize)
{}

template <std::size_t Words>
std::size_t SetTable<Words>::FindSlot(const Set& set) const
{
    const std::size_t mask = mSlots.size() - 1;
    std::size_t slot = (set.GetHash() >> 7) & mask;
    while (mSlots[slot].IsValid() && !(mSets[mSlots[slot]] == set))
        slot = (slot + 1) & mask;
    return slot;
}

template <std::size_t Words>
SetIndex SetTable<Words>::Intern(const Set& set)
{
    const std::size_t slot = FindSlot(set);
    if (mSlots[slot].IsValid())
        return mSlots[slot];
    const SetIndex index{GetCount()};
    mSlots[slot] = index;
    mSets.push_back(set);
    if (std::size_t{2} * GetCount() > mSlots.size())
        Grow();
    return index;
}

template <std::size_t Words>
void SetTable<Words>::Grow()
{
    mSlots.assign(2 * mSlots.size(), {});
    for (const SetIndex index : GetIndices())
        mSlots[FindSlot(mSets[index])] = index;
}

template class SetTable<1>;
template class SetTable<2>;
template class SetTable<4>;
template class SetTable<8>;

} // namespace qe::graph
