#ifndef ENGINE_EXPRESSION_OPERATORS_H
#define ENGINE_EXPRESSION_OPERATORS_H

#include "Engine/Expression/Lexer.h"
#include "Engine/Expression/Node.h"

#include <cstdint>

namespace qe::expression {

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

/// Returns how tightly a node of that kind holds its operands.
[[nodiscard]] EPrecedence PrecedenceOf(ENodeKind kind) noexcept;

/// Returns the next tighter precedence. `precedence` is not Primary.
[[nodiscard]] constexpr EPrecedence TighterThan(EPrecedence precedence) noexcept
{
    return static_cast<EPrecedence>(static_cast<std::uint8_t>(precedence) + 1);
}

/// An operator that stands between two operands.
struct InfixRule
{
    ETokenKind token;
    EOperator op;
    /// The kind of node that holds a chain of such operators.
    ENodeKind node;
};

/// Returns the rule for a token, or null when it is no such operator. Rules live forever.
[[nodiscard]] const InfixRule* FindInfixRule(ETokenKind token) noexcept;

/// Returns whether it makes no difference how a chain of such operators is grouped.
[[nodiscard]] bool IsAssociative(ENodeKind kind) noexcept;

/// Returns the kind of predicate that begins with the keyword: In, Like or Between, and IsNull for
/// any other.
[[nodiscard]] ENodeKind PredicateOf(ETokenKind keyword) noexcept;

} // namespace qe::expression

#endif
