#include "Engine/Graph/Steiner/Exact/LabelTable.h"

namespace qe::graph {

namespace {

constexpr std::size_t FirstSize = 256;

} // namespace

LabelTable::LabelTable() : mSlots(FirstSize)
{}

std::size_t LabelTable::FindSlot(std::uint64_t key) const
{
    const std::size_t mask = mSlots.size() - 1;
    std::size_t slot = ((key * 0x9E3779B97F4A7C15U) >> 24) & mask;
    while (mSlots[slot].label != None && mSlots[slot].key != key)
        slot = (slot + 1) & mask;
    return slot;
}

std::uint32_t LabelTable::Add(const Label& label)
{
    const std::uint64_t key = GetKey(label.node, label.set);
    const std::uint32_t number = GetCount();
    mSlots[FindSlot(key)] = {key, number};
    mLabels.push_back(label);
    if (2 * mLabels.size() > mSlots.size())
        Grow();
    return number;
}

std::size_t LabelTable::GetBytes() const
{
    const std::size_t labels = mLabels.capacity() * sizeof(Label);
    const std::size_t slots = mSlots.capacity() * sizeof(Slot);
    const bool areLabelsNearlyFull = mLabels.size() > mLabels.capacity() / 8 * 7;
    const bool areSlotsNearlyFull = 2 * mLabels.size() > mSlots.size() / 8 * 7;
    return (areLabelsNearlyFull ? 3 * labels : labels) + (areSlotsNearlyFull ? 3 * slots : slots);
}

void LabelTable::Grow()
{
    const std::size_t size = 2 * mSlots.size();
    mSlots = std::vector<Slot>(size);
    for (std::uint32_t number = 0; number < GetCount(); ++number) {
        const std::uint64_t key = GetKey(mLabels[number].node, mLabels[number].set);
        mSlots[FindSlot(key)] = {key, number};
    }
}

} // namespace qe::graph
