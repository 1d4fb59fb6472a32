#ifndef ENGINE_SERVICES_CHARACTERS_H
#define ENGINE_SERVICES_CHARACTERS_H

#include "QEENGINE_EXPORT.h"

#include <cstddef>
#include <string>
#include <string_view>

/// The letters, digits and spaces of ASCII, the same in every locale. Every byte of a character
/// beyond ASCII belongs to no class and is its own lower case, so that UTF-8 stays what it is.
namespace qe::ascii {

[[nodiscard]] constexpr bool IsSpace(char c) noexcept
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

[[nodiscard]] constexpr bool IsDigit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

[[nodiscard]] constexpr bool IsUpper(char c) noexcept
{
    return c >= 'A' && c <= 'Z';
}

[[nodiscard]] constexpr bool IsLower(char c) noexcept
{
    return c >= 'a' && c <= 'z';
}

[[nodiscard]] constexpr bool IsLetter(char c) noexcept
{
    return IsLower(c) || IsUpper(c);
}

[[nodiscard]] constexpr char ToLower(char c) noexcept
{
    return IsUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Returns the text with the letters A to Z in lower case.
[[nodiscard]] inline std::string ToLower(std::string text)
{
    for (char& c : text)
        c = ToLower(c);
    return text;
}

} // namespace qe::ascii

namespace qe {

/// What stands at the front of a text: one character, or bytes that are no UTF-8.
struct Utf8Piece
{
    /// The character's number; 0 when the piece is ill-formed.
    char32_t code = 0;
    /// At least 1. Those of an ill-formed piece are as many as could begin one character.
    std::size_t bytes = 1;
    bool isWellFormed = false;
};

/// Returns the first character of `text`, which is not empty, or the maximal ill-formed piece
/// there. Overlong forms, surrogates and numbers above U+10FFFF are ill-formed.
[[nodiscard]] QEENGINE_EXPORT Utf8Piece ReadUtf8(std::string_view text);

/// Returns whether the byte continues a character that an earlier byte begins.
[[nodiscard]] constexpr bool ContinuesUtf8(char byte) noexcept
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Returns the longest front part of `text` that has at most `bytes` bytes and ends between two
/// characters. It refers to `text`.
[[nodiscard]] QEENGINE_EXPORT std::string_view CutUtf8(std::string_view text,
                                                       std::size_t bytes) noexcept;

/// A place in a text. Lines and columns count from 1, columns in characters.
struct TextPosition
{
    std::size_t line = 1;
    std::size_t column = 1;

    friend bool operator==(const TextPosition&, const TextPosition&) = default;
};

/// Turns ascending byte offsets of one text in UTF-8 into positions, in one pass over the text.
class PositionCounter
{
public:
    /// `text` must outlive the counter.
    explicit PositionCounter(std::string_view text) : mText(text) {}

    /// Returns the position of the byte at `offset`, which is not before the last one asked for.
    /// An offset behind the text has the position of its end.
    [[nodiscard]] QEENGINE_EXPORT TextPosition MoveTo(std::size_t offset);

private:
    std::string_view mText;
    std::size_t mOffset = 0;
    TextPosition mPosition;
};

} // namespace qe

#endif
