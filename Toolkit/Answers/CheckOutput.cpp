#include "Toolkit/Answers/CheckOutput.h"

#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Text/DisplayText.h"

#include <cstddef>
#include <nlohmann/json.hpp>
#include <ostream>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

/// The version of the form that Documentation/answer.schema.json describes.
constexpr int kCheckVersion = 1;

Json ToJson(const std::vector<amd_id>& ids)
{
    Json list = Json::array();
    for (const amd_id& id : ids)
        list.push_back(ToText(id));
    return list;
}

Json ToJson(const RuleReport& rule, const Finding& finding)
{
    Json json{{"code", rule.code},
              {"severity", ToText(rule.severity)},
              {"place", {{"name", finding.placeText}, {"ids", ToJson(finding.place)}}},
              {"text", finding.text},
              {"advice", finding.advice}};
    for (const CheckedPath& path : finding.paths) {
        Json described{{"text", path.text}, {"joins", ToJson(path.joins)}};
        if (path.decidingJoin != amd_id())
            described["decidingJoin"] = ToText(path.decidingJoin);
        json["paths"].push_back(std::move(described));
    }
    return json;
}

Json ToJson(const RuleReport& rule)
{
    Json json{{"code", rule.code},
              {"severity", ToText(rule.severity)},
              {"total", rule.found.total},
              {"shown", rule.found.findings.size()}};
    if (!rule.found.notice.empty())
        json["notice"] = rule.found.notice;
    return json;
}

/// One join is named by the path itself.
std::string DecisionText(const CheckedPath& path)
{
    if (path.decidingJoin == amd_id() || path.joins.size() < 2)
        return {};
    return " (favour " + ToDisplayText(path.decidingName) + ')';
}

void WriteFinding(std::ostream& out, const RuleReport& rule, const Finding& finding)
{
    out << ToText(rule.severity) << ' ' << rule.code << ": " << ToDisplayText(finding.text) << '\n';
    for (std::size_t i = 0; i < finding.paths.size(); ++i)
        out << "    path " << i + 1 << ": " << ToDisplayText(finding.paths[i].text)
            << DecisionText(finding.paths[i]) << '\n';
    out << "    advice: " << ToDisplayText(finding.advice) << '\n';
}

std::string CountOf(std::size_t count, const std::string& singular)
{
    return std::to_string(count) + ' ' + singular + (count == 1 ? "" : "s");
}

} // namespace

void WriteText(std::ostream& out, const CheckReport& report)
{
    for (const RuleReport& rule : report.rules) {
        for (const Finding& finding : rule.found.findings)
            WriteFinding(out, rule, finding);
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

Json ToJson(const CheckReport& report, const std::string& modelName)
{
    Json json{{"format", "qerefine-check"},
              {"version", kCheckVersion},
              {"model", modelName},
              {"subjects", report.subjects},
              {"joins", report.joins}};
    json["rules"] = Json::array();
    json["findings"] = Json::array();
    for (const RuleReport& rule : report.rules) {
        json["rules"].push_back(ToJson(rule));
        for (const Finding& finding : rule.found.findings)
            json["findings"].push_back(ToJson(rule, finding));
    }
    return json;
}

} // namespace qe::tool
