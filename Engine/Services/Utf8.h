#ifndef ENGINE_SERVICES_UTF8_H
#define ENGINE_SERVICES_UTF8_H

#include "QEENGINE_EXPORT.h"

#include <cstddef>
#include <string_view>

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

} // namespace qe

#endif
