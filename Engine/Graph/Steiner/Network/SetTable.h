#ifndef ENGINE_GRAPH_STEINER_NETWORK_SETTABLE_H
#define ENGINE_GRAPH_STEINER_NETWORK_SETTABLE_H

#include "Engine/Graph/Core/Indices.h"
#include "Engine/Graph/Steiner/Network/TerminalSet.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// Position of a set of terminals in a SetTable.
struct SetIndex
{
    std::uint32_t value = kNoIndex;

    [[nodiscard]] bool IsValid() const { return value != kNoIndex; }
    friend auto operator<=>(const SetIndex&, const SetIndex&) = default;
};

/// Numbers sets of terminals in the order in which they come up.
template <std::size_t Words>
class SetTable
{
public:
    using Set = TerminalSet<Words>;

    SetTable();

    /// Returns the index of the set, a new one when it has none.
    SetIndex Intern(const Set& set);
    /// Returns the index of the set; an invalid one when it has none.
    [[nodiscard]] SetIndex Find(const Set& set) const { return mSlots[FindSlot(set)]; }

    [[nodiscard]] const Set& Get(SetIndex set) const { return mSets[set]; }
    [[nodiscard]] std::uint32_t GetCount() const { return mSets.size(); }
    [[nodiscard]] IndexRange<SetIndex> GetIndices() const
    {
        return IndexRange<SetIndex>(GetCount());
    }

private:
    [[nodiscard]] std::size_t FindSlot(const Set& set) const;
    void Grow();

    IndexedVector<SetIndex, Set> mSets;
    std::vector<SetIndex> mSlots;
};

} // namespace qe::graph

#endif
