#include "Toolkit/Answers/CheckOutput.h"

#include "Toolkit/Answers/NamesJson.h"
#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/JsonText.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <ostream>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

/// The version of the form that Documentation/answer.schema.json describes.
constexpr int kCheckVersion = 1;

std::string_view PlaceOf(const Acceptance& acceptance)
{
    return acceptance.place == Acceptance::EPlace::Model ? "model" : "baseline";
}

Json ToJson(const RuleReport& rule, const Finding& finding)
{
    Json json{{"id", finding.id},
              {"code", rule.code},
              {"severity", ToText(rule.severity)},
              {"place", {{"name", finding.placeText}, {"ids", IdsToJson(finding.place)}}},
              {"text", finding.text},
              {"advice", finding.advice}};
    for (const CheckedPath& path : finding.paths) {
        Json described{{"text", path.text}, {"joins", IdsToJson(path.joins)}};
        if (path.decidingJoin != amd_id())
            described["decidingJoin"] = ToText(path.decidingJoin);
        ListAt(json, "paths").push_back(std::move(described));
    }
    if (finding.accepted)
        json["accepted"] = {{"by", PlaceOf(*finding.accepted)},
                            {"reason", finding.accepted->reason}};
    return json;
}

Json ToJson(const RuleReport& rule, std::size_t shown)
{
    Json json{{"code", rule.code},
              {"severity", ToText(rule.severity)},
              {"total", rule.CountNew()},
              {"accepted", rule.CountAccepted()},
              {"shown", shown}};
    if (!rule.found.notice.empty())
        json["notice"] = rule.found.notice;
    return json;
}

Json CausesToJson(const RuleReport& rule)
{
    Json list = Json::array();
    for (const Cause& cause : rule.causes)
        list.push_back({{"code", rule.code},
                        {"name", cause.name.empty() ? Json() : Json(cause.name)},
                        {"total", cause.findings.size()},
                        {"first", rule.found.findings[cause.findings.front()].id}});
    return list;
}

Json ToJson(const std::vector<IdleAcceptance>& idle)
{
    Json list = Json::array();
    for (const IdleAcceptance& each : idle)
        list.push_back({{"id", each.id},
                        {"by", PlaceOf(each.acceptance)},
                        {"reason", each.acceptance.reason},
                        {"nearest", each.nearest}});
    return list;
}

/// Returns the positions of the findings that the view shows one by one.
std::vector<std::size_t> ChooseFindings(const RuleReport& rule, const CheckView& view)
{
    std::vector<std::size_t> chosen;
    std::size_t counting = 0;
    for (std::size_t i = 0; i < rule.found.findings.size(); ++i) {
        const bool isAccepted = rule.found.findings[i].accepted.has_value();
        const bool isShown = isAccepted ? view.accepted == CheckView::EAccepted::Shown
                                        : view.limit.Shows(counting++);
        if (isShown)
            chosen.push_back(i);
    }
    return chosen;
}

std::string CountOf(std::size_t count, const std::string& singular)
{
    return std::to_string(count) + ' ' + singular + (count == 1 ? "" : "s");
}

/// Writes a report for people.
class CheckText
{
public:
    CheckText(std::ostream& out, const CheckView& view) : mOut(out), mView(view) {}

    void Write(const CheckReport& report)
    {
        for (const RuleReport& rule : report.rules)
            Write(rule);
        for (const IdleAcceptance& idle : report.idle)
            Write(idle);
        mOut << CountOf(report.subjects, "subject") << ", " << CountOf(report.joins, "join") << ": "
             << CountOf(report.Count(ESeverity::Error), "error") << ", "
             << CountOf(report.Count(ESeverity::Warning), "warning") << ", "
             << CountOf(report.Count(ESeverity::Note), "note");
        if (const std::size_t accepted = report.CountAccepted(); accepted > 0)
            mOut << "; " << CountOf(accepted, "finding") << " accepted";
        mOut << '\n';
    }

private:
    void Write(const RuleReport& rule);
    void WriteCauses(const RuleReport& rule);
    void Write(const RuleReport& rule, const Finding& finding);
    void Write(const RuleReport& rule, const Cause& cause);
    void Write(const IdleAcceptance& idle);

    std::ostream& mOut;
    const CheckView& mView;
};

