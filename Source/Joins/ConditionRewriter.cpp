#include "Joins/ConditionRewriter.h"

#include "AQE_Expression.h"
#include "AQE_ExpressionVisitorString.h"
#include "AUT_RefPtr.h"
#include "IdClass.h"
#include "Joins/HostNumbers.h"
#include "QERes.h"
#include "Rules/JoinEnds.h"
#include "amdi_gateway.h"
#include "amdi_object.h"

#include <cstddef>
#include <span>
#include <vector>

namespace qe {

namespace {

constexpr int kReferenceNode = 10;

using References = std::vector<AQE_ExpressionNode*>;

void CollectItemReferences(AQE_ExpressionNode* node, References& references)
{
    if (node == nullptr)
        return;
    if (node->GetNodeType() == kReferenceNode &&
        node->GetReferencedId().classCode == IdClassQueryItem)
        references.push_back(node);
    for (AQE_ExpressionNode* child : node->GetChildren())
        CollectItemReferences(child, references);
}

void RetargetReferences(amdi_gateway& gateway, std::span<AQE_ExpressionNode* const> references,
                        const amd_id& from, const amd_id& to)
{
    const amd_id qualifierId = gateway.GetQualifierId(to);
    const amdi_object* const target = gateway.GetObject(to);
    const amdi_object* const qualifier = gateway.GetObject(qualifierId);
    if (target == nullptr || qualifier == nullptr)
        return;
    const I18NString qualifierName = qualifier->GetName();
    const I18NString targetName = target->GetName();
    for (AQE_ExpressionNode* reference : references) {
        if (reference->GetQuerySubjectId() != from)
            continue;
        reference->SetQuerySubjectId(to);
        std::vector<I18NString> names = reference->GetNamePath();
        names[0] = qualifierName;
        names[1] = targetName;
        reference->SetNamePath(names);
    }
}

/// Points the references of every unsettled side at its new end. Returns false when the condition
/// is to be kept as it is written.
bool RetargetSides(amdi_gateway& gateway, const EndReplacement& ends, const References& references)
{
    bool leftDone = ends.oldLeft == ends.newLeft;
    bool rightDone = ends.oldRight == ends.newRight;
    for (const AQE_ExpressionNode* reference : references) {
        const amd_id subject = reference->GetQuerySubjectId();
        leftDone = leftDone || subject == ends.newLeft;
        rightDone = rightDone || subject == ends.newRight;
    }

    if (leftDone && rightDone)
        return false;
    if (leftDone) {
        RetargetReferences(gateway, references, ends.oldRight, ends.newRight);
        return true;
    }
    if (rightDone) {
        RetargetReferences(gateway, references, ends.oldLeft, ends.newLeft);
        return true;
    }
    if (references.size() < 2)
        return false;
    const std::span all(references);
    const std::size_t left = CountLeftReferences(all.size());
    RetargetReferences(gateway, all.first(left), ends.oldLeft, ends.newLeft);
    RetargetReferences(gateway, all.subspan(left), ends.oldRight, ends.newRight);
    return true;
}

} // namespace

I18NString ReplaceEndReferences(amdi_gateway& gateway, const EndReplacement& ends,
                                const I18NString& text)
{
    if (ends.newLeft == ends.newRight)
        return text;

    const AUT_RefPtr<AQE_Expression> expression(AQE_Expression::Create(
        AQE_Expression::GetUntaggedExpression(text), &gateway,
        QERes::getString(host::kComponentNameText), gateway.GetLocale(ends.oldLeft)));
    References references;
    CollectItemReferences(expression.Get(), references);
    if (!RetargetSides(gateway, ends, references))
        return text;

    AQE_ExpressionVisitorString writer(gateway.GetLocale(ends.oldLeft));
    expression->Accept(writer);
    I18NString rewritten;
    writer.GetText(rewritten);
    return rewritten;
}

} // namespace qe
