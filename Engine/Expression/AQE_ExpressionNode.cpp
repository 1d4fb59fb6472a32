#include "AQE_ExpressionNode.h"

#include "AQE_I_ExpressionVisitor.h"

AQE_ExpressionNode::~AQE_ExpressionNode() = default;

void AQE_ExpressionNode::Accept(AQE_I_ExpressionVisitor& visitor) const
{
    visitor.Visit(*this);
}
