#ifndef ENGINE_EXPRESSION_TOKEN_H
#define ENGINE_EXPRESSION_TOKEN_H

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

/// Gives what stands between the marks of a quoted name or string, in which the closing mark is
/// doubled.
[[nodiscard]] std::string GetValue(const Token& token);

/// Shows a token in an error message: between quotes, cut between two characters when it is long.
[[nodiscard]] std::string Describe(const Token& token);

} // namespace qe::expression

#endif
