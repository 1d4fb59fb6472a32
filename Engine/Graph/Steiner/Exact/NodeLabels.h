#ifndef ENGINE_GRAPH_STEINER_EXACT_NODELABELS_H
#define ENGINE_GRAPH_STEINER_EXACT_NODELABELS_H

#include "Engine/Graph/Steiner/Network/TerminalSet.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// The settled labels of one node, for finding those that fit together.
///
/// They stand in a list that is gone through. Where the sets are few enough and many of them are
/// settled, a table by set comes in addition: then going through the subsets in question can be
/// cheaper than going through the list.
template <std::size_t Words>
class NodeLabels
{
public:
    using Set = TerminalSet<Words>;

    struct Entry
    {
        Set set;
        std::uint64_t weight;
        std::uint32_t label;
        bool isBranch;
    };

    /// Adds a label whose set is within `all`.
    void Add(const Entry& entry, const Set& all);

    /// Calls `visit` with each entry whose set is within `all` and does not meet the given one.
    template <typename Visit>
    void ForEachDisjoint(const Set& set, const Set& all, const Visit& visit) const
    {
        const Set others = all.Without(set);
        if (mPlaces.empty() || (std::size_t{1} << others.GetSize()) > mEntries.size()) {
            for (const Entry& entry : mEntries) {
                if (!entry.set.Intersects(set))
                    visit(entry);
            }
            return;
        }
        const std::uint64_t bits = others.words[0];
        for (std::uint64_t part = bits; part != 0; part = (part - 1) & bits) {
            if (mPlaces[part] != 0)
                visit(mEntries[mPlaces[part] - 1]);
        }
    }

    /// Calls `visit` with each entry whose set is a proper part of the given one and holds its
    /// smallest terminal.
    template <typename Visit>
    void ForEachPart(const Set& set, const Visit& visit) const
    {
        const Set lowest = Set::Single(set.GetLowest());
        if (mPlaces.empty() || (std::size_t{1} << (set.GetSize() - 1)) > mEntries.size()) {
            for (const Entry& entry : mEntries) {
                if (lowest.IsSubsetOf(entry.set) && entry.set.IsSubsetOf(set) &&
                    !(entry.set == set))
                    visit(entry);
            }
            return;
        }
        const std::uint64_t others = set.Without(lowest).words[0];
        for (std::uint64_t rest = others; rest != 0; rest = (rest - 1) & others) {
            const std::uint64_t part = set.words[0] & ~rest;
            if (mPlaces[part] != 0)
                visit(mEntries[mPlaces[part] - 1]);
        }
    }

    /// Says whether the weight may be less than what was noted for the set, and notes it. Says
    /// yes always while there is no table.
    [[nodiscard]] bool Improves(const Set& set, std::uint64_t weight)
    {
        if (mPlaces.empty())
            return true;
        std::uint64_t& offered = mOffered[set.words[0]];
        if (weight >= offered)
            return false;
        offered = weight;
        return true;
    }

private:
    void MakeTable(std::size_t size);

    std::vector<Entry> mEntries;
    /// Place in the list plus one, by the bits of the set.
    std::vector<std::uint32_t> mPlaces;
    std::vector<std::uint64_t> mOffered;
};

} // namespace qe::graph

#endif
