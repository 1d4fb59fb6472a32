#ifndef TOOLKIT_IMPORT_DIALECTS_TOKENCURSOR_H
#define TOOLKIT_IMPORT_DIALECTS_TOKENCURSOR_H

#include "Toolkit/Import/Ddl/Declarations.h"
#include "Toolkit/Import/Ddl/SqlTokens.h"

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// A place in the tokens of a statement, from which it is read on. Keywords are given in lower
/// case.
class TokenCursor
{
public:
    /// Refers to the tokens.
    TokenCursor(std::span<const SqlToken> tokens, EDialect dialect)
        : mTokens(tokens), mDialect(dialect)
    {}

    [[nodiscard]] EDialect GetDialect() const { return mDialect; }
    [[nodiscard]] bool IsAtEnd() const { return mPosition >= mTokens.size(); }
    /// Returns the token that is `ahead` tokens further; one of the kind End behind the last.
    [[nodiscard]] SqlToken Peek(std::size_t ahead = 0) const;
    [[nodiscard]] bool IsAt(std::string_view word) const { return Peek().IsWord(word); }
    [[nodiscard]] bool IsAtSign(char sign) const { return Peek().IsSign(sign); }
    [[nodiscard]] bool IsAtAny(std::initializer_list<std::string_view> words) const;
    /// Goes on behind the next token; an opening parenthesis is skipped with what it holds.
    void Advance();

    /// Skips the words if they all come next. Returns whether they did.
    bool Skip(std::initializer_list<std::string_view> words);
    bool Skip(std::string_view word) { return Skip({word}); }
    bool SkipAny(std::initializer_list<std::string_view> words);
    bool SkipSign(char sign);
    /// Goes on to the next sign outside of parentheses, or to the end.
    void GoTo(char sign);

    /// Returns the name that comes next; nothing when none does.
    [[nodiscard]] std::optional<std::string> ReadName();
    /// Returns the names that come next, with dots between them; nothing when none does.
    [[nodiscard]] std::vector<std::string> ReadParts();
    /// Returns the name of an object, of whose parts the last two count.
    [[nodiscard]] std::optional<ObjectName> ReadObjectName();
    /// Returns what stands in the parentheses that come next, and goes on behind them; nothing, and
    /// stays, when none come.
    [[nodiscard]] std::optional<TokenCursor> ReadParentheses();
    /// Returns the pieces between commas outside of parentheses, up to the end.
    [[nodiscard]] std::vector<TokenCursor> SplitAtCommas() const;
    /// Returns the names between commas; nothing when one of them is more than a name.
    [[nodiscard]] std::optional<std::vector<std::string>> ReadNames() const;

private:
    /// Returns the position of the closing parenthesis; behind the last token when there is none.
    [[nodiscard]] std::size_t FindClosing(std::size_t opening) const;

    std::span<const SqlToken> mTokens;
    EDialect mDialect;
    std::size_t mPosition = 0;
};

} // namespace qe::tool

#endif
