#ifndef PLATFORM_AQE_EXPRESSIONNODE_H
#define PLATFORM_AQE_EXPRESSIONNODE_H

#include "I18NString.h"
#include "QEENGINE_EXPORT.h"
#include "amd_id.h"

#include <vector>

class AQE_I_ExpressionVisitor;

/// One node of a parsed expression.
class QEENGINE_EXPORT AQE_ExpressionNode
{
public:
    virtual ~AQE_ExpressionNode();

    /// Returns the kind of node; 10 is a reference to a metadata object.
    [[nodiscard]] virtual int GetNodeType() const = 0;
    /// Returns the operands in order. The nodes stay the expression's.
    [[nodiscard]] virtual std::vector<AQE_ExpressionNode*> GetChildren() const = 0;
    /// Returns the names of a reference in order: qualifier, query subject, item. The qualifier of
    /// an item that is reached without one is the empty name, so that the query subject is always
    /// the second. References that lead to no item keep the names with which they are written.
    /// Other nodes have none.
    [[nodiscard]] virtual std::vector<I18NString> GetNamePath() const = 0;
    /// Returns the object that a reference leads to; the empty id for other nodes and for
    /// references to names that are not known.
    [[nodiscard]] virtual amd_id GetReferencedId() const = 0;
    /// Returns the query subject or shortcut through which a reference reaches its item; the empty
    /// id where GetReferencedId gives it.
    [[nodiscard]] virtual amd_id GetQuerySubjectId() const = 0;
    /// Replaces the names of a reference, with which it will be written; an empty first name is
    /// left out. Does nothing to other nodes, and leaves the ids alone.
    virtual void SetNamePath(const std::vector<I18NString>& names) = 0;
    /// Points a reference at another query subject or shortcut; its names stay. Does nothing to
    /// other nodes.
    virtual void SetQuerySubjectId(const amd_id& id) = 0;

    /// Hands the node to the visitor.
    void Accept(AQE_I_ExpressionVisitor& visitor) const;
};

#endif
