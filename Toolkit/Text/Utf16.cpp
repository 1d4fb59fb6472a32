#include "Toolkit/Text/Utf16.h"

#include "Engine/Services/Characters.h"

#include <cstddef>

namespace qe::tool {

namespace {

constexpr char32_t kFirstPair = 0x10000;
constexpr char16_t kFirstHigh = 0xD800;
constexpr char16_t kFirstLow = 0xDC00;
constexpr char16_t kLastLow = 0xDFFF;
constexpr unsigned kPairBits = 10;
constexpr char32_t kPairMask = 0x3FF;
constexpr char32_t kReplacement = 0xFFFD;

} // namespace

void AppendUtf8(std::string& text, char32_t code)
{
    const auto add = [&text](char32_t byte) {
        text += static_cast<char>(static_cast<unsigned char>(byte));
    };
    const auto addRest = [&](int shift) { add(0x80U | ((code >> shift) & 0x3FU)); };
    if (code < 0x80) {
        add(code);
    } else if (code < 0x800) {
        add(0xC0U | (code >> 6));
        addRest(0);
    } else if (code < 0x10000) {
        add(0xE0U | (code >> 12));
        addRest(6);
        addRest(0);
    } else {
        add(0xF0U | (code >> 18));
        addRest(12);
        addRest(6);
        addRest(0);
    }
}

std::u16string ToUtf16(std::string_view text)
{
    std::u16string units;
    while (!text.empty()) {
        const Utf8Piece piece = ReadUtf8(text);
        const char32_t code = piece.isWellFormed ? piece.code : kReplacement;
        if (code >= kFirstPair) {
            units += static_cast<char16_t>(kFirstHigh + ((code - kFirstPair) >> kPairBits));
            units += static_cast<char16_t>(kFirstLow + ((code - kFirstPair) & kPairMask));
        } else {
            units += static_cast<char16_t>(code);
        }
        text.remove_prefix(piece.bytes);
    }
    return units;
}

std::string FromUtf16(std::u16string_view text)
{
    const auto isLow = [](char16_t unit) { return unit >= kFirstLow && unit <= kLastLow; };
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit < kFirstHigh || unit > kLastLow) {
            AppendUtf8(bytes, unit);
        } else if (!isLow(unit) && i + 1 < text.size() && isLow(text[i + 1])) {
            const char32_t high = unit - char32_t{kFirstHigh};
            AppendUtf8(bytes, kFirstPair + (high << kPairBits) + (text[++i] - char32_t{kFirstLow}));
        } else {
            AppendUtf8(bytes, kReplacement);
        }
    }
    return bytes;
}

} // namespace qe::tool
