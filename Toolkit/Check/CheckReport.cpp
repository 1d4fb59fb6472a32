#include "Toolkit/Check/CheckReport.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/Model/ToolModel.h"

#include <algorithm>

namespace qe::tool {

std::size_t CheckReport::Count(ESeverity severity) const
{
    std::size_t count = 0;
    for (const RuleReport& rule : rules) {
        if (rule.severity == severity)
            count += rule.found.total;
    }
    return count;
}

ESeverity CheckReport::GetWorst() const
{
    ESeverity worst = ESeverity::Off;
    for (const RuleReport& rule : rules) {
        if (rule.found.total > 0)
            worst = std::max(worst, rule.severity);
    }
    return worst;
}

CheckReport CheckModel(const ToolModel& model, const CheckOptions& options)
{
    const ModelGraph graph(model, options.history.get());
    CheckReport report;
    report.subjects = model.model->GetSubjects().size();
    report.joins = model.model->GetJoins().size();
    for (const Rule& rule : kRules) {
        const auto choice = options.severities.find(rule.code);
        const ESeverity severity =
            choice == options.severities.end() ? rule.severity : choice->second;
        if (severity != ESeverity::Off)
            report.rules.push_back({.code = std::string(rule.code),
                                    .severity = severity,
                                    .found = rule.find(graph, options.limits)});
    }
    std::stable_sort(
        report.rules.begin(), report.rules.end(),
        [](const RuleReport& a, const RuleReport& b) { return a.severity > b.severity; });
    return report;
}

} // namespace qe::tool
