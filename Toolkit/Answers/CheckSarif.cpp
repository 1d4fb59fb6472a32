#include "Toolkit/Answers/CheckPipelines.h"

#include "Toolkit/Check/CheckReport.h"

#include <cctype>
#include <cstddef>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

Json Message(const std::string& text)
{
    return {{"text", text}};
}

/// Returns the path as a URI, or as a reference relative to where the tool was run.
std::string ToUri(const std::string& path)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    constexpr std::string_view kPlain = "-._~/!$&'()*+,;=@";
    std::string uri = std::filesystem::path(path).is_absolute() ? "file://" : "";
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte < 0x80 && std::isalnum(byte) != 0) ||
            kPlain.find(character) != std::string_view::npos)
            uri += character;
        else
            uri += {'%', kDigits[byte / 16U], kDigits[byte % 16U]};
    }
    return uri;
}

Json RulesToJson(const CheckReport& report)
{
    Json list = Json::array();
    for (const RuleReport& each : report.rules) {
        Json json{{"id", each.code}, {"defaultConfiguration", {{"level", ToText(each.severity)}}}};
        if (const Rule* const rule = FindRule(each.code)) {
            json["shortDescription"] = Message(std::string(rule->title) + '.');
            json["help"] = Message(std::string(rule->advice));
        }
        list.push_back(std::move(json));
    }
    return list;
}

std::string TextOf(const Finding& finding)
{
    std::string text = finding.text;
    for (const CheckedPath& path : finding.paths)
        text += "\nPath: " + path.text;
    return text + '\n' + finding.advice;
}

Json ToJson(const Finding& finding, const RuleReport& rule, std::size_t ruleIndex,
            const PipelineContext& context)
{
    Json json{{"ruleId", rule.code},
              {"ruleIndex", ruleIndex},
              {"level", ToText(rule.severity)},
              {"message", Message(TextOf(finding))},
              {"locations",
               {{{"physicalLocation", {{"artifactLocation", {{"uri", ToUri(context.modelName)}}}}},
                 {"logicalLocations", {{{"fullyQualifiedName", finding.placeText}}}}}}},
              {"partialFingerprints", {{"qerefineFinding/v1", finding.id}}}};
    if (finding.accepted) {
        const bool isInModel = finding.accepted->place == Acceptance::EPlace::Model;
        json["suppressions"] = {{{"kind", isInModel ? "inSource" : "external"},
                                 {"justification", finding.accepted->reason}}};
    }
    return json;
}

/// Returns what there is to tell beside findings.
Json NotificationsToJson(const CheckReport& report)
{
    Json list = Json::array();
    const auto add = [&list](const std::string& text) {
        list.push_back({{"level", "note"}, {"message", Message(text)}});
    };
    for (const RuleReport& rule : report.rules) {
        if (!rule.found.notice.empty())
            add(rule.found.notice);
    }
    for (const IdleAcceptance& idle : report.idle)
        add("What is accepted is not found any more: " + idle.id);
    return list;
}

} // namespace

Json ToSarif(const CheckReport& report, const PipelineContext& context)
{
    Json results = Json::array();
    for (std::size_t i = 0; i < report.rules.size(); ++i) {
        for (const Finding& finding : report.rules[i].found.findings)
            results.push_back(ToJson(finding, report.rules[i], i, context));
    }
    const Json invocation{{"executionSuccessful", true},
                          {"toolExecutionNotifications", NotificationsToJson(report)}};
    const Json driver{
        {"name", "qerefine"}, {"version", context.toolVersion}, {"rules", RulesToJson(report)}};
    return {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
            {"version", "2.1.0"},
            {"runs",
             {{{"tool", {{"driver", driver}}},
               {"invocations", Json::array({invocation})},
               {"results", results}}}}};
}

} // namespace qe::tool
