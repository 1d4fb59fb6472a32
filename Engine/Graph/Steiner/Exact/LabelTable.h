#ifndef ENGINE_GRAPH_STEINER_EXACT_LABELTABLE_H
#define ENGINE_GRAPH_STEINER_EXACT_LABELTABLE_H

#include "Engine/Graph/Core/Indices.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// What is known of the lightest partial tree that joins a set of terminals to a node.
struct Label
{
    NodeIndex node;
    std::uint32_t set;
    std::uint64_t weight;
    /// Lower bound for what is missing to a whole tree.
    std::uint64_t rest;
    /// Whether the partial tree is known to be a single branch: the terminal itself, or begun by
    /// one edge.
    bool isBranch = false;
    /// Once settled, the weight is least.
    bool isSettled = false;
};

/// Holds the labels of a search by node and set, in the order in which they came up.
class LabelTable
{
public:
    static constexpr std::uint32_t None = 0xFFFFFFFF;

    LabelTable();

    /// Answers the number of the label, or None.
    [[nodiscard]] std::uint32_t Find(NodeIndex node, std::uint32_t set) const
    {
        return mSlots[FindSlot(GetKey(node, set))].label;
    }
    /// Adds a label whose node and set have none.
    std::uint32_t Add(const Label& label);

    [[nodiscard]] Label& Get(std::uint32_t number) { return mLabels[number]; }
    [[nodiscard]] const Label& Get(std::uint32_t number) const { return mLabels[number]; }
    [[nodiscard]] std::uint32_t GetCount() const
    {
        return static_cast<std::uint32_t>(mLabels.size());
    }
    /// Answers the bytes taken; when the table is about to grow, those taken while it does.
    [[nodiscard]] std::size_t GetBytes() const;

private:
    struct Slot
    {
        std::uint64_t key = 0;
        std::uint32_t label = None;
    };

    [[nodiscard]] static std::uint64_t GetKey(NodeIndex node, std::uint32_t set)
    {
        return (std::uint64_t{set} << 32) | node.value;
    }
    [[nodiscard]] std::size_t FindSlot(std::uint64_t key) const;
    void Grow();

    std::vector<Label> mLabels;
    std::vector<Slot> mSlots;
};

} // namespace qe::graph

#endif
