// The tools that tell what a model holds: its subjects, one of them, and what a check finds.

#include "Toolkit/Agent/JoinEntry.h"
#include "Toolkit/Agent/ToolCall.h"

#include "AQE_I_Refiner.h"
#include "Engine/Model/Model.h"
#include "Engine/Model/ModelGateway.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Answers/AnswerText.h"
#include "Toolkit/Answers/CheckOutput.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/TextStream.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kSubjectsOfPage = 100;
constexpr std::size_t kUsualEntries = 200;
constexpr std::size_t kUsualFindings = 5;

/// Returns what is said about the object; empty for nothing.
std::string FindDescription(const ServedModel& served, const amd_id& id)
{
    const auto found = served.model.descriptions.find(id);
    return found == served.model.descriptions.end() ? "" : found->second;
}

/// Returns the subject as lists of subjects show it.
Json SubjectToJson(const ServedModel& served, const amd_id& id)
{
    const model::Model& model = *served.model.model;
    Json json{{"name", SubjectName(model, id)}, {"kind", model::ClassTitle(id.classCode)}};
    if (const amd_id target = model.GetTarget(id); target != id && target.IsValid())
        json["standsFor"] = SubjectName(model, target);
    if (std::string text = FindDescription(served, id); !text.empty())
        json["description"] = std::move(text);
    if (const auto rows = served.model.rows.find(id); rows != served.model.rows.end())
        json["rows"] = rows->second;
    return json;
}

/// Returns the line of such a subject.
std::string DescribeEntry(const Json& subject)
{
    std::string text = subject["name"].get<std::string>();
    if (subject.contains("standsFor"))
        text += " (stands for " + subject["standsFor"].get<std::string>() + ')';
    if (subject.contains("rows"))
        text += " (about " + subject["rows"].dump() + " rows)";
    if (subject.contains("description"))
        text += ": " + subject["description"].get<std::string>();
    return ToDisplayText(text);
}

std::vector<amd_id> FindMatches(const ServedModel& served, const std::string& match)
{
    const model::Model& model = *served.model.model;
    const std::string wanted = ascii::ToLower(match);
    std::vector<amd_id> found;
    for (const amd_id& id : model.GetSubjects()) {
        const bool matches =
            wanted.empty() ||
            ascii::ToLower(SubjectName(model, id)).find(wanted) != std::string::npos ||
            ascii::ToLower(FindDescription(served, id)).find(wanted) != std::string::npos;
        if (matches)
            found.push_back(id);
    }
    return found;
}

} // namespace

ToolResult ListSubjects(ToolCall& call)
{
    const ServedModel& served = call.FindModel();
    const std::string match = call.arguments.GetText("match");
    const std::vector<amd_id> found = FindMatches(served, match);
    const ListPage page = ReadPage(call, found.size(), kSubjectsOfPage);
    ToolResult result;
    result.text = "Model " + served.name + ": " + std::to_string(found.size()) +
                  (found.size() == 1 ? " subject" : " subjects") +
                  (match.empty() ? "" : " with \"" + match + "\"");
    result.text = ToDisplayText(result.text) + '\n';
    Json list = Json::array();
    for (std::size_t i = page.first; i < page.first + page.count; ++i) {
        list.push_back(SubjectToJson(served, found[i]));
        result.text += "  " + DescribeEntry(list.back()) + '\n';
    }
    result.content = {
        {"model", served.name}, {"total", found.size()}, {"subjects", std::move(list)}};
    if (page.next) {
        result.content["nextCursor"] = *page.next;
        result.text += "More follow at the cursor \"" + *page.next + "\".\n";
    }
    return result;
}

namespace {

/// Tells about one subject of a model.
class SubjectDescriber
{
public:
    SubjectDescriber(const ServedModel& served, const amd_id& subject, std::size_t limit)
        : mServed(served),
          mModel(*served.model.model),
          mRecord(*mModel.Find(subject)),
          mTable(*mModel.Find(mModel.GetTarget(subject))),
          mLimit(limit)
    {}

    [[nodiscard]] ToolResult Describe() const
    {
        ToolResult result{.content = {{"model", mServed.name}}};
        result.content.update(SubjectToJson(mServed, mRecord.id));
        result.text = DescribeEntry(result.content) + '\n';
        if (!mTable.text.empty())
            result.content["table"] = mTable.text;
        AddColumns(result);
        AddJoins(result);
        return result;
    }

private:
    void AddColumns(ToolResult& result) const
    {
        const auto items = mModel.GetItems(mRecord.id);
        Json& columns = result.content["columns"] = Json::array();
        for (const amd_id& id : items.first(std::min(mLimit, items.size()))) {
            const std::string& name = mModel.Find(id)->name;
            columns.push_back({{"name", name}});
            const std::string description = FindDescription(mServed, id);
            if (!description.empty())
                columns.back()["description"] = description;
            result.text += "  column " + ToDisplayText(name) + (description.empty() ? "" : ": ") +
                           ToDisplayText(description) + '\n';
        }
        result.content["columnCount"] = items.size();
        result.content["keys"] = mTable.keys;
        for (const std::vector<std::string>& key : mTable.keys)
            result.text += "  key " + ToDisplayText(JoinTexts(key)) + '\n';
        TellRest(result, items.size(), "columns");
    }

