#ifndef ENGINE_SERVICES_ASCIITEXT_H
#define ENGINE_SERVICES_ASCIITEXT_H

#include <string>

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

#endif
