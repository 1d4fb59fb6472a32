#ifndef ENGINE_EXPRESSION_LEXER_H
#define ENGINE_EXPRESSION_LEXER_H

#include "Engine/Expression/Token.h"
#include "Engine/Services/AsciiText.h"

#include <cstddef>
#include <string_view>

namespace qe::expression {

/// Cuts an expression into tokens. Any bytes will do; those above 0x7F count as letters, so that
/// names may be written in any script. Keywords are known in any case.
class Lexer
{
public:
    /// `text` must outlive the lexer.
    explicit Lexer(std::string_view text) : mText(text) {}

    /// Gives the next token that is no comment; at the end of the text End, again and again.
    [[nodiscard]] Token Next();
    /// Gives the next token or comment.
    [[nodiscard]] Token NextPiece();

private:
    [[nodiscard]] Token Take(ETokenKind kind, std::size_t length);
    [[nodiscard]] Token TakeComment();
    [[nodiscard]] Token TakeQuoted(char close, ETokenKind closed, ETokenKind open);
    [[nodiscard]] Token TakeWord();
    [[nodiscard]] Token TakeNumber();
    [[nodiscard]] Token TakeSymbol();
    [[nodiscard]] std::size_t SkipDigits(std::size_t offset) const;
    [[nodiscard]] bool IsDigitAt(std::size_t offset) const;

    std::string_view mText;
    std::size_t mOffset = 0;
};

/// Returns whether a name without brackets may begin with the byte. Every byte of a character
/// beyond ASCII may.
[[nodiscard]] constexpr bool IsWordStart(char c) noexcept
{
    return ascii::IsLetter(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

/// Returns whether a name without brackets may go on with the byte.
[[nodiscard]] constexpr bool IsWordPart(char c) noexcept
{
    return IsWordStart(c) || ascii::IsDigit(c) || c == '$' || c == '#';
}

/// Gives the keyword that `word` is, in any case, or Word.
[[nodiscard]] ETokenKind KeywordOf(std::string_view word) noexcept;

/// Gives the offset behind the quoted name or string that begins at `offset`, whose closing mark,
/// doubled, stands for itself; npos when it is not closed.
[[nodiscard]] std::size_t FindEndOfQuoted(std::string_view text, std::size_t offset,
                                          char close) noexcept;

} // namespace qe::expression

#endif
