#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace qe::tool {

namespace {

/// One character at the front of a text; no bytes for what is no UTF-8.
struct Character
{
    char32_t code = 0;
    std::size_t bytes = 0;
};

struct CodeRange
{
    char32_t first;
    char32_t last;
};

Character ReadCharacter(std::string_view text)
{
    const auto byteAt = [text](std::size_t position) {
        return static_cast<unsigned char>(text[position]);
    };
    const unsigned char lead = byteAt(0);
    if (lead < 0x80)
        return {lead, 1};
    const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < bytes)
        return {};
    char32_t code = lead & (0xFFU >> (bytes + 1));
    for (std::size_t position = 1; position < bytes; ++position) {
        if ((byteAt(position) & 0xC0U) != 0x80U)
            return {};
        code = (code << 6U) | (byteAt(position) & 0x3FU);
    }
    constexpr std::array<char32_t, 5> kLeast{0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < kLeast[bytes] || code > 0x10FFFF || isSurrogate ? Character{}
                                                                  : Character{code, bytes};
}

template <std::size_t Count>
bool IsIn(const std::array<CodeRange, Count>& ranges, char32_t code)
{
    return std::any_of(ranges.begin(), ranges.end(), [code](const CodeRange& range) {
        return code >= range.first && code <= range.last;
    });
}

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
    return IsIn(kHarmful, code);
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
        const Character character = ReadCharacter(text);
        if (character.bytes == 0)
            shown += EscapeByte(static_cast<unsigned char>(text.front()));
        else if (IsHarmful(character.code))
            shown += Escape(character.code);
        else
            shown += text.substr(0, character.bytes);
        text.remove_prefix(std::max<std::size_t>(character.bytes, 1));
    }
    return shown;
}

std::string ToDisplayList(const std::vector<std::string>& texts)
{
    return texts.empty() ? "none" : JoinTexts(texts, ToDisplayText);
}

std::size_t DisplayWidth(std::string_view text)
{
    constexpr std::array<CodeRange, 2> kCombining{{{0x300, 0x36F}, {0xFE00, 0xFE0F}}};
    constexpr std::array<CodeRange, 6> kWide{{{0x1100, 0x115F},
                                              {0x2E80, 0xA4CF},
                                              {0xAC00, 0xD7A3},
                                              {0xF900, 0xFAFF},
                                              {0xFE30, 0xFF60},
                                              {0x1F300, 0x1FAFF}}};
    std::size_t width = 0;
    while (!text.empty()) {
        const Character character = ReadCharacter(text);
        if (!IsIn(kCombining, character.code))
            width += IsIn(kWide, character.code) ? 2U : 1U;
        text.remove_prefix(std::max<std::size_t>(character.bytes, 1));
    }
    return width;
}

} // namespace qe::tool
