#include "Engine/Expression/MarkupRemover.h"

#include "Engine/Expression/Lexer.h"
#include "Engine/Services/Characters.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qe::expression {
namespace {

/// Reads the parts of one tag from front to back. Each operation steps over what it finds.
class TagReader
{
public:
    TagReader(std::string_view text, std::size_t offset) : mText(text), mOffset(offset) {}

    [[nodiscard]] std::size_t GetOffset() const { return mOffset; }

    bool Skip(char wanted)
    {
        const bool found = Current() == wanted;
        mOffset += found ? 1 : 0;
        return found;
    }

    bool SkipSpaces()
    {
        const std::size_t begin = mOffset;
        while (ascii::IsSpace(Current()))
            ++mOffset;
        return mOffset > begin;
    }

    [[nodiscard]] bool IsAtName() const { return ascii::IsLetter(Current()) || Current() == '_'; }

    std::string_view ReadName()
    {
        const std::size_t begin = mOffset;
        if (IsAtName())
            while (IsNamePart(Current()))
                ++mOffset;
        return mText.substr(begin, mOffset - begin);
    }

    bool SkipAttribute()
    {
        ReadName();
        SkipSpaces();
        if (!Skip('='))
            return false;
        SkipSpaces();
        const char quote = Current();
        if (quote != '"' && quote != '\'')
            return false;
        const char stops[] = {quote, '<'};
        mOffset = mText.find_first_of({stops, 2}, mOffset + 1);
        if (mOffset == std::string_view::npos)
            mOffset = mText.size();
        return Skip(quote);
    }

private:
    static bool IsNamePart(char c)
    {
        return ascii::IsLetter(c) || ascii::IsDigit(c) || c == '_' || c == '-' || c == ':' ||
               c == '.';
    }

    [[nodiscard]] char Current() const { return mOffset < mText.size() ? mText[mOffset] : '\0'; }

    std::string_view mText;
    std::size_t mOffset;
};

} // namespace

Tag ReadTag(std::string_view text, std::size_t offset)
{
    TagReader reader(text, offset);
    if (!reader.Skip('<'))
        return {};
    Tag tag{reader.Skip('/') ? ETagShape::Closing : ETagShape::Bare, reader.ReadName(), 0};
    if (tag.name.empty())
        return {};
    for (bool separated = reader.SkipSpaces(); separated && reader.IsAtName();
         separated = reader.SkipSpaces()) {
        if (tag.shape == ETagShape::Closing || !reader.SkipAttribute())
            return {};
        tag.shape = ETagShape::Distinct;
    }
    if (tag.shape != ETagShape::Closing && reader.Skip('/'))
        tag.shape = ETagShape::Distinct;
    if (!reader.Skip('>'))
        return {};
    tag.end = reader.GetOffset();
    return tag;
}

namespace {

constexpr std::string_view kLessEntity = "&lt;";
constexpr std::string_view kGreaterEntity = "&gt;";

/// Groups the bytes that make another token when they come to stand side by side.
int JoinClass(char c)
{
    if (IsWordPart(c) || c == '.')
        return 1;
    if (std::string_view("<>=!|").find(c) != std::string_view::npos)
        return 2;
    if (c == '/' || c == '*')
        return 3;
    constexpr std::string_view kPairs = "'\"]-";
    const std::size_t pair = kPairs.find(c);
    return pair == std::string_view::npos ? 0 : 4 + static_cast<int>(pair);
}

bool WouldJoin(char left, char right)
{
    return JoinClass(left) != 0 && JoinClass(left) == JoinClass(right);
}

bool EndsOperand(ETokenKind kind)
{
    switch (kind) {
    case ETokenKind::QuotedName:
    case ETokenKind::OpenName:
    case ETokenKind::String:
    case ETokenKind::OpenString:
    case ETokenKind::Number:
    case ETokenKind::Word:
    case ETokenKind::Null:
    case ETokenKind::EndCase:
    case ETokenKind::RightParenthesis:
        return true;
    default:
        return false;
    }
}

} // namespace

void UntaggedText::Append(std::string_view piece, std::size_t sourceOffset)
{
    const bool continues =
        !mPieces.empty() &&
        mPieces.back().sourceOffset + (mText.size() - mPieces.back().offset) == sourceOffset;
    if (!continues)
        mPieces.push_back({mText.size(), sourceOffset});
    mText += piece;
}

std::size_t UntaggedText::GetSourceOffset(std::size_t offset) const
{
    const auto startsBehind = [](std::size_t wanted, const Piece& piece) {
        return wanted < piece.offset;
    };
    const auto behind = std::upper_bound(mPieces.begin(), mPieces.end(), offset, startsBehind);
    if (behind == mPieces.begin())
        return offset;
    const Piece& piece = *std::prev(behind);
    return piece.sourceOffset + (offset - piece.offset);
}

MarkupRemover::MarkupRemover(std::string_view text) : mText(text)
{}

UntaggedText MarkupRemover::Run()
{
    // Most expressions hold neither tags nor entities.
    if (mText.find('<') == std::string_view::npos && mText.find('&') == std::string_view::npos) {
        mResult.Append(mText, 0);
        return std::move(mResult);
    }
    FindClosingTags();
    for (std::size_t offset = 0; offset < mText.size();) {
        const Tag tag = ReadTag(mText, offset);
        if (IsMarkup(tag)) {
            offset = tag.end;
            mGap = true;
        } else {
            offset = CopyPiece(offset);
        }
    }
    mResult.Append({}, mText.size());
    return std::move(mResult);
}

std::size_t MarkupRemover::CopyPiece(std::size_t offset)
{
    const std::string_view rest = mText.substr(offset);
    for (const std::string_view entity : {kLessEntity, kGreaterEntity}) {
        if (rest.substr(0, entity.size()) == entity) {
            Emit(entity == kLessEntity ? "<" : ">", offset);
            mOperandBefore = false;
            return offset + entity.size();
        }
    }
    if (ascii::IsSpace(rest.front())) {
        Emit(rest.substr(0, 1), offset);
        return offset + 1;
    }
    const Token token = Lexer(rest).NextPiece();
    Emit(token.text, offset);
    if (token.kind != ETokenKind::Comment)
        mOperandBefore = EndsOperand(token.kind);
    return offset + token.text.size();
}

bool MarkupRemover::IsMarkup(const Tag& tag) const
{
    if (tag.shape != ETagShape::Bare)
        return tag.shape != ETagShape::None;
    if (!mOperandBefore)
        return true;
    const auto closing = mLastClosing.find(tag.name);
    return closing != mLastClosing.end() && closing->second > tag.end;
}

void MarkupRemover::FindClosingTags()
{
    for (std::size_t offset = 0; offset < mText.size();) {
        const Tag tag = ReadTag(mText, offset);
        if (tag.shape == ETagShape::Closing)
            mLastClosing[tag.name] = tag.end;
        if (tag.shape != ETagShape::None)
            offset = tag.end;
        else if (ascii::IsSpace(mText[offset]))
            ++offset;
        else
            offset += Lexer(mText.substr(offset)).NextPiece().text.size();
    }
}

void MarkupRemover::Emit(std::string_view piece, std::size_t sourceOffset)
{
    const std::string& written = mResult.GetText();
    if (mGap && !written.empty() && WouldJoin(written.back(), piece.front()))
        mResult.Append(" ", sourceOffset);
    mGap = false;
    mResult.Append(piece, sourceOffset);
}

} // namespace qe::expression