    void AddJoins(ToolResult& result) const
    {
        model::ModelGateway gateway(mServed.model.model);
        Json& joins = result.content["joins"] = Json::array();
        std::size_t count = 0;
        for (const amd_id& id : mModel.GetJoins()) {
            const model::ObjectRecord& record = *mModel.Find(id);
            if (record.left != mRecord.id && record.right != mRecord.id)
                continue;
            AQE_I_Refiner::QEjoinInfo info;
            if (!AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, id, info))
                continue;
            if (++count > mLimit)
                continue;
            const AnswerJoin join = ToAnswerJoin(info);
            joins.push_back(JoinToJson(mModel, join));
            result.text += "  join " + ToDisplayText(DescribeEnds(mModel, join)) + '\n';
        }
        result.content["joinCount"] = count;
        TellRest(result, count, "joins");
    }

    void TellRest(ToolResult& result, std::size_t count, const char* what) const
    {
        if (count > mLimit)
            result.text += "  and " + std::to_string(count - mLimit) + " more " + what +
                           ", which a larger limit shows\n";
    }

    const ServedModel& mServed;
    const model::Model& mModel;
    const model::ObjectRecord& mRecord;
    const model::ObjectRecord& mTable;
    std::size_t mLimit;
};

std::vector<std::string> DescribeDecisions(const ToolModel& model)
{
    const auto nameJoins = [&model](const std::vector<amd_id>& joins) {
        std::vector<std::string> names;
        names.reserve(joins.size());
        for (const amd_id& join : joins)
            names.push_back(JoinName(*model.model, join));
        return names;
    };
    std::vector<std::string> texts;
    for (const Decision& decision : model.decisions)
        texts.push_back(DescribeDecision({.subjects = SubjectNames(*model.model, decision.subjects),
                                          .preferred = nameJoins(decision.preferred),
                                          .avoided = nameJoins(decision.avoided),
                                          .reason = decision.reason}));
    return texts;
}

ToolResult DescribeModel(const ServedModel& served)
{
    const model::Model& model = *served.model.model;
    const auto isShortcut = [](const amd_id& id) { return id.classCode == IdClassShortcut; };
    const auto subjects = model.GetSubjects();
    const SqlDialect* const dialect = served.model.writtenNames.dialect;
    ToolResult result;
    result.content = {{"model", served.name},
                      {"name", served.name},
                      {"kind", "model"},
                      {"source", served.source},
                      {"dialect", dialect == nullptr ? "" : dialect->word},
                      {"subjects", subjects.size()},
                      {"shortcuts", std::count_if(subjects.begin(), subjects.end(), isShortcut)},
                      {"joinCount", model.GetJoins().size()},
                      {"decisions", DescribeDecisions(served.model)},
                      {"notes", served.model.notes}};
    result.text = "Model " + served.name + " from " + served.source + ": " +
                  std::to_string(subjects.size()) + " subjects, " +
                  std::to_string(model.GetJoins().size()) + " joins" +
                  (served.model.origin.empty() ? "" : ", " + served.model.origin);
    result.text = ToDisplayText(result.text) + '\n';
    for (const std::string& decision : DescribeDecisions(served.model))
        result.text += ToDisplayText(decision) + '\n';
    for (const std::string& note : served.model.notes)
        result.text += "note: " + ToDisplayText(note) + '\n';
    return result;
}

} // namespace

ToolResult DescribeSubject(ToolCall& call)
{
    constexpr NumberRange kLimits{.minimum = 1, .maximum = 10'000};
    const ServedModel& served = call.FindModel();
    const std::string name = call.arguments.GetText("subject");
    const auto limit = call.arguments.GetNumber("limit", kLimits);
    call.problems.ThrowIfAny();
    if (name.empty())
        return DescribeModel(served);
    NameResolver names(*served.model.model);
    const std::vector<amd_id> found = names.ResolveSubjects("subject", {name});
    names.ThrowProblems();
    return SubjectDescriber(served, found.front(),
                            limit ? static_cast<std::size_t>(*limit) : kUsualEntries)
        .Describe();
}

ToolResult CheckServedModel(ToolCall& call)
{
    constexpr NumberRange kLimits{.minimum = 1, .maximum = 1000};
    const ServedModel& served = call.FindModel();
    const auto limit = call.arguments.GetNumber("limit", kLimits);
    call.problems.ThrowIfAny();
    const CheckView view{.limit =
                             ListLimit(limit ? static_cast<std::size_t>(*limit) : kUsualFindings)};
    const CheckReport report = CheckModel(served.model, {.history = served.history});
    TextStream text;
    WriteText(text, report, view);
    return {.text = text.str(), .content = ToJson(report, served.name, view)};
}

} // namespace qe::tool
