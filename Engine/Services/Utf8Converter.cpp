#include "Engine/Services/Utf8Converter.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace qe {
namespace {

/// What may follow a lead byte: how many bytes, and between which bounds the first of them lies.
/// The bounds keep out overlong forms, surrogates and numbers above U+10FFFF.
struct Trail
{
    std::size_t length;
    unsigned char low;
    unsigned char high;
};

constexpr Trail noTrail{0, 0, 0};

constexpr Trail FindTrail(unsigned char lead)
{
    if (lead >= 0xC2 && lead <= 0xDF)
        return {1, 0x80, 0xBF};
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned char low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned char high = lead == 0xED ? 0x9F : 0xBF;
        return {2, low, high};
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned char low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned char high = lead == 0xF4 ? 0x8F : 0xBF;
        return {3, low, high};
    }
    return noTrail;
}

struct Piece
{
    std::size_t length;
    bool isWellFormed;
};

/// Measures the character, or the maximal ill-formed piece, at the start of `text`.
Piece MeasurePiece(std::string_view text)
{
    const auto byteAt = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byteAt(0) < 0x80)
        return {1, true};
    Trail trail = FindTrail(byteAt(0));
    if (trail.length == 0)
        return {1, false};
    for (std::size_t i = 1; i <= trail.length; ++i) {
        if (i == text.size() || byteAt(i) < trail.low || byteAt(i) > trail.high)
            return {i, false};
        trail.low = 0x80;
        trail.high = 0xBF;
    }
    return {trail.length + 1, true};
}

} // namespace

I18NString Utf8Converter::Convert(const char* text) const
{
    if (text == nullptr)
        return {};
    std::string converted;
    std::string_view rest(text);
    converted.reserve(rest.size());
    while (!rest.empty()) {
        const Piece piece = MeasurePiece(rest);
        converted += piece.isWellFormed ? rest.substr(0, piece.length) : "\xEF\xBF\xBD";
        rest.remove_prefix(piece.length);
    }
    return converted;
}

} // namespace qe

const I18NConverter& AUT_GetUTF8Converter()
{
    static const qe::Utf8Converter converter;
    return converter;
}
