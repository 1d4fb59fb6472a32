#ifndef TOOLKIT_TEXT_DISPLAYTEXT_H
#define TOOLKIT_TEXT_DISPLAYTEXT_H

#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// Returns any text so that it is harmless on one line of a terminal: control characters,
/// characters that change the direction of writing or break lines, and bytes that are no UTF-8
/// become escapes such as "\n", "\u{202E}" and "\xFF". All other text stays as it is.
[[nodiscard]] std::string ToDisplayText(std::string_view text);

/// Returns the texts of the items with `separator` between them; `toText` makes a text of an item.
template <typename Items, typename ToText = std::identity>
[[nodiscard]] std::string JoinTexts(const Items& items, const ToText& toText = {},
                                    std::string_view separator = ", ")
{
    std::string joined;
    bool isFirst = true;
    for (const auto& item : items) {
        if (!isFirst)
            joined += separator;
        joined += std::invoke(toText, item);
        isFirst = false;
    }
    return joined;
}

/// Returns the first `limit` texts with commas between them, then "and 7 more".
[[nodiscard]] std::string JoinFirstTexts(const std::vector<std::string>& texts, std::size_t limit);

/// Returns the texts, made harmless, with commas between them; "none" stands for an empty list.
[[nodiscard]] std::string ToDisplayList(const std::vector<std::string>& texts);

/// Returns the text as one word of a POSIX shell.
[[nodiscard]] std::string ToShellWord(std::string_view text);

/// Returns the number of columns that a text from ToDisplayText takes: two for a wide letter, none
/// for a mark on the letter before it.
[[nodiscard]] std::size_t DisplayWidth(std::string_view text);

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
