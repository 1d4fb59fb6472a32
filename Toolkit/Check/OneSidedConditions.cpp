#include "Engine/Expression/ParseReport.h"
#include "Engine/Model/Model.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"

#include <set>

namespace qe::tool {

namespace {

/// What a condition says about the ends of its join.
class ConditionReading
{
public:
    ConditionReading(const ModelGraph& model, const ModelJoin& join)
        : mModel(model),
          mJoin(join),
          mLeft(model.GetSubjects()[join.left]),
          mRight(model.GetSubjects()[join.right])
    {}

    /// Gives what is wrong, as the end of a sentence; empty when nothing is.
    std::string TellFault()
    {
        if (mJoin.condition.find_first_not_of(" \t\r\n") == std::string::npos)
            return "has no condition, so it pairs every row with every row";
        const expression::ParseReport report = expression::FindReferences(mJoin.condition);
        if (report.error)
            return "has a condition that cannot be read: " + report.error->expected +
                   " was expected, not " + report.error->found;
        for (const expression::NamedReference& reference : report.references) {
            if (const auto resolved = mModel.GetGateway().ResolveReference(reference.names))
                mMentioned.insert(resolved->querySubjectId);
        }
        return TellMissingEnds();
    }

private:
    [[nodiscard]] std::string TellMissingEnds() const
    {
        const bool hasLeft = IsMentioned(mLeft, mRight);
        const bool hasRight = IsMentioned(mRight, mLeft);
        if (hasLeft && hasRight)
            return {};
        if (!hasLeft && !hasRight)
            return "has a condition that mentions neither of its ends, " + mModel.NameOf(mLeft) +
                   " and " + mModel.NameOf(mRight);
        return "has a condition that does not mention its end " +
               mModel.NameOf(hasLeft ? mRight : mLeft);
    }

    /// An end may be called by what it stands for, unless the other end stands for the same.
    [[nodiscard]] bool IsMentioned(const amd_id& end, const amd_id& otherEnd) const
    {
        if (mMentioned.count(end) > 0)
            return true;
        const amd_id target = mModel.GetModel().GetTarget(end);
        return target != mModel.GetModel().GetTarget(otherEnd) && mMentioned.count(target) > 0;
    }

    const ModelGraph& mModel;
    const ModelJoin& mJoin;
    amd_id mLeft;
    amd_id mRight;
    std::set<amd_id> mMentioned;
};

} // namespace

RuleFindings FindOneSidedConditions(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    for (const ModelJoin& join : model.GetJoins()) {
        if (join.id.classCode == IdClassShortcutJoin)
            continue;
        const std::string fault = ConditionReading(model, join).TellFault();
        if (fault.empty() || ++found.total > limits.findings)
            continue;
        found.findings.push_back({{join.id},
                                  model.NameOf(join.id),
                                  "The join " + model.NameOf(join.id) + ' ' + fault + ".",
                                  "Compare an item of one end with an item of the other."});
    }
    return found;
}

} // namespace qe::tool
