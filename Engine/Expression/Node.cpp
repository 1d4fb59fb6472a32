#include "Engine/Expression/Node.h"

#include "AQE_I_ExpressionVisitor.h"

#include <iterator>
#include <utility>

namespace qe::expression {

Node::Node(ENodeKind kind, std::string text) : mKind(kind), mText(std::move(text))
{}

Node::~Node() = default;

int Node::GetNodeType() const
{
    return static_cast<int>(mKind);
}

std::vector<AQE_ExpressionNode*> Node::GetChildren() const
{
    std::vector<AQE_ExpressionNode*> children;
    children.reserve(mOperands.size());
    for (const auto& operand : mOperands)
        children.push_back(operand.get());
    return children;
}

std::vector<I18NString> Node::GetNamePath() const
{
    return {};
}

amd_id Node::GetReferencedId() const
{
    return {};
}

amd_id Node::GetQuerySubjectId() const
{
    return {};
}

void Node::SetNamePath(const std::vector<I18NString>&)
{}

void Node::SetQuerySubjectId(const amd_id&)
{}

void Node::AddOperand(std::unique_ptr<Node> operand)
{
    mOperands.push_back(std::move(operand));
}

void Node::Absorb(Node& other)
{
    mOperators.insert(mOperators.end(), other.mOperators.begin(), other.mOperators.end());
    mOperands.insert(mOperands.end(), std::make_move_iterator(other.mOperands.begin()),
                     std::make_move_iterator(other.mOperands.end()));
    other.mOperators.clear();
    other.mOperands.clear();
}

ReferenceNode::ReferenceNode(std::vector<I18NString> names)
    : Node(ENodeKind::Reference), mNames(std::move(names))
{}

ReferenceNode::~ReferenceNode() = default;

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

AQE_ExpressionNode::~AQE_ExpressionNode() = default;

void AQE_ExpressionNode::Accept(AQE_I_ExpressionVisitor& visitor) const
{
    visitor.Visit(*this);
}
