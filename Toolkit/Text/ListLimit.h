#ifndef TOOLKIT_TEXT_LISTLIMIT_H
#define TOOLKIT_TEXT_LISTLIMIT_H

#include <algorithm>
#include <cstddef>
#include <limits>

namespace qe::tool {

/// How many entries of a list are shown: the first so many, or all. In every option that sets a
/// limit 0 stands for all; a list that is not wanted is none of the command's options.
class ListLimit
{
public:
    explicit constexpr ListLimit(std::size_t maximum) : mMaximum(maximum) {}

    [[nodiscard]] static constexpr ListLimit All() { return ListLimit(kUnlimited); }

    /// Reads the number that an option was given.
    [[nodiscard]] static constexpr ListLimit FromOption(std::size_t number)
    {
        return number == 0 ? All() : ListLimit(number);
    }

    /// Returns how many of so many entries are shown.
    [[nodiscard]] constexpr std::size_t CountShown(std::size_t entries) const
    {
        return std::min(mMaximum, entries);
    }

    /// Returns whether the entry at the position, counted from 0, is shown.
    [[nodiscard]] constexpr bool Shows(std::size_t position) const { return position < mMaximum; }

private:
    static constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

    std::size_t mMaximum;
};

} // namespace qe::tool

#endif
