#include "Engine/Expression/Printer.h"

#include "AQE_ExpressionVisitorString.h"
#include "AQE_I_ExpressionVisitor.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace qe::expression {
namespace {

/// The operators in the order of EOperator.
constexpr std::array<std::string_view, 14> kOperatorTexts{" OR ", " AND ", " = ",  " <> ", " < ",
                                                          " <= ", " > ",   " >= ", " || ", " + ",
                                                          " - ",  " * ",   " / ",  " NOT"};

std::string_view GetText(EOperator op)
{
    return kOperatorTexts[static_cast<std::size_t>(op)];
}

} // namespace

Printer::~Printer() = default;

void Printer::Print(const AQE_ExpressionNode& node)
{
    if (const auto* const known = dynamic_cast<const Node*>(&node))
        return PrintNode(*known);
    if (node.GetNodeType() == static_cast<int>(ENodeKind::Reference))
        return PrintReference(node);
    for (const AQE_ExpressionNode* child : node.GetChildren())
        Print(*child);
}

void Printer::PrintReference(const AQE_ExpressionNode& reference)
{
    const std::vector<I18NString> names = reference.GetNamePath();
    const std::size_t first = names.size() > 1 && names.front().View().empty() ? 1 : 0;
    for (std::size_t i = first; i < names.size(); ++i) {
        if (i > first)
            mOut += '.';
        PrintQuoted(names[i].View(), '[', ']');
    }
}

void Printer::PrintNode(const Node& node)
{
    switch (node.GetKind()) {
    case ENodeKind::Reference:
        return PrintReference(node);
    case ENodeKind::String:
        return PrintQuoted(node.GetText(), '\'', '\'');
    case ENodeKind::Expression:
    case ENodeKind::Number:
    case ENodeKind::Name:
        mOut += node.GetText();
        return;
    case ENodeKind::Call:
        mOut += node.GetText();
        return PrintList(node, 0);
    case ENodeKind::Case:
        return PrintCase(node);
    case ENodeKind::When:
        return PrintWhen(node);
    case ENodeKind::Cast:
        return PrintCast(node);
    case ENodeKind::Not:
        mOut += "NOT ";
        return PrintOperand(*node.GetOperands().front(), EPrecedence::Not);
    case ENodeKind::Negation:
        return PrintNegation(node);
    case ENodeKind::In:
    case ENodeKind::Like:
    case ENodeKind::Between:
    case ENodeKind::IsNull:
    case ENodeKind::Distinct:
        return PrintPredicate(node);
    default:
        return PrintInfix(node);
    }
}

void Printer::PrintOperand(const Node& operand, EPrecedence loosest)
{
    const bool enclose = PrecedenceOf(operand.GetKind()) < loosest;
    if (enclose)
        mOut += '(';
    PrintNode(operand);
    if (enclose)
        mOut += ')';
}

void Printer::PrintInfix(const Node& node)
{
    const EPrecedence loosest = TighterThan(PrecedenceOf(node.GetKind()));
    const auto& operands = node.GetOperands();
    PrintOperand(*operands.front(), loosest);
    for (std::size_t i = 1; i < operands.size(); ++i) {
        mOut += GetText(node.GetOperators()[i - 1]);
        PrintOperand(*operands[i], loosest);
    }
}

/// Keeps two signs apart, since "--" begins a comment.
void Printer::PrintNegation(const Node& node)
{
    const Node& operand = *node.GetOperands().front();
    mOut += operand.GetKind() == ENodeKind::Negation ? "- " : "-";
    PrintOperand(operand, EPrecedence::Negation);
}

void Printer::PrintPredicate(const Node& node)
{
    constexpr EPrecedence kLoosest = TighterThan(EPrecedence::Predicate);
    const std::string_view negation = node.GetOperators().empty() ? "" : GetText(EOperator::Not);
    const auto& operands = node.GetOperands();
    PrintOperand(*operands.front(), kLoosest);
    if (node.GetKind() == ENodeKind::IsNull) {
        mOut += " IS";
        mOut += negation;
        mOut += " NULL";
        return;
    }
    if (node.GetKind() == ENodeKind::Distinct) {
        mOut += " IS";
        mOut += negation;
        mOut += " DISTINCT FROM ";
        return PrintOperand(*operands[1], kLoosest);
    }
    mOut += negation;
    if (node.GetKind() == ENodeKind::In) {
        mOut += " IN ";
        return PrintList(node, 1);
    }
    const bool isLike = node.GetKind() == ENodeKind::Like;
    mOut += isLike ? " LIKE " : " BETWEEN ";
    PrintOperand(*operands[1], kLoosest);
    if (operands.size() > 2) {
        mOut += isLike ? " ESCAPE " : " AND ";
        PrintOperand(*operands[2], kLoosest);
    }
}

/// Only the value that is compared stands before the first WHEN.
void Printer::PrintCase(const Node& choice)
{
    mOut += "CASE";
    const char* beforeOther = " ";
    for (const auto& operand : choice.GetOperands()) {
        mOut += operand->GetKind() == ENodeKind::When ? " " : beforeOther;
        PrintNode(*operand);
        beforeOther = " ELSE ";
    }
    mOut += " END";
}

void Printer::PrintWhen(const Node& branch)
{
    mOut += "WHEN ";
    PrintNode(*branch.GetOperands().front());
    mOut += " THEN ";
    PrintNode(*branch.GetOperands().back());
}

void Printer::PrintCast(const Node& cast)
{
    mOut += "CAST(";
    PrintNode(*cast.GetOperands().front());
    mOut += " AS " + cast.GetText() + ')';
}

void Printer::PrintList(const Node& node, std::size_t first)
{
    mOut += '(';
    for (std::size_t i = first; i < node.GetOperands().size(); ++i) {
        if (i > first)
            mOut += ", ";
        PrintNode(*node.GetOperands()[i]);
    }
    mOut += ')';
}

void Printer::PrintQuoted(std::string_view value, char open, char close)
{
    mOut += open;
    for (const char c : value) {
        mOut += c;
        if (c == close)
            mOut += c;
    }
    mOut += close;
}

} // namespace qe::expression

// Defined here, so that all modules share one virtual table and one type description.
AQE_I_ExpressionVisitor::~AQE_I_ExpressionVisitor() = default;

AQE_ExpressionVisitorString::AQE_ExpressionVisitorString(const I18NLocale&)
{}

AQE_ExpressionVisitorString::~AQE_ExpressionVisitorString() = default;

void AQE_ExpressionVisitorString::Visit(const AQE_ExpressionNode& node)
{
    qe::expression::Printer(mText).Print(node);
}

void AQE_ExpressionVisitorString::GetText(I18NString& text) const
{
    text = mText;
}
