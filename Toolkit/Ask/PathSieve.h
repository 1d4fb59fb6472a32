#ifndef TOOLKIT_ASK_PATHSIEVE_H
#define TOOLKIT_ASK_PATHSIEVE_H

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string_view>
#include <vector>

namespace qe::tool {

/// What a choice among paths comes to.
struct PathChoice
{
    std::size_t position = 0;
    /// The name of what tells the chosen path from the last of the others; empty when nothing that
    /// was asked does, so that the ranking decided.
    std::string_view decidedBy{};
};

/// Narrows the candidates of a choice, one criterion after the other.
class PathSieve
{
public:
    explicit PathSieve(std::size_t candidates) : mLeft(candidates)
    {
        std::iota(mLeft.begin(), mLeft.end(), std::size_t{0});
    }

    /// Returns the positions of those that are left, in their order.
    [[nodiscard]] const std::vector<std::size_t>& GetLeft() const { return mLeft; }

    /// Keeps those of the least measure. `measure` returns a number for the position of a
    /// candidate; nothing is measured once one candidate is left.
    template <typename Measure>
    void KeepLeast(std::string_view criterion, const Measure& measure)
    {
        if (mLeft.size() < 2)
            return;
        std::vector<std::size_t> kept;
        std::int64_t least = 0;
        for (const std::size_t position : mLeft) {
            const std::int64_t value = measure(position);
            if (!kept.empty() && value > least)
                continue;
            if (value < least)
                kept.clear();
            least = value;
            kept.push_back(position);
        }
        if (kept.size() < mLeft.size())
            mLastCriterion = criterion;
        mLeft = std::move(kept);
    }

    /// Returns the first of those that are left.
    [[nodiscard]] PathChoice Take() const
    {
        if (mLeft.empty())
            return {};
        const bool isDecided = mLeft.size() == 1 || mLeft.front() != 0;
        return {mLeft.front(), isDecided ? mLastCriterion : std::string_view()};
    }

private:
    std::vector<std::size_t> mLeft;
    std::string_view mLastCriterion;
};

} // namespace qe::tool

#endif
