#ifndef ENGINE_EXPRESSION_NODE_H
#define ENGINE_EXPRESSION_NODE_H

#include "AQE_Expression.h"
#include "AQE_ExpressionNode.h"
#include "Engine/Expression/ReferenceResolver.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qe::expression {

/// The kinds of expression nodes; AQE_ExpressionNode::GetNodeType returns the number. Callers of
/// the library know the number 10.
enum class ENodeKind : std::uint8_t
{
    Expression = 1,
    Or = 2,
    And = 3,
    Not = 4,
    Comparison = 5,
    Concatenation = 6,
    Sum = 7,
    Product = 8,
    Negation = 9,
    Reference = 10,
    String = 11,
    Number = 12,
    Name = 13,
    Call = 14,
    In = 15,
    Like = 16,
    Between = 17,
    IsNull = 18,
    Case = 19,
    When = 20,
    Cast = 21,
    /// IS DISTINCT FROM: a comparison for which null is a value like any other.
    Distinct = 22,
};

/// What stands between two operands, and the NOT inside NOT IN, NOT LIKE, NOT BETWEEN,
/// IS NOT NULL and IS NOT DISTINCT FROM.
enum class EOperator : std::uint8_t
{
    Or,
    And,
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Concatenate,
    Plus,
    Minus,
    Times,
    Divide,
    Not,
};

/// A node that owns its operands. A chain of operators of one precedence makes one node with many
/// operands, so that a tree is never deeper than its text is nested.
///
/// Operands by kind: Or, And, Comparison, Concatenation, Sum and Product have an operator
/// between each two; In has the tested value and then the list; Like the value, the pattern and
/// perhaps the escape character; Between the value and both bounds; Distinct the two values; Case
/// perhaps the value that is compared, then its Whens, then perhaps the value behind ELSE; When the
/// condition and the value behind THEN; Not, Negation, IsNull and Cast have one; Call has its
/// arguments; the other kinds have none.
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
    /// Returns the operators between the operands, or the NOT of a negated predicate.
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

/// A reference to a metadata object. Its ids are empty until it is resolved.
class ReferenceNode final : public Node
{
public:
    explicit ReferenceNode(std::vector<I18NString> names);
    ~ReferenceNode() override;

    [[nodiscard]] std::vector<I18NString> GetNamePath() const override { return mNames; }
    [[nodiscard]] amd_id GetReferencedId() const override { return mTarget.referencedId; }
    [[nodiscard]] amd_id GetQuerySubjectId() const override { return mTarget.querySubjectId; }
    void SetNamePath(const std::vector<I18NString>& names) override { mNames = names; }
    void SetQuerySubjectId(const amd_id& id) override { mTarget.querySubjectId = id; }

    void SetTarget(const ResolvedReference& target) { mTarget = target; }

private:
    std::vector<I18NString> mNames;
    ResolvedReference mTarget;
};

/// The root of a parsed tree: owns it, and has the outermost operation as its only child.
class ParsedExpression final : public AQE_Expression
{
public:
    /// `top` is not null.
    explicit ParsedExpression(std::unique_ptr<Node> top);
    ~ParsedExpression() override;

    [[nodiscard]] int GetNodeType() const override;
    [[nodiscard]] std::vector<AQE_ExpressionNode*> GetChildren() const override;
    [[nodiscard]] std::vector<I18NString> GetNamePath() const override { return {}; }
    [[nodiscard]] amd_id GetReferencedId() const override { return {}; }
    [[nodiscard]] amd_id GetQuerySubjectId() const override { return {}; }
    void SetNamePath(const std::vector<I18NString>&) override {}
    void SetQuerySubjectId(const amd_id&) override {}

private:
    std::unique_ptr<Node> mTop;
};

} // namespace qe::expression

#endif
