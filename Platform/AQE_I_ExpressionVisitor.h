#ifndef PLATFORM_AQE_I_EXPRESSIONVISITOR_H
#define PLATFORM_AQE_I_EXPRESSIONVISITOR_H

#include "QEENGINE_EXPORT.h"

class AQE_ExpressionNode;

/// Walks an expression node by node.
class QEENGINE_EXPORT AQE_I_ExpressionVisitor
{
public:
    virtual ~AQE_I_ExpressionVisitor();

    /// Is called by AQE_ExpressionNode::Accept with the node; the visitor decides whether and
    /// when it goes on to the children.
    virtual void Visit(const AQE_ExpressionNode& node) = 0;
};

#endif
