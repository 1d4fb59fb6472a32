#include "Engine/Expression/NodeKind.h"

namespace qe::expression {

EPrecedence PrecedenceOf(ENodeKind kind) noexcept
{
    switch (kind) {
    case ENodeKind::Or:
        return EPrecedence::Or;
    case ENodeKind::And:
        return EPrecedence::And;
    case ENodeKind::Not:
        return EPrecedence::Not;
    case ENodeKind::Comparison:
    case ENodeKind::In:
    case ENodeKind::Like:
    case ENodeKind::Between:
    case ENodeKind::IsNull:
        return EPrecedence::Predicate;
    case ENodeKind::Concatenation:
        return EPrecedence::Concatenation;
    case ENodeKind::Sum:
        return EPrecedence::Sum;
    case ENodeKind::Product:
        return EPrecedence::Product;
    case ENodeKind::Negation:
        return EPrecedence::Negation;
    default:
        return EPrecedence::Primary;
    }
}

} // namespace qe::expression
