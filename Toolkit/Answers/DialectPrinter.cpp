#include "Toolkit/Answers/DialectPrinter.h"

#include "Engine/Services/Characters.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

namespace qe::tool {

using expression::ENodeKind;
using expression::EPrecedence;
using expression::Node;

namespace {

/// Each level writes what is below it twice.
constexpr int kMostDoubled = 5;

bool IsCondition(ENodeKind kind)
{
    switch (kind) {
    case ENodeKind::Or:
    case ENodeKind::And:
    case ENodeKind::Not:
    case ENodeKind::Comparison:
    case ENodeKind::In:
    case ENodeKind::Like:
    case ENodeKind::Between:
    case ENodeKind::IsNull:
    case ENodeKind::Distinct:
        return true;
    default:
        return false;
    }
}

/// Returns whether the condition is always true or false.
bool IsNeverNull(ENodeKind kind)
{
    return kind == ENodeKind::IsNull || kind == ENodeKind::Distinct;
}

/// Returns 1 for TRUE, 0 for FALSE.
std::optional<char> ToTruth(const Node& node)
{
    if (node.GetKind() != ENodeKind::Name)
        return std::nullopt;
    const std::string word = ascii::ToLower(node.GetText());
    if (word == "true")
        return '1';
    return word == "false" ? std::optional('0') : std::nullopt;
}

} // namespace

/// Sets what the operands of a node stand for, for as long as it lives.
class DialectPrinter::RoleOfOperands
{
public:
    RoleOfOperands(DialectPrinter& printer, ERole role)
        : mPrinter(printer), mBefore(std::exchange(printer.mRole, role))
    {}
    RoleOfOperands(const RoleOfOperands&) = delete;
    RoleOfOperands& operator=(const RoleOfOperands&) = delete;
    ~RoleOfOperands() { mPrinter.mRole = mBefore; }

private:
    DialectPrinter& mPrinter;
    ERole mBefore;
};

void DialectPrinter::PrintCondition(const AQE_ExpressionNode& condition)
{
    const RoleOfOperands role(*this, ERole::Condition);
    Print(condition);
}

void DialectPrinter::PrintNode(const Node& node)
{
    const bool isCondition = mRole == ERole::Condition;
    if (mForms.booleans == ConditionForms::EBooleans::Numbers &&
        isCondition != IsCondition(node.GetKind()))
        return PrintConverted(node);
    PrintOwnForm(node);
}

void DialectPrinter::PrintConverted(const Node& node)
{
    if (mRole == ERole::Value)
        return PrintConditionAsValue(node);
    const RoleOfOperands role(*this, ERole::Value);
    PrintOperand(node, EPrecedence::Concatenation);
    PrintText(" = 1");
}

/// A condition that is null is neither true nor false.
void DialectPrinter::PrintConditionAsValue(const Node& node)
{
    const RoleOfOperands role(*this, ERole::Condition);
    PrintText("CASE WHEN ");
    PrintOwnForm(node);
    if (IsNeverNull(node.GetKind())) {
        PrintText(" THEN 1 ELSE 0 END");
        return;
    }
    if (++mDoubled > kMostDoubled)
        throw std::length_error("conditions stand for values within each other");
    PrintText(" THEN 1 WHEN NOT (");
    PrintOwnForm(node);
    PrintText(") THEN 0 END");
    --mDoubled;
}

void DialectPrinter::PrintOwnForm(const Node& node)
{
    if (const std::optional<char> truth = ToTruth(node);
        truth && mForms.booleans == ConditionForms::EBooleans::Numbers)
        return PrintText({&*truth, 1});
    switch (node.GetKind()) {
    case ENodeKind::String:
        return PrintString(node.GetText());
    case ENodeKind::Case:
        return PrintCase(node);
    case ENodeKind::When:
        return PrintWhen(node);
    default: {
        const RoleOfOperands role(*this, RoleBelow(node));
        return PrintWithOperands(node);
    }
    }
}

void DialectPrinter::PrintWithOperands(const Node& node)
{
    switch (node.GetKind()) {
    case ENodeKind::Concatenation:
        return PrintConcatenation(node);
    case ENodeKind::Distinct:
        return PrintDistinct(node);
    case ENodeKind::Name:
    case ENodeKind::Call:
        if (!PrintCall(node))
            Printer::PrintNode(node);
        return;
    case ENodeKind::Cast:
        return PrintCast(node);
    default:
        return Printer::PrintNode(node);
    }
}

DialectPrinter::ERole DialectPrinter::RoleBelow(const Node& node) const
{
    switch (node.GetKind()) {
    case ENodeKind::Or:
    case ENodeKind::And:
    case ENodeKind::Not:
        return ERole::Condition;
    default:
        return ERole::Value;
    }
}

/// Behind a value that is compared, WHEN has values as well.
void DialectPrinter::PrintCase(const Node& choice)
{
    const bool isCompared = choice.GetOperands().front()->GetKind() != ENodeKind::When;
    const ERole before = std::exchange(mWhenRole, isCompared ? ERole::Value : ERole::Condition);
    const RoleOfOperands role(*this, ERole::Value);
    Printer::PrintNode(choice);
    mWhenRole = before;
}

void DialectPrinter::PrintWhen(const Node& branch)
{
    const RoleOfOperands role(*this, mWhenRole);
    PrintText("WHEN ");
    PrintNode(*branch.GetOperands().front());
    PrintText(" THEN ");
    mRole = ERole::Value;
    PrintNode(*branch.GetOperands().back());
}

void DialectPrinter::PrintCast(const Node& cast)
{
    const bool isOwn = mSource == ESource::SameDialect;
    PrintText("CAST(");
    PrintNode(*cast.GetOperands().front());
    PrintText(" AS " + (isOwn ? cast.GetText() : WriteType(cast.GetText(), mForms.types)) + ')');
}

void DialectPrinter::PrintString(std::string_view text)
{
    const bool isNational = std::any_of(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80U; });
    std::string literal(isNational ? mForms.nationalPrefix : std::string_view());
    literal += '\'';
    for (const char c : text) {
        if (mForms.escapedLetters.find(c) != std::string_view::npos)
            literal += '\\';
        literal += c;
        if (c == '\'')
            literal += c;
    }
    PrintText(literal + '\'');
}

