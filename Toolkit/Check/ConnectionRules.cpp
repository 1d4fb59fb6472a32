// Rules about what no join connects: shortcuts that lead nowhere, subjects alone, groups apart.

#include "Toolkit/Check/Rules.h"

#include "Engine/Model/Model.h"
#include "IdClass.h"
#include "Toolkit/Check/ModelGraph.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

constexpr std::size_t kShownNames = 5;

using Group = std::vector<std::size_t>;

/// Returns what the shortcut leads to instead of a query subject; empty for what it may lead to.
/// Folders and filters are for people to find, not for joins.
std::string DescribeWrongTarget(const ModelGraph& model, const amd_id& shortcut)
{
    const amd_id target = model.GetModel().GetTarget(shortcut);
    if (target.classCode == IdClassShortcut || model.GetModel().Find(target) == nullptr)
        return "nothing";
    if (target.classCode == IdClassQuerySubject || model::IsContainerClass(target.classCode) ||
        model::IsFilterClass(target.classCode))
        return {};
    return "the " + std::string(model::ClassTitle(target.classCode)) + ' ' + model.NameOf(target) +
           ", not for a query subject";
}

/// Returns the connected groups of two subjects and more, the largest first.
std::vector<Group> FindGroups(const ModelGraph& model)
{
    std::vector<Group> groups;
    std::vector<bool> isSeen(model.GetSubjects().size(), false);
    for (std::size_t start = 0; start < isSeen.size(); ++start) {
        if (isSeen[start] || model.GetSteps(start).empty())
            continue;
        Group group{start};
        isSeen[start] = true;
        for (std::size_t next = 0; next < group.size(); ++next) {
            for (const ModelGraph::Step& step : model.GetSteps(group[next])) {
                if (!isSeen[step.subject])
                    group.push_back(step.subject);
                isSeen[step.subject] = true;
            }
        }
        std::sort(group.begin(), group.end());
        groups.push_back(std::move(group));
    }
    std::stable_sort(groups.begin(), groups.end(),
                     [](const Group& a, const Group& b) { return a.size() > b.size(); });
    return groups;
}

/// Returns the subject that stands for a group in whatever order the model has it.
std::size_t FindFirstByName(const ModelGraph& model, const Group& group)
{
    return *std::min_element(group.begin(), group.end(), [&](std::size_t a, std::size_t b) {
        const std::span<const amd_id> subjects = model.GetSubjects();
        return model.GetModel().GetQualifiedName(subjects[a]) <
               model.GetModel().GetQualifiedName(subjects[b]);
    });
}

Finding DescribeEmptyShortcut(const ModelGraph& model, const amd_id& id, const std::string& target)
{
    const std::string name = model.NameOf(id);
    return {.place = {id},
            .placeText = name,
            .text = "The shortcut " + name + " stands for " + target + ", so it cannot be joined.",
            .advice = "Let it stand for a query subject, or delete it."};
}

} // namespace

RuleFindings FindEmptyShortcuts(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    for (const amd_id& id : model.GetModel().GetIds(IdClassShortcut)) {
        const std::string target = DescribeWrongTarget(model, id);
        if (target.empty())
            continue;
        Record(found, limits, [&] { return DescribeEmptyShortcut(model, id, target); });
    }
    return found;
}

RuleFindings FindUnreachedSubjects(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    // A subject alone in its model has nothing to be joined to.
    if (model.GetSubjects().size() < 2)
        return found;
    for (std::size_t i = 0; i < model.GetSubjects().size(); ++i) {
        if (!model.GetSteps(i).empty())
            continue;
        Record(found, limits, [&] {
            const std::string name = model.NameOf(i);
            return Finding{.place = {model.GetSubjects()[i]},
                           .placeText = name,
                           .text = "No join leads to " + name +
                                   ", so no report can use it with another subject.",
                           .advice = "Add a relationship to it, or leave it out of the model."};
        });
    }
    return found;
}

RuleFindings FindSeparateGroups(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    const std::vector<Group> groups = FindGroups(model);
    for (std::size_t i = 1; i < groups.size(); ++i) {
        Record(found, limits, [&] {
            const Group& group = groups[i];
            const std::size_t first = FindFirstByName(model, group);
            return Finding{.place = {model.GetSubjects()[first]},
                           .placeText = model.NameOf(first),
                           .text = "No join connects these " + std::to_string(group.size()) +
                                   " subjects to the other " +
                                   std::to_string(model.GetSubjects().size() - group.size()) +
                                   ": " + ListNames(model, group, kShownNames) + ".",
                           .advice = "Add a relationship between one of them and, for instance, " +
                                     model.NameOf(groups.front().front()) +
                                     "; where the groups do not go together, accept the finding."};
        });
    }
    return found;
}

} // namespace qe::tool
