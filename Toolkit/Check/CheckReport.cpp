#include "Toolkit/Check/CheckReport.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/Names.h"
#include "Toolkit/Check/FindingIds.h"
#include "Toolkit/Check/ModelGraph.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/Model/ToolModel.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace qe::tool {

namespace {

/// What is accepted, by the ids of findings.
class Acceptances
{
public:
    Acceptances(const std::vector<AcceptedFinding>& ofModel,
                const std::vector<AcceptedFinding>& baseline)
    {
        Add(ofModel, Acceptance::EPlace::Model);
        Add(baseline, Acceptance::EPlace::Baseline);
    }

    /// Accepts the finding if it is to be; notes its id.
    void Judge(Finding& finding)
    {
        mFound.insert(finding.id);
        const auto accepted = mById.find(finding.id);
        if (accepted != mById.end())
            finding.accepted = accepted->second;
    }

    /// Returns what was never found, in the order in which it is accepted. Rules that were not
    /// looked at to the end may still find it.
    [[nodiscard]] std::vector<IdleAcceptance> FindIdle(const CheckReport& report) const
    {
        std::vector<IdleAcceptance> idle;
        for (const auto& [id, acceptance] : mInOrder) {
            if (mFound.count(id) > 0 || IsOpen(report, id))
                continue;
            idle.push_back({.id = id, .acceptance = acceptance, .nearest = FindNearest(id)});
        }
        return idle;
    }

private:
    void Add(const std::vector<AcceptedFinding>& findings, Acceptance::EPlace place)
    {
        for (const AcceptedFinding& finding : findings) {
            const Acceptance acceptance{.place = place, .reason = finding.reason};
            if (mById.emplace(finding.id, acceptance).second)
                mInOrder.emplace_back(finding.id, acceptance);
        }
    }

    /// Returns whether it is the finding of a rule that is off, or that found more than it tells.
    static bool IsOpen(const CheckReport& report, std::string_view id)
    {
        const std::string_view code = id.substr(0, id.find('/'));
        const bool isRule = std::any_of(kRules.begin(), kRules.end(),
                                        [code](const Rule& rule) { return rule.code == code; });
        const auto looked =
            std::find_if(report.rules.begin(), report.rules.end(),
                         [code](const RuleReport& rule) { return rule.code == code; });
        return isRule && (looked == report.rules.end() || !looked->found.notice.empty() ||
                          looked->found.findings.size() < looked->found.total);
    }

    [[nodiscard]] std::vector<std::string> FindNearest(const std::string& id) const
    {
        return model::NearestNames(id, {mFound.begin(), mFound.end()}, 1);
    }

    std::map<std::string, Acceptance> mById;
    std::vector<std::pair<std::string, Acceptance>> mInOrder;
    std::set<std::string> mFound;
};

} // namespace

std::size_t RuleReport::CountAccepted() const
{
    return static_cast<std::size_t>(
        std::count_if(found.findings.begin(), found.findings.end(),
                      [](const Finding& finding) { return finding.accepted.has_value(); }));
}

std::size_t CheckReport::Count(ESeverity severity) const
{
    std::size_t count = 0;
    for (const RuleReport& rule : rules) {
        if (rule.severity == severity)
            count += rule.CountNew();
    }
    return count;
}

std::size_t CheckReport::CountAccepted() const
{
    std::size_t count = 0;
    for (const RuleReport& rule : rules)
        count += rule.CountAccepted();
    return count;
}

ESeverity CheckReport::GetWorst() const
{
    ESeverity worst = ESeverity::Off;
    for (const RuleReport& rule : rules) {
        if (rule.CountNew() > 0)
            worst = std::max(worst, rule.severity);
    }
    return worst;
}

CheckReport CheckModel(const ToolModel& model, const CheckOptions& options)
{
    const ModelGraph graph(model);
    Acceptances acceptances(model.acceptedFindings, options.baseline);
    CheckReport report;
    report.subjects = model.model->GetSubjects().size();
    report.joins = model.model->GetJoins().size();
    for (const Rule& rule : kRules) {
        const auto choice = options.severities.find(rule.code);
        const ESeverity severity =
            choice == options.severities.end() ? rule.severity : choice->second;
        if (severity == ESeverity::Off)
            continue;
        RuleReport& looked =
            report.rules.emplace_back(RuleReport{.code = std::string(rule.code),
                                                 .severity = severity,
                                                 .found = rule.find(graph, options.limits)});
        for (Finding& finding : looked.found.findings) {
            finding.id = MakeFindingId(*model.model, rule.code, finding);
            acceptances.Judge(finding);
        }
        looked.causes = FindCauses(graph, looked.found);
    }
    report.idle = acceptances.FindIdle(report);
    std::stable_sort(
        report.rules.begin(), report.rules.end(),
        [](const RuleReport& a, const RuleReport& b) { return a.severity > b.severity; });
    return report;
}

} // namespace qe::tool