/// Dialects do not agree whether "||" binds more tightly than "+".
void DialectPrinter::PrintConcatenation(const Node& node)
{
    const bool isPlus = mForms.concatenation == ConditionForms::EConcatenation::Plus;
    if (mForms.concatenation == ConditionForms::EConcatenation::Function) {
        PrintText("CONCAT");
        return PrintList(node, 0);
    }
    for (const auto& operand : node.GetOperands()) {
        if (operand != node.GetOperands().front())
            PrintText(isPlus ? " + " : " || ");
        if (isPlus)
            PrintAsText(*operand);
        else
            PrintOperand(*operand, EPrecedence::Negation);
    }
}

/// A number beside "+" would make an addition of it.
void DialectPrinter::PrintAsText(const Node& operand)
{
    if (operand.GetKind() == ENodeKind::String)
        return PrintNode(operand);
    PrintText("CAST(");
    PrintNode(operand);
    PrintText(" AS nvarchar(4000))");
}

void DialectPrinter::PrintDistinct(const Node& node)
{
    PrintForm(node.GetOperators().empty() ? mForms.isNotSame : mForms.isSame, node);
}

bool DialectPrinter::PrintCall(const Node& node)
{
    const std::optional<ECall> call = FindCall(node.GetText(), node.GetOperands().size());
    if (!call || mSource == ESource::SameDialect)
        return false;
    const std::string_view form = mForms.calls[static_cast<std::size_t>(*call)];
    if (form.empty())
        return false;
    PrintForm(form, node);
    return true;
}

void DialectPrinter::PrintForm(std::string_view form, const Node& node)
{
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] != '$') {
            PrintText(form.substr(i, 1));
            continue;
        }
        const auto operand = static_cast<std::size_t>(form[++i] - '1');
        PrintOperand(*node.GetOperands()[operand], EPrecedence::Concatenation);
    }
}

} // namespace qe::tool
