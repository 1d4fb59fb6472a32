#ifndef ENGINE_GRAPH_CORE_DISJOINTSETS_H
#define ENGINE_GRAPH_CORE_DISJOINTSETS_H

#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace qe::graph {

/// Splits the numbers 0 to count - 1 into sets that can be united: union by size with path
/// halving, nearly constant time an operation (Tarjan and van Leeuwen 1984).
class DisjointSets
{
public:
    explicit DisjointSets(std::uint32_t count) : mParent(count), mSize(count, 1)
    {
        std::iota(mParent.begin(), mParent.end(), 0U);
    }

    /// Returns the member that stands for the set of `member`.
    [[nodiscard]] std::uint32_t Find(std::uint32_t member)
    {
        while (mParent[member] != member)
            member = mParent[member] = mParent[mParent[member]];
        return member;
    }

    /// Unites the sets of two members; returns false when they were one already.
    bool Unite(std::uint32_t left, std::uint32_t right)
    {
        left = Find(left);
        right = Find(right);
        if (left == right)
            return false;
        if (mSize[left] < mSize[right])
            std::swap(left, right);
        mParent[right] = left;
        mSize[left] += mSize[right];
        return true;
    }

private:
    std::vector<std::uint32_t> mParent;
    std::vector<std::uint32_t> mSize;
};

} // namespace qe::graph

#endif
