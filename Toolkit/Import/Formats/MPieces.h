#ifndef TOOLKIT_IMPORT_FORMATS_MPIECES_H
#define TOOLKIT_IMPORT_FORMATS_MPIECES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

enum class EMPiece : std::uint8_t
{
    /// A keyword or a name without quotes.
    Word,
    QuotedName,
    Text,
    Sign,
};

/// A piece of a query.
struct MPiece
{
    EMPiece kind = EMPiece::Sign;
    /// Without quotes.
    std::string text{};

    [[nodiscard]] bool IsSign(char sign) const
    {
        return kind == EMPiece::Sign && text.front() == sign;
    }
    [[nodiscard]] bool IsWord(std::string_view word) const
    {
        return kind == EMPiece::Word && text == word;
    }
    [[nodiscard]] bool IsName() const
    {
        return kind == EMPiece::Word || kind == EMPiece::QuotedName;
    }
};

using MPieces = std::span<const MPiece>;

/// Takes a query in M apart. Returns nothing where a quote or comment does not end, or a text holds
/// characters by their codes.
[[nodiscard]] std::optional<std::vector<MPiece>> ReadMPieces(std::string_view query);

/// Returns what stands between the bracket at `at` and its end, and moves behind both; nothing
/// where it does not end.
[[nodiscard]] std::optional<MPieces> TakeMGroup(MPieces pieces, std::size_t& at);

/// Returns the pieces to the next comma that is not within brackets, and moves behind it.
[[nodiscard]] MPieces TakeMItem(MPieces pieces, std::size_t& at);

} // namespace qe::tool

#endif
