#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"

#include <algorithm>

namespace qe::tool {

namespace {

constexpr std::size_t kShownNames = 5;

using Group = std::vector<std::size_t>;

/// Gives the connected groups of two subjects and more, the largest first.
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

} // namespace

RuleFindings FindSeparateGroups(const ModelGraph& model, const CheckLimits& limits)
{
    RuleFindings found;
    const std::vector<Group> groups = FindGroups(model);
    for (std::size_t i = 1; i < groups.size(); ++i) {
        if (++found.total > limits.findings)
            continue;
        const Group& group = groups[i];
        found.findings.push_back(
            {{model.GetSubjects()[group.front()]},
             model.NameOf(group.front()),
             "No join connects these " + std::to_string(group.size()) + " subjects to the other " +
                 std::to_string(model.GetSubjects().size() - group.size()) + ": " +
                 ListNames(model, group, kShownNames) + ".",
             "Add a relationship between one of them and, for instance, " +
                 model.NameOf(groups.front().front()) +
                 ", or tell the authors of reports that the groups do not go together."});
    }
    return found;
}

} // namespace qe::tool
