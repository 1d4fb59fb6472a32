#include "Toolkit/Text/PlainJson.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/DocumentBuilder.h"
#include "Toolkit/Text/JsonProblems.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace qe::tool {

namespace {

using nlohmann::json;

/// Leaves the rare tokens to the general parser: texts with escapes, and numbers that are not whole
/// or long. Every function that reads returns false for what is not plain.
class PlainReader
{
public:
    PlainReader(std::string_view text, DocumentBuilder& builder) : mText(text), mBuilder(&builder)
    {}

    [[nodiscard]] bool ReadDocument();

private:
    enum class EAfter : std::uint8_t
    {
        /// A key or a value comes next.
        Next,
        End,
        NotPlain,
    };

    [[nodiscard]] bool IsInObject() const
    {
        return mBuilder->GetDepth() > 0 && mBuilder->GetOpen().is_object();
    }
    /// Returns the character that comes next; 0 at the end.
    [[nodiscard]] char Peek() const { return mAt < mText.size() ? mText[mAt] : '\0'; }
    void SkipBlanks();
    [[nodiscard]] bool Take(char wanted);
    /// Closes what ends here, up to the comma that something follows.
    [[nodiscard]] EAfter LeaveWhatEnds();

    [[nodiscard]] bool ReadKey();
    [[nodiscard]] bool ReadValue();
    [[nodiscard]] bool ReadWord(std::string_view word, json value);
    [[nodiscard]] bool ReadNumber();
    [[nodiscard]] bool ReadText(std::string& text);
    [[nodiscard]] bool ReadEscapedText(std::size_t start, std::string& text);

    std::string_view mText;
    std::size_t mAt = 0;
    DocumentBuilder* mBuilder;
};

bool PlainReader::ReadDocument()
{
    for (;;) {
        if (IsInObject() && !ReadKey())
            return false;
        SkipBlanks();
        const char first = Peek();
        if (!ReadValue())
            return false;
        SkipBlanks();
        const bool isOpen = (first == '{' && Peek() != '}') || (first == '[' && Peek() != ']');
        if (isOpen)
            continue;
        if (first == '{' || first == '[') {
            ++mAt;
            mBuilder->Leave();
        }
        const EAfter after = LeaveWhatEnds();
        if (after != EAfter::Next)
            return after == EAfter::End;
    }
}

PlainReader::EAfter PlainReader::LeaveWhatEnds()
{
    for (SkipBlanks(); mBuilder->GetDepth() > 0; SkipBlanks()) {
        if (Take(','))
            return EAfter::Next;
        if (!Take(IsInObject() ? '}' : ']'))
            return EAfter::NotPlain;
        mBuilder->Leave();
    }
    return mAt == mText.size() ? EAfter::End : EAfter::NotPlain;
}

void PlainReader::SkipBlanks()
{
    while (mAt < mText.size() &&
           (mText[mAt] == ' ' || mText[mAt] == '\n' || mText[mAt] == '\r' || mText[mAt] == '\t'))
        ++mAt;
}

bool PlainReader::Take(char wanted)
{
    if (mAt == mText.size() || mText[mAt] != wanted)
        return false;
    ++mAt;
    return true;
}

bool PlainReader::ReadKey()
{
    std::string key;
    SkipBlanks();
    if (Peek() != '"' || !ReadText(key))
        return false;
    mBuilder->AddKey(std::move(key));
    SkipBlanks();
    return Take(':');
}

bool PlainReader::ReadValue()
{
    switch (Peek()) {
    case '{':
        ++mAt;
        mBuilder->Enter(json::object());
        return true;
    case '[':
        ++mAt;
        mBuilder->Enter(json::array());
        return true;
    case '"': {
        std::string text;
        if (!ReadText(text))
            return false;
        mBuilder->AddValue(std::move(text));
        return true;
    }
    case 't':
        return ReadWord("true", true);
    case 'f':
        return ReadWord("false", false);
    case 'n':
        return ReadWord("null", nullptr);
    default:
        return ReadNumber();
    }
}

bool PlainReader::ReadWord(std::string_view word, json value)
{
    if (mText.substr(mAt, word.size()) != word)
        return false;
    mAt += word.size();
    mBuilder->AddValue(std::move(value));
    return true;
}

bool PlainReader::ReadNumber()
{
    /// So many digits fit every type of integers.
    constexpr std::size_t kPlainDigits = 18;
    const std::size_t end = std::min(mText.find_first_not_of("+-.0123456789Ee", mAt), mText.size());
    const std::string_view token = mText.substr(mAt, end - mAt);
    mAt = end;
    const bool isPlain = !token.empty() && token.front() >= '1' && token.size() <= kPlainDigits &&
                         std::all_of(token.begin(), token.end(), ascii::IsDigit);
    if (isPlain) {
        std::uint64_t number = 0;
        std::from_chars(token.data(), token.data() + token.size(), number);
        mBuilder->AddValue(number);
        return true;
    }
    json number = json::parse(token, nullptr, false);
    if (number.is_discarded())
        return false;
    mBuilder->AddValue(std::move(number));
    return true;
}

bool PlainReader::ReadText(std::string& text)
{
    const std::size_t start = mAt++;
    while (mAt < mText.size()) {
        const char c = mText[mAt];
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"') {
            text = mText.substr(start + 1, mAt - start - 1);
            ++mAt;
            return true;
        }
        if (c == '\\')
            return ReadEscapedText(start, text);
        if (byte < 0x20)
            return false;
        if (byte < 0x80) {
            ++mAt;
            continue;
        }
        const Utf8Piece piece = ReadUtf8(mText.substr(mAt));
        if (!piece.isWellFormed)
            return false;
        mAt += piece.bytes;
    }
    return false;
}

bool PlainReader::ReadEscapedText(std::size_t start, std::string& text)
{
    while (mAt < mText.size() && mText[mAt] != '"')
        mAt += mText[mAt] == '\\' ? 2U : 1U;
    if (mAt >= mText.size())
        return false;
    ++mAt;
    json value = json::parse(mText.substr(start, mAt - start), nullptr, false);
    if (!value.is_string())
        return false;
    text = std::move(value.get_ref<std::string&>());
    return true;
}

} // namespace

std::optional<json> ReadPlainJson(std::string_view text, const std::string& documentName)
{
    JsonProblems problems(documentName);
    DocumentBuilder builder(problems);
    if (!PlainReader(text, builder).ReadDocument() || !problems.IsEmpty())
        return std::nullopt;
    return builder.TakeDocument();
}

} // namespace qe::tool
