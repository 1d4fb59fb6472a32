#include "Toolkit/Import/Ddl/ScriptText.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/TextEdges.h"
#include "Toolkit/Text/Utf16.h"

#include <cstdint>
#include <utility>

namespace qe::tool {

namespace {

constexpr std::uintmax_t kMaximumScriptSize = std::uintmax_t{256} * 1024 * 1024;
constexpr std::string_view kUtf16LittleMark = "\xFF\xFE";
constexpr std::string_view kUtf16BigMark = "\xFE\xFF";

enum class EByteOrder
{
    Little,
    Big,
};

char16_t ReadUtf16Unit(std::string_view bytes, std::size_t offset, EByteOrder order)
{
    const auto first = static_cast<unsigned char>(bytes[offset]);
    const auto second = static_cast<unsigned char>(bytes[offset + 1]);
    return static_cast<char16_t>(order == EByteOrder::Little ? first | second << 8
                                                             : second | first << 8);
}

/// Returns UTF-16, without its mark, as UTF-8.
std::string ConvertUtf16(std::string_view bytes, EByteOrder order)
{
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        units += ReadUtf16Unit(bytes, i, order);
    return FromUtf16(units);
}

std::string ToUtf8(std::string bytes)
{
    const std::string_view view = bytes;
    if (view.starts_with(kUtf16LittleMark))
        return ConvertUtf16(view.substr(kUtf16LittleMark.size()), EByteOrder::Little);
    if (view.starts_with(kUtf16BigMark))
        return ConvertUtf16(view.substr(kUtf16BigMark.size()), EByteOrder::Big);
    if (view.starts_with(kByteOrderMark))
        bytes.erase(0, kByteOrderMark.size());
    return bytes;
}

std::size_t FindIllFormed(std::string_view text)
{
    std::size_t offset = 0;
    while (offset < text.size()) {
        const Utf8Piece piece = ReadUtf8(text.substr(offset));
        if (!piece.isWellFormed)
            return offset;
        offset += piece.bytes;
    }
    return std::string_view::npos;
}

/// Makes letters of Latin-1 of the bytes that are no UTF-8.
void RepairLetters(ScriptText& script)
{
    std::size_t offset = FindIllFormed(script.text);
    if (offset == std::string::npos)
        return;
    script.notes.push_back("bytes that are no UTF-8 were read as Latin-1, the first one at " +
                           DescribePlace(script, offset));
    const std::string_view text = script.text;
    std::string repaired(text.substr(0, offset));
    while (offset < text.size()) {
        const Utf8Piece piece = ReadUtf8(text.substr(offset));
        if (piece.isWellFormed)
            repaired += text.substr(offset, piece.bytes);
        else
            AppendUtf8(repaired, static_cast<unsigned char>(text[offset]));
        offset += piece.isWellFormed ? piece.bytes : 1;
    }
    script.text = std::move(repaired);
}

} // namespace

ScriptText MakeScriptText(const std::filesystem::path& path, std::string bytes)
{
    ScriptText script{.path = path, .text = ToUtf8(std::move(bytes))};
    const std::size_t zero = script.text.find('\0');
    if (zero != std::string::npos)
        throw InputError({{DescribePlace(script, zero), "a zero byte stands here; not valid SQL"}});
    RepairLetters(script);
    return script;
}

ScriptText ReadScriptText(const std::filesystem::path& path)
{
    return MakeScriptText(path, ReadInputFile(path, kMaximumScriptSize));
}

bool IsScriptStart(std::string_view start)
{
    return start.starts_with(kUtf16LittleMark) || start.starts_with(kUtf16BigMark) ||
           start.find('\0') == std::string_view::npos;
}

std::string DescribePlace(const ScriptText& script, std::size_t offset)
{
    const auto [line, column] = PositionCounter(script.text).MoveTo(offset);
    return script.path.string() + ":" + std::to_string(line) + ":" + std::to_string(column);
}

} // namespace qe::tool
