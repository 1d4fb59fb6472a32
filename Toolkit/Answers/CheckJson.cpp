#include "Toolkit/Answers/CheckOutput.h"
#include "Toolkit/Check/CheckReport.h"

#include <nlohmann/json.hpp>
#include <ostream>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

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

} // namespace

void WriteCheckJson(const CheckReport& report, const std::string& modelName, std::ostream& out)
{
    Json json{{"format", "qerefine-check"},
              {"version", 1},
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
    // Names of a database need not be well-formed text.
    out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

} // namespace qe::tool
