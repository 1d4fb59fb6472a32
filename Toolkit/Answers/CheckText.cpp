#include "Toolkit/Answers/CheckOutput.h"
#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Text/DisplayText.h"

#include <ostream>

namespace qe::tool {

namespace {

/// One join is named by the path itself.
std::string TellDecision(const CheckedPath& path)
{
    if (path.decidingJoin == amd_id() || path.joins.size() < 2)
        return {};
    return " (favour " + ToDisplayText(path.decidingName) + ')';
}

void WriteFinding(const RuleReport& rule, const Finding& finding, std::ostream& out)
{
    out << ToText(rule.severity) << ' ' << rule.code << ": " << ToDisplayText(finding.text) << '\n';
    for (std::size_t i = 0; i < finding.paths.size(); ++i)
        out << "    path " << i + 1 << ": " << ToDisplayText(finding.paths[i].text)
            << TellDecision(finding.paths[i]) << '\n';
    out << "    advice: " << ToDisplayText(finding.advice) << '\n';
}

std::string CountOf(std::size_t count, const std::string& singular)
{
    return std::to_string(count) + ' ' + singular + (count == 1 ? "" : "s");
}

} // namespace

void WriteCheckText(const CheckReport& report, std::ostream& out)
{
    for (const RuleReport& rule : report.rules) {
        for (const Finding& finding : rule.found.findings)
            WriteFinding(rule, finding, out);
        const std::size_t shown = rule.found.findings.size();
        if (shown < rule.found.total)
            out << ToText(rule.severity) << ' ' << rule.code << ": " << rule.found.total - shown
                << " more of " << rule.found.total << " are not shown (--limit shows more)\n";
        if (!rule.found.notice.empty())
            out << "notice " << rule.code << ": " << rule.found.notice << '\n';
    }
    out << CountOf(report.subjects, "subject") << ", " << CountOf(report.joins, "join") << ": "
        << CountOf(report.Count(ESeverity::Error), "error") << ", "
        << CountOf(report.Count(ESeverity::Warning), "warning") << ", "
        << CountOf(report.Count(ESeverity::Note), "note") << '\n';
}

} // namespace qe::tool
