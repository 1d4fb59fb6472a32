#include "Toolkit/Import/Dialects/TokenCursor.h"

#include <algorithm>
#include <utility>

namespace qe::tool {

SqlToken TokenCursor::Peek(std::size_t ahead) const
{
    return mPosition + ahead < mTokens.size() ? mTokens[mPosition + ahead] : SqlToken();
}

bool TokenCursor::IsAtAny(std::initializer_list<std::string_view> words) const
{
    return std::any_of(words.begin(), words.end(),
                       [this](std::string_view word) { return IsAt(word); });
}

void TokenCursor::Advance()
{
    if (IsAtEnd())
        return;
    if (IsAtSign('('))
        mPosition = FindClosing(mPosition);
    ++mPosition;
}

bool TokenCursor::Skip(std::initializer_list<std::string_view> words)
{
    std::size_t ahead = 0;
    for (const std::string_view word : words)
        if (!Peek(ahead++).IsWord(word))
            return false;
    mPosition += words.size();
    return true;
}

bool TokenCursor::SkipAny(std::initializer_list<std::string_view> words)
{
    const bool isThere = IsAtAny(words);
    mPosition += isThere ? 1 : 0;
    return isThere;
}

bool TokenCursor::SkipSign(char sign)
{
    const bool isThere = IsAtSign(sign);
    mPosition += isThere ? 1 : 0;
    return isThere;
}

void TokenCursor::GoTo(char sign)
{
    while (!IsAtEnd() && !IsAtSign(sign))
        Advance();
}

std::optional<std::string> TokenCursor::ReadName()
{
    const SqlToken token = Peek();
    if (token.kind != EToken::Word && token.kind != EToken::QuotedName &&
        token.kind != EToken::Text)
        return std::nullopt;
    ++mPosition;
    return ToName(token, mDialect);
}

std::vector<std::string> TokenCursor::ReadParts()
{
    std::vector<std::string> parts;
    do {
        std::optional<std::string> part = ReadName();
        // Between two dots stands the usual schema: "shop..orders".
        if (!part && (parts.empty() || !IsAtSign('.')))
            return {};
        parts.push_back(part.value_or(""));
    } while (SkipSign('.'));
    return parts;
}

std::optional<ObjectName> TokenCursor::ReadObjectName()
{
    const std::size_t first = mPosition;
    std::vector<std::string> parts = ReadParts();
    if (parts.empty())
        return std::nullopt;
    ObjectName name{.name = std::move(parts.back())};
    if (parts.size() > 1)
        name.schema = std::move(parts[parts.size() - 2]);
    name.quoted = ListQuotedNames(mTokens.subspan(first, mPosition - first), mDialect);
    return name;
}

std::optional<TokenCursor> TokenCursor::ReadParentheses()
{
    if (!IsAtSign('('))
        return std::nullopt;
    const std::size_t closing = FindClosing(mPosition);
    TokenCursor inner(mTokens.subspan(mPosition + 1, closing - mPosition - 1), mDialect);
    mPosition = std::min(closing + 1, mTokens.size());
    return inner;
}

std::vector<TokenCursor> TokenCursor::SplitAtCommas() const
{
    std::vector<TokenCursor> pieces;
    TokenCursor walker = *this;
    while (!walker.IsAtEnd()) {
        const std::size_t begin = walker.mPosition;
        walker.GoTo(',');
        const std::size_t end = std::min(walker.mPosition, mTokens.size());
        if (end > begin)
            pieces.emplace_back(mTokens.subspan(begin, end - begin), mDialect);
        walker.SkipSign(',');
    }
    return pieces;
}

std::optional<std::vector<std::string>> TokenCursor::ReadNames() const
{
    std::vector<std::string> names;
    for (TokenCursor piece : SplitAtCommas()) {
        std::optional<std::string> name = piece.ReadName();
        if (piece.Skip("collate"))
            static_cast<void>(piece.ReadName());
        piece.SkipAny({"asc", "desc"});
        if (!name || !piece.IsAtEnd())
            return std::nullopt;
        names.push_back(std::move(*name));
    }
    if (names.empty())
        return std::nullopt;
    return names;
}

std::size_t TokenCursor::FindClosing(std::size_t opening) const
{
    std::size_t depth = 0;
    for (std::size_t i = opening; i < mTokens.size(); ++i) {
        if (mTokens[i].IsSign('('))
            ++depth;
        else if (mTokens[i].IsSign(')') && --depth == 0)
            return i;
    }
    return mTokens.size();
}

} // namespace qe::tool
