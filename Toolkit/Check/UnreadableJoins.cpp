#include "Engine/Model/Model.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"

namespace qe::tool {

namespace {

/// Tells which part of the join keeps it from being read.
std::string TellWhy(const model::Model& model, const model::ObjectRecord& join)
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

} // namespace

RuleFindings FindUnreadableJoins(const ModelGraph& checked, const CheckLimits& limits)
{
    RuleFindings found;
    const model::Model& model = checked.GetModel();
    for (const amd_id& id : checked.GetUnreadableJoins()) {
        if (++found.total > limits.findings)
            continue;
        const model::ObjectRecord& record = *model.Find(id);
        found.findings.push_back(
            {{id},
             checked.NameOf(id),
             "The " + std::string(model::ClassTitle(id.classCode)) + ' ' + checked.NameOf(id) +
                 " cannot be read: " + TellWhy(model, record) + ". No path uses it.",
             "Mend it, or delete it."});
    }
    return found;
}

} // namespace qe::tool
