// Rules about single joins: whether they can be read, what their conditions mention, and what their
// cardinalities make of sums.

#include "Toolkit/Check/Rules.h"

#include "Source/Rules/Cardinality.h"

#include "Engine/Expression/ParseReport.h"
#include "Engine/Model/Model.h"
#include "IdClass.h"
#include "Toolkit/Check/KeyRules.h"
#include "Toolkit/Check/ModelGraph.h"

#include <set>
#include <string>
#include <utility>

namespace qe::tool {

namespace {

/// Returns what keeps the join from being read.
std::string ExplainUnreadable(const model::Model& model, const model::ObjectRecord& join)
{
    if (join.id.classCode == IdClassRelationshipShortcut &&
        model.GetTarget(join.id).classCode != IdClassRelationship)
        return "it stands for no relationship";
    for (const auto& [title, end] :
         {std::pair("left", join.left), std::pair("right", join.right)}) {
        if (model.GetTarget(end).classCode != IdClassQuerySubject)
            return std::string("its ") + title + " end leads to no query subject";
    }
    return "its record is not complete";
}

/// Which ends of its join a condition mentions.
class ConditionReading
{
public:
    ConditionReading(const ModelGraph& model, const ModelJoin& join)
        : mModel(model),
          mJoin(join),
          mLeft(model.GetSubjects()[join.left]),
          mRight(model.GetSubjects()[join.right])
    {}

    /// Returns what is wrong, as the end of a sentence; empty when nothing is.
    std::string FindFault()
    {
        if (mJoin.condition.find_first_not_of(" \t\r\n") == std::string::npos)
            return "has no condition, so it pairs every row with every row";
        const expression::ParseReport report = expression::FindReferences(mJoin.condition);
        if (report.error)
            return "has a condition that cannot be read: " + report.error->expected +
                   " was expected, not " + report.error->found;
        for (const expression::NamedReference& reference : report.references) {
            const auto resolved = mModel.GetGateway().ResolveReference(reference.names);
            if (resolved && resolved->referencedId.classCode == IdClassQueryItem)
                mMentioned.insert(resolved->querySubjectId);
        }
        return FindMissingEnds();
    }

private:
    [[nodiscard]] std::string FindMissingEnds() const
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

Finding DescribeOneSided(const ModelGraph& model, const amd_id& join, const std::string& fault)
{
    const std::string name = model.NameOf(join);
    return {.place = {join},
            .placeText = name,
            .text = "The join " + name + ' ' + fault + ".",
            .advice = "Compare an item of one end with an item of the other."};
}

} // namespace

RuleFindings FindUnreadableJoins(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    const model::Model& objects = model.GetModel();
    for (const amd_id& id : model.GetUnreadableJoins()) {
        Record(found, limits, [&] {
            const std::string name = model.NameOf(id);
            return Finding{.place = {id},
                           .placeText = name,
                           .text =
                               "The " + std::string(model::ClassTitle(id.classCode)) + ' ' + name +
                               " cannot be read: " + ExplainUnreadable(objects, *objects.Find(id)) +
                               ". No path uses it.",
                           .advice = "Mend it, or delete it."};
        });
    }
    return found;
}

RuleFindings FindOneSidedConditions(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    for (const ModelJoin& join : model.GetJoins()) {
        if (join.id.classCode == IdClassShortcutJoin)
            continue;
        const std::string fault = ConditionReading(model, join).FindFault();
        if (fault.empty())
            continue;
        Record(found, limits, [&] { return DescribeOneSided(model, join.id, fault); });
    }
    return found;
}

RuleFindings FindManyToManyJoins(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    for (const ModelJoin& join : model.GetJoins()) {
        const bool isManyToMany = IsToMany(join.leftCardinality) && IsToMany(join.rightCardinality);
        if (!isManyToMany || MissesKeys(model, join))
            continue;
        Record(found, limits, [&] {
            const std::string name = model.NameOf(join.id);
            return Finding{
                .place = {join.id},
                .placeText = name,
                .text = "The join " + name + " between " + model.NameOf(join.left) + " and " +
                        model.NameOf(join.right) +
                        " has many rows at both ends, so sums over either side come out too high.",
                .advice = "Put a bridge subject with one row for each pair between them, or set "
                          "the right cardinality."};
        });
    }
    return found;
}

} // namespace qe::tool
