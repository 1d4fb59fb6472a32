#include "Toolkit/Answers/ReportOutput.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Ask/Reports.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {
namespace {

using Json = nlohmann::ordered_json;

} // namespace

namespace {

using Ids = std::vector<amd_id>;

/// With more facts than this, those with the same dimensions share a line.
constexpr std::size_t kFactsApart = 20;

/// Writes facts for people.
class FactText
{
public:
    FactText(std::ostream& out, const model::Model& model, EFactLines lines)
        : mOut(out), mModel(model), mLines(lines)
    {}

    void Write(const FactReport& report)
    {
        mOut << report.facts.size() << (report.facts.size() == 1 ? " fact\n" : " facts\n");
        if (mLines == EFactLines::Grouped && report.facts.size() > kFactsApart) {
            WriteGroups(report);
        } else {
            for (const FactReport::Fact& fact : report.facts)
                WriteLine(SubjectNames(mModel, {fact.subject}), fact.allDimensions);
        }
        if (report.facts.size() > 1)
            mOut << "Shared dimensions: "
                 << ToDisplayList(SubjectNames(mModel, report.sharedDimensions)) << '\n';
        WriteProblems(report);
    }

private:
    /// Facts with the same dimensions, in the order of the first of each.
    void WriteGroups(const FactReport& report)
    {
        std::map<Ids, std::size_t> positions;
        std::vector<std::pair<Ids, Ids>> groups;
        for (const FactReport::Fact& fact : report.facts) {
            Ids dimensions = fact.allDimensions;
            std::sort(dimensions.begin(), dimensions.end());
            const auto [known, isNew] = positions.emplace(dimensions, groups.size());
            if (isNew)
                groups.emplace_back(Ids(), fact.allDimensions);
            groups[known->second].first.push_back(fact.subject);
        }
        for (const auto& [facts, dimensions] : groups)
            WriteLine(SubjectNames(mModel, facts), dimensions);
    }

    void WriteLine(const std::vector<std::string>& facts, const Ids& dimensions)
    {
        mOut << "  " << ToDisplayText(ListSome(facts));
        if (!dimensions.empty())
            mOut << ": " << ToDisplayText(ListSome(SubjectNames(mModel, dimensions)));
        mOut << '\n';
    }

    /// Joins that are refused for the same reason share a line.
    void WriteProblems(const FactReport& report)
    {
        std::vector<std::pair<std::string, std::vector<std::string>>> groups;
        for (const FactReport::Problem& problem : report.problems) {
            const auto isSame = [&](const auto& group) { return group.first == problem.text; };
            auto group = std::find_if(groups.begin(), groups.end(), isSame);
            if (group == groups.end() || mLines == EFactLines::Each)
                group = groups.insert(groups.end(), {problem.text, {}});
            group->second.push_back(mModel.Find(problem.join)->name);
        }
        for (const auto& [text, joins] : groups)
            mOut << (joins.size() == 1 ? "Join " : std::to_string(joins.size()) + " joins, ")
                 << ToDisplayText(ListSome(joins)) << ": " << ToDisplayText(text) << '\n';
    }

    [[nodiscard]] std::string ListSome(const std::vector<std::string>& names) const
    {
        constexpr std::size_t kShown = 10;
        return mLines == EFactLines::Each ? JoinTexts(names) : JoinFirstTexts(names, kShown);
    }

    std::ostream& mOut;
    const model::Model& mModel;
    EFactLines mLines;
};

} // namespace

void WriteText(std::ostream& out, const FactReport& report, const model::Model& model,
               EFactLines lines)
{
    FactText(out, model, lines).Write(report);
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
