#include "Engine/Graph/Steiner/Exact/Labels.h"

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"

#include <bit>

namespace qe::graph {

namespace {

constexpr std::size_t kFirstSize = 256;

} // namespace

LabelTable::LabelTable() : mSlots(kFirstSize)
{}

std::size_t LabelTable::FindSlot(std::uint64_t key) const
{
    const std::size_t mask = mSlots.size() - 1;
    std::size_t slot = ((key * 0x9E3779B97F4A7C15U) >> 24) & mask;
    while (mSlots[slot].label.IsValid() && mSlots[slot].key != key)
        slot = (slot + 1) & mask;
    return slot;
}

LabelIndex LabelTable::Add(const Label& label)
{
    const std::uint64_t key = GetKey(label.node, label.set);
    const LabelIndex index{GetCount()};
    mSlots[FindSlot(key)] = {key, index};
    mLabels.push_back(label);
    if (2 * mLabels.size() > mSlots.size())
        Grow();
    return index;
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
    for (const LabelIndex index : IndexRange<LabelIndex>(GetCount())) {
        const std::uint64_t key = GetKey(Get(index).node, Get(index).set);
        mSlots[FindSlot(key)] = {key, index};
    }
}

template <std::size_t Words>
void NodeLabels<Words>::Add(const Entry& entry, const Set& all)
{
    mEntries.push_back(entry);
    mSets.push_back(entry.set);
    if (!mPlaces.empty()) {
        mPlaces[entry.set.words[0]] = static_cast<std::uint32_t>(mEntries.size());
        return;
    }
    const std::uint64_t bits = all.words[0];
    if (Words > 1 || static_cast<std::uint32_t>(std::bit_width(bits)) > tuning::kTableTerminals)
        return;
    const std::size_t size = std::size_t{1} << std::bit_width(bits);
    if (mEntries.size() >= size / tuning::kTableSparsity)
        MakeTable(size);
}

template <std::size_t Words>
void NodeLabels<Words>::MakeTable(std::size_t size)
{
    mPlaces.assign(size, 0);
    mOffered.assign(size, kUnreached);
    for (std::size_t place = 0; place < mEntries.size(); ++place)
        mPlaces[mEntries[place].set.words[0]] = static_cast<std::uint32_t>(place + 1);
}

template class NodeLabels<1>;
template class NodeLabels<2>;
template class NodeLabels<4>;
template class NodeLabels<8>;

} // namespace qe::graph