void CheckText::Write(const RuleReport& rule)
{
    const std::size_t counting = rule.CountNew();
    if (mView.limit.CountShown(counting) < counting) {
        WriteCauses(rule);
    } else {
        for (const std::size_t position : ChooseFindings(rule, mView))
            Write(rule, rule.found.findings[position]);
    }
    if (!rule.found.notice.empty())
        mOut << "notice " << rule.code << ": " << rule.found.notice << '\n';
}

void CheckText::WriteCauses(const RuleReport& rule)
{
    const Rule* const known = FindRule(rule.code);
    const bool areNamed = !rule.causes.empty() && !rule.causes.front().name.empty();
    mOut << ToText(rule.severity) << ' ' << rule.code << ": " << known->title << ", "
         << rule.CountNew() << " times";
    if (areNamed)
        mOut << ", of " << CountOf(rule.causes.size(), "cause");
    mOut << ".\n";
    const std::size_t shown = mView.limit.CountShown(rule.causes.size());
    std::size_t left = rule.CountNew();
    for (const Cause& cause : std::span(rule.causes).first(shown)) {
        Write(rule, cause);
        left -= cause.findings.size();
    }
    if (left > 0)
        mOut << "    " << CountOf(rule.causes.size() - shown, "more cause") << " with "
             << CountOf(left, "finding") << '\n';
    mOut << "    advice: " << known->advice << " --all shows every finding.\n";
}

/// One join is named by the path itself.
std::string DecisionText(const CheckedPath& path)
{
    if (path.decidingJoin == amd_id() || path.joins.size() < 2)
        return {};
    return " (favour " + ToDisplayText(path.decidingName) + ')';
}

void CheckText::Write(const RuleReport& rule, const Finding& finding)
{
    mOut << (finding.accepted ? "accepted " : "") << ToText(rule.severity) << ' ' << rule.code
         << ": " << ToDisplayText(finding.text) << '\n';
    for (std::size_t i = 0; i < finding.paths.size(); ++i)
        mOut << "    path " << i + 1 << ": " << ToDisplayText(finding.paths[i].text)
             << DecisionText(finding.paths[i]) << '\n';
    if (finding.accepted)
        mOut << "    accepted in the " << PlaceOf(*finding.accepted) << ": "
             << ToDisplayText(finding.accepted->reason) << '\n';
    else
        mOut << "    advice: " << ToDisplayText(finding.advice) << '\n';
    mOut << "    id: " << ToDisplayText(finding.id) << '\n';
}

void CheckText::Write(const RuleReport& rule, const Cause& cause)
{
    constexpr std::size_t kExamples = 3;
    std::vector<std::string> places;
    for (const std::size_t position : cause.findings)
        places.push_back(rule.found.findings[position].placeText);
    mOut << "    ";
    if (!cause.name.empty())
        mOut << cause.findings.size() << " over or to " << ToDisplayText(cause.name) << ": ";
    mOut << ToDisplayText(JoinFirstTexts(places, kExamples)) << '\n';
}

void CheckText::Write(const IdleAcceptance& idle)
{
    const InputProblem problem{.place = {},
                               .text = "the " + std::string(PlaceOf(idle.acceptance)) +
                                       " accepts what is not found any more: " + idle.id,
                               .nearestNames = idle.nearest};
    mOut << "notice: " << ToDisplayText(InputError({problem}).what()) << '\n';
}

} // namespace

void WriteText(std::ostream& out, const CheckReport& report, const CheckView& view)
{
    CheckText(out, view).Write(report);
}

Json ToJson(const CheckReport& report, const std::string& modelName, const CheckView& view)
{
    Json json{{"format", "qerefine-check"}, {"version", kCheckVersion},
              {"model", modelName},         {"subjects", report.subjects},
              {"joins", report.joins},      {"accepted", report.CountAccepted()}};
    json["rules"] = Json::array();
    json["findings"] = Json::array();
    json["causes"] = Json::array();
    for (const RuleReport& rule : report.rules) {
        const std::vector<std::size_t> shown = ChooseFindings(rule, view);
        json["rules"].push_back(ToJson(rule, shown.size()));
        for (const std::size_t position : shown)
            json["findings"].push_back(ToJson(rule, rule.found.findings[position]));
        for (Json& cause : CausesToJson(rule))
            json["causes"].push_back(std::move(cause));
    }
    json["notFound"] = ToJson(report.idle);
    return json;
}

} // namespace qe::tool
