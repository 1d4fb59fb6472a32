#ifndef ENGINE_EXPRESSION_NODE_H
#define ENGINE_EXPRESSION_NODE_H

#include "AQE_ExpressionNode.h"
#include "Engine/Expression/NodeKind.h"

#include <memory>
#include <string>
#include <vector>

namespace qe::expression {

/// A node that owns its operands. Operators of one precedence in a row make one node with many
/// operands, so that a tree is never deeper than its text is nested.
///
/// Operands by kind: Or, And, Comparison, Concatenation, Sum and Product have an operator
/// between each two; In has the tested value and then the list; Like the value, the pattern and
/// perhaps the escape character; Between the value and both bounds; Case perhaps the value that
/// is compared, then its Whens, then perhaps what ELSE gives; When the condition and what THEN
/// gives; Not, Negation, IsNull and Cast have one; Call has its arguments; the other kinds have
/// none.
class Node : public AQE_ExpressionNode
{
public:
    /// Makes a node without operands. `text` is the value of a literal, without quotes, the name
    /// of a function or constant, or the type of a Cast.
    explicit Node(ENodeKind kind, std::string text = {});
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node() override;

    [[nodiscard]] int GetNodeType() const override;
    [[nodiscard]] std::vector<AQE_ExpressionNode*> GetChildren() const override;
    [[nodiscard]] std::vector<I18NString> GetNamePath() const override;
    [[nodiscard]] amd_id GetReferencedId() const override;
    [[nodiscard]] amd_id GetQuerySubjectId() const override;
    void SetNamePath(const std::vector<I18NString>& names) override;
    void SetQuerySubjectId(const amd_id& id) override;

    [[nodiscard]] ENodeKind GetKind() const noexcept { return mKind; }
    [[nodiscard]] const std::string& GetText() const noexcept { return mText; }
    /// Gives the operators between the operands, or the NOT of a negated predicate.
    [[nodiscard]] const std::vector<EOperator>& GetOperators() const noexcept { return mOperators; }
    [[nodiscard]] const std::vector<std::unique_ptr<Node>>& GetOperands() const noexcept
    {
        return mOperands;
    }

    void AddOperator(EOperator op) { mOperators.push_back(op); }
    void AddOperand(std::unique_ptr<Node> operand);
    /// Moves the operands and operators of `other` to the end of this node's.
    void Absorb(Node& other);

private:
    ENodeKind mKind;
    std::string mText;
    std::vector<EOperator> mOperators;
    std::vector<std::unique_ptr<Node>> mOperands;
};

} // namespace qe::expression

#endif
