#ifndef TOOLKIT_SQL_CALLS_H
#define TOOLKIT_SQL_CALLS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qe::tool {

/// What functions and words of conditions mean, where dialects write it in different ways.
enum class ECall : std::uint8_t
{
    /// What begins at a position that counts from 1.
    Rest,
    /// As many characters from a position on.
    Part,
    Length,
    Remainder,
    Ceiling,
    /// The first value unless it is null, else the second.
    Fallback,
    Year,
    Month,
    Day,
    Today,
    Now,
};

inline constexpr std::size_t kCallCount = 11;

/// How a dialect writes each, in the order of ECall; "$1", "$2" and "$3" stand for the operands.
using CallForms = std::array<std::string_view, kCallCount>;

/// Returns what a function of that name means with so many operands, or a word without any; nothing
/// for what all dialects write alike, or what only some have. Letter case does not count.
[[nodiscard]] std::optional<ECall> FindCall(std::string_view name, std::size_t operands);

} // namespace qe::tool

#endif
