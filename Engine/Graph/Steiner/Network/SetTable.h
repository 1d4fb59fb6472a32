#ifndef ENGINE_GRAPH_STEINER_NETWORK_SETTABLE_H
#define ENGINE_GRAPH_STEINER_NETWORK_SETTABLE_H

#include "Engine/Graph/Steiner/Network/TerminalSet.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// Numbers sets of terminals in the order in which they come up.
template <std::size_t Words>
class SetTable
{
public:
    using Set = TerminalSet<Words>;
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    SetTable();

    /// Returns the number of the set, a new one when it has none.
    std::uint32_t Intern(const Set& set);
    /// Returns the number of the set, or kNone.
    [[nodiscard]] std::uint32_t Find(const Set& set) const { return mSlots[FindSlot(set)]; }

    [[nodiscard]] const Set& Get(std::uint32_t number) const { return mSets[number]; }
    [[nodiscard]] std::uint32_t GetCount() const
    {
        return static_cast<std::uint32_t>(mSets.size());
    }

private:
    [[nodiscard]] std::size_t FindSlot(const Set& set) const;
    void Grow();

    std::vector<Set> mSets;
    std::vector<std::uint32_t> mSlots;
};

} // namespace qe::graph

#endif
