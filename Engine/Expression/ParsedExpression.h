#ifndef ENGINE_EXPRESSION_PARSEDEXPRESSION_H
#define ENGINE_EXPRESSION_PARSEDEXPRESSION_H

#include "AQE_Expression.h"
#include "Engine/Expression/Node.h"

#include <memory>

namespace qe::expression {

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
