#ifndef ENGINE_EXPRESSION_INFIXRULE_H
#define ENGINE_EXPRESSION_INFIXRULE_H

#include "Engine/Expression/NodeKind.h"
#include "Engine/Expression/Token.h"

namespace qe::expression {

/// An operator that stands between two operands.
struct InfixRule
{
    ETokenKind token;
    EOperator op;
    /// The kind of node that holds a row of such operators.
    ENodeKind node;
};

/// Gives the rule for a token, or null when it is no such operator. Rules live forever.
[[nodiscard]] const InfixRule* FindInfixRule(ETokenKind token) noexcept;

/// Tells whether it makes no difference how a row of such operators is grouped.
[[nodiscard]] bool IsAssociative(ENodeKind kind) noexcept;

} // namespace qe::expression

#endif
