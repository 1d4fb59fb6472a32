#include "Engine/Services/Characters.h"

#include "I18NConverter.h"

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

constexpr Trail kNoTrail{0, 0, 0};

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
    return kNoTrail;
}

/// Copies well-formed UTF-8 and puts U+FFFD in the place of each ill-formed piece.
class Utf8Converter final : public I18NConverter
{
public:
    [[nodiscard]] I18NString Convert(const char* text) const override
    {
        if (text == nullptr)
            return {};
        std::string converted;
        std::string_view rest(text);
        converted.reserve(rest.size());
        while (!rest.empty()) {
            const Utf8Piece piece = ReadUtf8(rest);
            converted += piece.isWellFormed ? rest.substr(0, piece.bytes) : "\xEF\xBF\xBD";
            rest.remove_prefix(piece.bytes);
        }
        return converted;
    }
};

} // namespace

Utf8Piece ReadUtf8(std::string_view text)
{
    const auto byteAt = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byteAt(0);
    if (lead < 0x80)
        return {lead, 1, true};
    Trail trail = FindTrail(lead);
    if (trail.length == 0)
        return {};
    char32_t code = lead & (0x3FU >> trail.length);
    for (std::size_t i = 1; i <= trail.length; ++i) {
        if (i == text.size() || byteAt(i) < trail.low || byteAt(i) > trail.high)
            return {0, i, false};
        trail.low = 0x80;
        trail.high = 0xBF;
        code = (code << 6U) | (byteAt(i) & 0x3FU);
    }
    return {code, trail.length + 1, true};
}

std::string_view CutUtf8(std::string_view text, std::size_t bytes) noexcept
{
    if (text.size() <= bytes)
        return text;
    while (bytes > 0 && ContinuesUtf8(text[bytes]))
        --bytes;
    return text.substr(0, bytes);
}

} // namespace qe

// Defined here, so that all modules share one virtual table and one type description.
I18NConverter::~I18NConverter() = default;

const I18NConverter& AUT_GetUTF8Converter()
{
    static const qe::Utf8Converter converter;
    return converter;
}

namespace qe {

TextPosition PositionCounter::MoveTo(std::size_t offset)
{
    for (; mOffset < offset && mOffset < mText.size(); ++mOffset) {
        const char byte = mText[mOffset];
        if (byte == '\n')
            mPosition = {mPosition.line + 1, 1};
        else if (!ContinuesUtf8(byte))
            ++mPosition.column;
    }
    return mPosition;
}

} // namespace qe
