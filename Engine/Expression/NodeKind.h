#ifndef ENGINE_EXPRESSION_NODEKIND_H
#define ENGINE_EXPRESSION_NODEKIND_H

#include <cstdint>

namespace qe::expression {

/// The kinds of expression nodes; AQE_ExpressionNode::GetNodeType gives the number. Callers of
/// the library know the number 10.
enum class ENodeKind : std::uint8_t
{
    Expression = 1,
    Or = 2,
    And = 3,
    Not = 4,
    Comparison = 5,
    Concatenation = 6,
    Sum = 7,
    Product = 8,
    Negation = 9,
    Reference = 10,
    String = 11,
    Number = 12,
    Name = 13,
    Call = 14,
    In = 15,
    Like = 16,
    Between = 17,
    IsNull = 18,
    Case = 19,
    When = 20,
    Cast = 21,
};

/// What stands between two operands, and the NOT inside NOT IN, NOT LIKE, NOT BETWEEN and
/// IS NOT NULL.
enum class EOperator : std::uint8_t
{
    Or,
    And,
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
    Not,
};

/// How tightly the parts of an expression bind, from the loosest to the tightest.
enum class EPrecedence : std::uint8_t
{
    Or,
    And,
    Not,
    Predicate,
    Concatenation,
    Sum,
    Product,
    Negation,
    Primary,
};

/// Gives how tightly a node of that kind holds its operands.
[[nodiscard]] EPrecedence PrecedenceOf(ENodeKind kind) noexcept;

/// Gives the next tighter precedence. `precedence` is not Primary.
[[nodiscard]] constexpr EPrecedence TighterThan(EPrecedence precedence) noexcept
{
    return static_cast<EPrecedence>(static_cast<std::uint8_t>(precedence) + 1);
}

} // namespace qe::expression

#endif
