#include "Engine/Expression/InfixRule.h"

#include <algorithm>
#include <array>

namespace qe::expression {

namespace {

constexpr std::array<InfixRule, 13> infixRules{
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

const InfixRule* FindInfixRule(ETokenKind token) noexcept
{
    const auto* const rule =
        std::find_if(infixRules.begin(), infixRules.end(),
                     [token](const InfixRule& candidate) { return candidate.token == token; });
    return rule == infixRules.end() ? nullptr : rule;
}

bool IsAssociative(ENodeKind kind) noexcept
{
    return kind == ENodeKind::Or || kind == ENodeKind::And || kind == ENodeKind::Concatenation;
}

} // namespace qe::expression
