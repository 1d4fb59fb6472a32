#include "Engine/Model/Model.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"

namespace qe::tool {

namespace {

/// Tells what the shortcut leads to instead of a query subject; empty for what it may lead to.
/// Folders and filters are for people to find, not for joins.
std::string TellTarget(const ModelGraph& checked, const amd_id& shortcut)
{
    const amd_id target = checked.GetModel().GetTarget(shortcut);
    if (target.classCode == IdClassShortcut || checked.GetModel().Find(target) == nullptr)
        return "nothing";
    if (target.classCode == IdClassQuerySubject || model::IsContainerClass(target.classCode) ||
        model::IsFilterClass(target.classCode))
        return {};
    return "the " + std::string(model::ClassTitle(target.classCode)) + ' ' +
           checked.NameOf(target) + ", not for a query subject";
}

} // namespace

RuleFindings FindEmptyShortcuts(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    for (const amd_id& id : model.GetModel().GetIds(IdClassShortcut)) {
        const std::string target = TellTarget(model, id);
        if (target.empty() || ++found.total > limits.findings)
            continue;
        found.findings.push_back({{id},
                                  model.NameOf(id),
                                  "The shortcut " + model.NameOf(id) + " stands for " + target +
                                      ", so it cannot be joined.",
                                  "Let it stand for a query subject, or delete it."});
    }
    return found;
}

} // namespace qe::tool
