#include "Toolkit/Answers/ReportOutput.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Ask/Reports.h"
#include "Toolkit/Text/DisplayText.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

namespace qe::tool {
namespace {

using Json = nlohmann::ordered_json;

} // namespace

void WriteText(std::ostream& out, const FactReport& report, const model::Model& model)
{
    out << report.facts.size() << (report.facts.size() == 1 ? " fact\n" : " facts\n");
    for (const FactReport::Fact& fact : report.facts) {
        out << "  " << ToDisplayText(SubjectName(model, fact.subject));
        if (!fact.allDimensions.empty())
            out << ": " << ToDisplayList(SubjectNames(model, fact.allDimensions));
        out << '\n';
    }
    if (report.facts.size() > 1)
        out << "Shared dimensions: " << ToDisplayList(SubjectNames(model, report.sharedDimensions))
            << '\n';
    for (const FactReport::Problem& problem : report.problems)
        out << "Join " << ToDisplayText(model.Find(problem.join)->name) << ": "
            << ToDisplayText(problem.text) << '\n';
}

Json ToJson(const FactReport& report, const model::Model& model)
{
    Json facts = Json::array();
    for (const FactReport::Fact& fact : report.facts)
        facts.push_back({{"fact", SubjectName(model, fact.subject)},
                         {"ownDimensions", SubjectNames(model, fact.ownDimensions)},
                         {"allDimensions", SubjectNames(model, fact.allDimensions)}});
    Json problems = Json::array();
    for (const FactReport::Problem& problem : report.problems)
        problems.push_back({{"join", ToText(problem.join)},
                            {"name", model.Find(problem.join)->name},
                            {"text", problem.text}});
    return {{"version", kAnswerVersion},
            {"facts", facts},
            {"sharedDimensions", SubjectNames(model, report.sharedDimensions)},
            {"problems", problems}};
}

namespace {

using Json = nlohmann::ordered_json;

std::string DisplayName(const model::Model& model, const amd_id& subject)
{
    return ToDisplayText(SubjectName(model, subject));
}

} // namespace

void WriteText(std::ostream& out, const ShortcutReport& report, const model::Model& model)
{
    out << report.groups.size() << (report.groups.size() == 1 ? " group\n" : " groups\n");
    for (const auto& [key, members] : report.groups)
        out << "  " << DisplayName(model, key) << ": "
            << ToDisplayList(SubjectNames(model, members)) << '\n';
    for (const amd_id& shortcut : report.ungrouped)
        out << "In no group: " << DisplayName(model, shortcut) << " (stands for "
            << DisplayName(model, model.GetTarget(shortcut)) << ")\n";
    if (!report.joins.empty())
        out << "Shortcut joins\n";
    for (const ShortcutReport::Join& join : report.joins)
        out << "  " << ToText(join.id) << "  " << DisplayName(model, join.left) << " 1..1 -- 1..1 "
            << DisplayName(model, join.right) << '\n';
}

Json ToJson(const ShortcutReport& report, const model::Model& model)
{
    Json groups = Json::array();
    for (const auto& [key, members] : report.groups)
        groups.push_back(
            {{"key", SubjectName(model, key)}, {"members", SubjectNames(model, members)}});
    Json joins = Json::array();
    for (const ShortcutReport::Join& join : report.joins)
        joins.push_back({{"id", ToText(join.id)},
                         {"left", SubjectName(model, join.left)},
                         {"right", SubjectName(model, join.right)}});
    return {{"version", kAnswerVersion},
            {"groups", groups},
            {"ungrouped", SubjectNames(model, report.ungrouped)},
            {"joins", joins}};
}

} // namespace qe::tool
