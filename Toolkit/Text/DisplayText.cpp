#include "Toolkit/Text/DisplayText.h"

#include "Engine/Services/Characters.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <utf8proc.h>

namespace qe::tool {
namespace {

struct CodeRange
{
    char32_t first;
    char32_t last;
};

bool IsHarmful(char32_t code)
{
    // Controls, the marks of writing direction, line separators, invisible and tag characters.
    constexpr std::array<CodeRange, 10> kHarmful{{{0x00, 0x1F},
                                                  {0x7F, 0x9F},
                                                  {0xAD, 0xAD},
                                                  {0x61C, 0x61C},
                                                  {0x200B, 0x200F},
                                                  {0x2028, 0x202E},
                                                  {0x2060, 0x206F},
                                                  {0xFEFF, 0xFEFF},
                                                  {0xFFF9, 0xFFFB},
                                                  {0xE0000, 0xE007F}}};
    return std::any_of(kHarmful.begin(), kHarmful.end(), [code](const CodeRange& range) {
        return code >= range.first && code <= range.last;
    });
}

std::string EscapeByte(unsigned value)
{
    std::array<char, 8> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), "\\x%02X", value & 0xFFU);
    return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string EscapeCode(char32_t code)
{
    std::array<char, 16> buffer{};
    const int length =
        std::snprintf(buffer.data(), buffer.size(), "\\u{%04X}", static_cast<unsigned>(code));
    return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string Escape(char32_t code)
{
    switch (code) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return code < 0x80 ? EscapeByte(code) : EscapeCode(code);
    }
}

} // namespace

std::string ToDisplayText(std::string_view text)
{
    std::string shown;
    while (!text.empty()) {
        const Utf8Piece piece = ReadUtf8(text);
        const std::string_view bytes = text.substr(0, piece.bytes);
        if (!piece.isWellFormed)
            for (const char byte : bytes)
                shown += EscapeByte(static_cast<unsigned char>(byte));
        else if (IsHarmful(piece.code))
            shown += Escape(piece.code);
        else
            shown += bytes;
        text.remove_prefix(piece.bytes);
    }
    return shown;
}

std::string JoinFirstTexts(const std::vector<std::string>& texts, std::size_t limit)
{
    const std::size_t shown = std::min(limit, texts.size());
    const std::string first = JoinTexts(std::span(texts).first(shown));
    return shown == texts.size() ? first
                                 : first + " and " + std::to_string(texts.size() - shown) + " more";
}

std::string ToDisplayList(const std::vector<std::string>& texts)
{
    return texts.empty() ? "none" : JoinTexts(texts, ToDisplayText);
}

std::string ToShellWord(std::string_view text)
{
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                        "0123456789_-./:@%+,";
    if (!text.empty() && text.find_first_not_of(kPlain) == std::string_view::npos)
        return std::string(text);
    std::string word = "'";
    for (const char character : text)
        word += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return word + '\'';
}

std::size_t DisplayWidth(std::string_view text)
{
    std::size_t width = 0;
    while (!text.empty()) {
        const Utf8Piece piece = ReadUtf8(text);
        width +=
            static_cast<std::size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(piece.code)));
        text.remove_prefix(piece.bytes);
    }
    return width;
}

} // namespace qe::tool
