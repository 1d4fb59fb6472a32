#ifndef ENGINE_EXPRESSION_LEXER_H
#define ENGINE_EXPRESSION_LEXER_H

#include "Engine/Services/Characters.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qe::expression {

enum class ETokenKind : std::uint8_t
{
    End,
    /// A name between brackets or double quotes, with them.
    QuotedName,
    /// A text between single quotes, with them.
    String,
    /// "-- to the end of the line" or "/* to its own end */".
    Comment,
    /// What the text ends in before it is closed.
    OpenName,
    OpenString,
    OpenComment,
    Number,
    /// A name without brackets or quotes that is no keyword.
    Word,
    And,
    Or,
    Not,
    In,
    Like,
    Escape,
    Between,
    Is,
    Null,
    Case,
    When,
    Then,
    Else,
    /// The keyword that closes CASE.
    EndCase,
    Cast,
    As,
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Concatenate,
    Plus,
    Minus,
    Times,
    Divide,
    LeftParenthesis,
    RightParenthesis,
    Comma,
    Dot,
    /// A character that begins no token.
    Unknown,
};

struct Token
{
    ETokenKind kind = ETokenKind::End;
    /// The token as it is written; lives as long as the text.
    std::string_view text;
    /// Where the token begins, in bytes.
    std::size_t offset = 0;
};

/// Returns what stands between the marks of a quoted name or string, in which the closing mark is
/// doubled.
[[nodiscard]] std::string GetValue(const Token& token);

/// Returns how an error message shows a token: between quotes, cut between two characters when it
/// is long.
[[nodiscard]] std::string Describe(const Token& token);

/// Cuts an expression into tokens. Any bytes will do; those above 0x7F count as letters, so that
/// names may be written in any script. Keywords are known in any case.
class Lexer
{
public:
    /// `text` must outlive the lexer.
    explicit Lexer(std::string_view text) : mText(text) {}

    /// Returns the next token that is no comment; at the end of the text End, again and again.
    [[nodiscard]] Token Next();
    /// Returns the next token or comment.
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

/// Returns the keyword that `word` is, in any case, or Word.
[[nodiscard]] ETokenKind KeywordOf(std::string_view word) noexcept;

/// Returns the offset behind the quoted name or string that begins at `offset`, whose closing mark,
/// doubled, stands for itself; npos when it is not closed.
[[nodiscard]] std::size_t FindEndOfQuoted(std::string_view text, std::size_t offset,
                                          char close) noexcept;

} // namespace qe::expression

#endif
