#ifndef ENGINE_GRAPH_STEINER_EXACT_LABELS_H
#define ENGINE_GRAPH_STEINER_EXACT_LABELS_H

#include "Engine/Graph/Core/Indices.h"
#include "Engine/Graph/Steiner/Network/SetTable.h"
#include "Engine/Graph/Steiner/Network/TerminalSet.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// Position of a label in a LabelTable.
struct LabelIndex
{
    std::uint32_t value = kNoIndex;

    [[nodiscard]] bool IsValid() const { return value != kNoIndex; }
    friend auto operator<=>(const LabelIndex&, const LabelIndex&) = default;
};

/// What has become of a label.
enum class ELabelState : std::uint8_t
{
    Open,
    Settled,   ///< Its weight is least.
    Discarded, ///< No minimum Steiner tree holds it.
};

/// What is known of the lightest partial tree that joins a set of terminals to a node.
struct Label
{
    NodeIndex node;
    SetIndex set;
    std::uint64_t weight;
    /// Lower bound for what is missing to a whole tree.
    std::uint64_t completionBound;
    /// What the partial tree was made of: the label that was grown, or the two that were joined.
    /// Invalid for a terminal by itself.
    LabelIndex first{};
    LabelIndex second{};
    /// Whether the partial tree is known to be a single branch: the terminal itself, or begun by
    /// one edge.
    bool isBranch = false;
    ELabelState state = ELabelState::Open;
};

/// Holds the labels of a search by node and set, in the order in which they came up.
class LabelTable
{
public:
    LabelTable();

    /// Returns the label of node and set; an invalid index when there is none.
    [[nodiscard]] LabelIndex Find(NodeIndex node, SetIndex set) const
    {
        return mSlots[FindSlot(GetKey(node, set))].label;
    }
    /// Adds a label whose node and set have none, and returns its index.
    LabelIndex Add(const Label& label);

    [[nodiscard]] Label& Get(LabelIndex label) { return mLabels[label.value]; }
    [[nodiscard]] const Label& Get(LabelIndex label) const { return mLabels[label.value]; }
    [[nodiscard]] std::uint32_t GetCount() const
    {
        return static_cast<std::uint32_t>(mLabels.size());
    }
    /// Returns the bytes taken; when the table is about to grow, those taken while it does.
    [[nodiscard]] std::size_t GetBytes() const;

private:
    struct Slot
    {
        std::uint64_t key = 0;
        LabelIndex label;
    };

    [[nodiscard]] static std::uint64_t GetKey(NodeIndex node, SetIndex set)
    {
        return (std::uint64_t{set.value} << 32) | node.value;
    }
    [[nodiscard]] std::size_t FindSlot(std::uint64_t key) const;
    void Grow();

    std::vector<Label> mLabels;
    std::vector<Slot> mSlots;
};

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
        LabelIndex label;
        bool isBranch;
    };

    /// What an entry takes, beside the table.
    static constexpr std::size_t kEntryBytes = sizeof(Entry) + sizeof(Set);

    /// Adds a label whose set is within `all`, the set of all terminals.
    void Add(const Entry& entry, const Set& all);

    /// Returns the bytes of the table; 0 while there is none.
    [[nodiscard]] std::size_t GetTableBytes() const
    {
        return mPlaces.size() * (sizeof(std::uint32_t) + sizeof(std::uint64_t));
    }

    /// Calls `visit` with each entry whose set is within `all` and does not meet the given one.
    /// Returns how many steps that took.
    template <typename Visit>
    std::size_t ForEachDisjoint(const Set& set, const Set& all, const Visit& visit) const
    {
        const Set others = all.Without(set);
        if (mPlaces.empty() || (std::size_t{1} << others.GetSize()) > mEntries.size()) {
            for (std::size_t place = 0; place < mSets.size(); ++place) {
                if (!mSets[place].Intersects(set))
                    visit(mEntries[place]);
            }
            return mSets.size() / kSetsPerStep + 1;
        }
        const std::uint64_t bits = others.words[0];
        for (std::uint64_t part = bits; part != 0; part = (part - 1) & bits) {
            if (mPlaces[part] != 0)
                visit(mEntries[mPlaces[part] - 1]);
        }
        return std::size_t{1} << others.GetSize();
    }

    /// Calls `visit` with each entry whose set is a proper part of the given one and holds its
    /// smallest terminal. Returns how many entries or sets were looked at.
    template <typename Visit>
    std::size_t ForEachPart(const Set& set, const Visit& visit) const
    {
        const Set lowest = Set::Single(set.GetLowest());
        if (mPlaces.empty() || (std::size_t{1} << (set.GetSize() - 1)) > mEntries.size()) {
            for (const Entry& entry : mEntries) {
                if (lowest.IsSubsetOf(entry.set) && entry.set.IsSubsetOf(set) &&
                    !(entry.set == set))
                    visit(entry);
            }
            return mEntries.size();
        }
        const std::uint64_t others = set.Without(lowest).words[0];
        for (std::uint64_t rest = others; rest != 0; rest = (rest - 1) & others) {
            const std::uint64_t part = set.words[0] & ~rest;
            if (mPlaces[part] != 0)
                visit(mEntries[mPlaces[part] - 1]);
        }
        return std::size_t{1} << (set.GetSize() - 1);
    }

    /// Records the weight offered for a label of the set. Returns false when a weight as low was
    /// recorded before; true always while there is no table.
    [[nodiscard]] bool RecordOffer(const Set& set, std::uint64_t weight)
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

    /// Going through sets that lie one behind the other is so much faster than a step elsewhere.
    static constexpr std::size_t kSetsPerStep = 4;

    std::vector<Entry> mEntries;
    /// The sets of the entries once more: most are looked at only to find that they do not fit.
    std::vector<Set> mSets;
    /// Place in the list plus one, by the bits of the set.
    std::vector<std::uint32_t> mPlaces;
    std::vector<std::uint64_t> mOffered;
};

} // namespace qe::graph

#endif
