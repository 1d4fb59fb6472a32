#include "Engine/Expression/Operators.h"

#include <algorithm>
#include <array>

namespace qe::expression {

namespace {

constexpr std::array<InfixRule, 13> kInfixRules{
    {{ETokenKind::Or, EOperator::Or, ENodeKind::Or},
     {ETokenKind::And, EOperator::And, ENodeKind::And},
     {ETokenKind::Equal, EOperator::Equal, ENodeKind::Comparison},
     {ETokenKind::NotEqual, EOperator::NotEqual, ENodeKind::Comparison},
     {ETokenKind::Less, EOperator::Less, ENodeKind::Comparison},
     {ETokenKind::LessOrEqual, EOperator::LessOrEqual, ENodeKind::Comparison},
     {ETokenKind::Greater, EOperator::Greater, ENodeKind::Comparison},
     {ETokenKind::GreaterOrEqual, EOperator::GreaterOrEqual, ENodeKind::Comparison},
     {ETokenKind::Concatenate, EOperator::Concatenate, ENodeKind::Concatenation},
     {ETokenKind::Plus, EOperator::Plus, ENodeKind::Sum},
     {ETokenKind::Minus, EOperator::Minus, ENodeKind::Sum},
     {ETokenKind::Times, EOperator::Times, ENodeKind::Product},
     {ETokenKind::Divide, EOperator::Divide, ENodeKind::Product}}};

} // namespace

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
    case ENodeKind::Distinct:
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

const InfixRule* FindInfixRule(ETokenKind token) noexcept
{
    const auto* const rule =
        std::find_if(kInfixRules.begin(), kInfixRules.end(),
                     [token](const InfixRule& candidate) { return candidate.token == token; });
    return rule == kInfixRules.end() ? nullptr : rule;
}

bool IsAssociative(ENodeKind kind) noexcept
{
    return kind == ENodeKind::Or || kind == ENodeKind::And || kind == ENodeKind::Concatenation;
}

ENodeKind PredicateOf(ETokenKind keyword) noexcept
{
    switch (keyword) {
    case ETokenKind::In:
        return ENodeKind::In;
    case ETokenKind::Like:
        return ENodeKind::Like;
    case ETokenKind::Between:
        return ENodeKind::Between;
    default:
        return ENodeKind::IsNull;
    }
}

} // namespace qe::expression
