#ifndef ENGINE_EXPRESSION_REFERENCENODE_H
#define ENGINE_EXPRESSION_REFERENCENODE_H

#include "Engine/Expression/Node.h"
#include "Engine/Expression/ReferenceResolver.h"

#include <vector>

namespace qe::expression {

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

} // namespace qe::expression

#endif
