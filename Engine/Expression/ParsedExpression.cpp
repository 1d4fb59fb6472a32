#include "Engine/Expression/ParsedExpression.h"

#include <utility>

namespace qe::expression {

ParsedExpression::ParsedExpression(std::unique_ptr<Node> top) : mTop(std::move(top))
{}

ParsedExpression::~ParsedExpression() = default;

int ParsedExpression::GetNodeType() const
{
    return static_cast<int>(ENodeKind::Expression);
}

std::vector<AQE_ExpressionNode*> ParsedExpression::GetChildren() const
{
    return {mTop.get()};
}

} // namespace qe::expression
