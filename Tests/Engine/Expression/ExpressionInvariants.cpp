#include "Tests/Engine/Expression/ExpressionInvariants.h"

#include "AQE_ExpressionVisitorString.h"
#include "Engine/Expression/Node.h"
#include "Engine/Expression/ParseReport.h"
#include "HBNException.h"

std::unique_ptr<AQE_Expression> ParseText(const std::string& text)
{
    return std::unique_ptr<AQE_Expression>(
        AQE_Expression::Create(text, nullptr, "test", I18NLocale("de")));
}

std::string PrintTree(const AQE_ExpressionNode& node)
{
    AQE_ExpressionVisitorString visitor{I18NLocale("de")};
    node.Accept(visitor);
    I18NString text("to be replaced");
    visitor.GetText(text);
    return text.ToStdString();
}

std::string DescribeTree(const AQE_ExpressionNode& node)
{
    std::string text = std::to_string(node.GetNodeType());
    if (const auto* const known = dynamic_cast<const qe::expression::Node*>(&node)) {
        text += '"' + known->GetText() + '"';
        for (const auto op : known->GetOperators())
            text += ' ' + std::to_string(static_cast<int>(op));
    }
    for (const I18NString& name : node.GetNamePath())
        text += '[' + name.ToStdString() + ']';
    text += '(';
    for (const AQE_ExpressionNode* child : node.GetChildren())
        text += DescribeTree(*child) + ',';
    return text + ')';
}

std::vector<AQE_ExpressionNode*> CollectReferences(AQE_ExpressionNode& node)
{
    std::vector<AQE_ExpressionNode*> references;
    if (node.GetNodeType() == 10)
        references.push_back(&node);
    for (AQE_ExpressionNode* child : node.GetChildren())
        for (AQE_ExpressionNode* reference : CollectReferences(*child))
            references.push_back(reference);
    return references;
}

std::string FindBrokenInvariant(const std::string& text)
{
    const std::string untagged = AQE_Expression::GetUntaggedExpression(text).ToStdString();
    const auto report = qe::expression::FindReferences(text);
    std::unique_ptr<AQE_Expression> tree;
    try {
        tree = ParseText(untagged);
    } catch (const HBNException&) {
        return report.error ? "" : "the check accepts what the parser refuses";
    }
    if (report.error)
        return "the check refuses what the parser accepts";
    if (report.references.size() != CollectReferences(*tree).size())
        return "the check and the tree differ in references";
    const std::string printed = PrintTree(*tree);
    if (AQE_Expression::GetUntaggedExpression(printed).ToStdString() != printed)
        return "untagging changes printed text: " + printed;
    const auto again = ParseText(printed);
    if (DescribeTree(*again) != DescribeTree(*tree))
        return "printed text reads as another tree: " + printed;
    return PrintTree(*again) == printed ? "" : "printing is not stable: " + printed;
}
