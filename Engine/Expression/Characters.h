#ifndef ENGINE_EXPRESSION_CHARACTERS_H
#define ENGINE_EXPRESSION_CHARACTERS_H

namespace qe::expression {

/// Classes of bytes in expressions, the same in every locale. The end of a text is byte 0, which
/// belongs to none of them.

[[nodiscard]] constexpr bool IsBlank(char c) noexcept
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

[[nodiscard]] constexpr bool IsDigit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

[[nodiscard]] constexpr bool IsAsciiLetter(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Tells whether a name may begin with the byte. Every byte of a character beyond ASCII may.
[[nodiscard]] constexpr bool IsWordStart(char c) noexcept
{
    return IsAsciiLetter(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

[[nodiscard]] constexpr bool IsWordPart(char c) noexcept
{
    return IsWordStart(c) || IsDigit(c) || c == '$' || c == '#';
}

} // namespace qe::expression

#endif
