#include "Engine/Graph/Steiner/Exact/NodeLabels.h"

#include "Engine/Graph/Core/Distance.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"

namespace qe::graph {

template <std::size_t Words>
void NodeLabels<Words>::Add(const Entry& entry, const Set& all)
{
    mEntries.push_back(entry);
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
