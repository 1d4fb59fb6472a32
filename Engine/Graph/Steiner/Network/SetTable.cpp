#include "Engine/Graph/Steiner/Network/SetTable.h"

namespace qe::graph {

namespace {

constexpr std::size_t kFirstSize = 64;

} // namespace

template <std::size_t Words>
SetTable<Words>::SetTable() : mSlots(kFirstSize, kNone)
{}

template <std::size_t Words>
std::size_t SetTable<Words>::FindSlot(const Set& set) const
{
    const std::size_t mask = mSlots.size() - 1;
    std::size_t slot = (set.GetHash() >> 7) & mask;
    while (mSlots[slot] != kNone && !(mSets[mSlots[slot]] == set))
        slot = (slot + 1) & mask;
    return slot;
}

template <std::size_t Words>
std::uint32_t SetTable<Words>::Intern(const Set& set)
{
    const std::size_t slot = FindSlot(set);
    if (mSlots[slot] != kNone)
        return mSlots[slot];
    const std::uint32_t number = GetCount();
    mSlots[slot] = number;
    mSets.push_back(set);
    if (2 * mSets.size() > mSlots.size())
        Grow();
    return number;
}

template <std::size_t Words>
void SetTable<Words>::Grow()
{
    mSlots.assign(2 * mSlots.size(), kNone);
    for (std::uint32_t number = 0; number < GetCount(); ++number)
        mSlots[FindSlot(mSets[number])] = number;
}

template class SetTable<1>;
template class SetTable<2>;
template class SetTable<4>;
template class SetTable<8>;

} // namespace qe::graph
