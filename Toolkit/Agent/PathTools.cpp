// The tools that ask for join paths: the FROM clause, other ways to join, and the reasons.

#include "Toolkit/Agent/JoinEntry.h"
#include "Toolkit/Agent/PathQuestion.h"
#include "Toolkit/Agent/PathWarnings.h"
#include "Toolkit/Agent/ToolCall.h"
#include "Toolkit/Agent/ToolList.h"
#include "Toolkit/Answers/AnswerSql.h"
#include "Toolkit/Answers/AnswerText.h"
#include "Toolkit/Answers/NamesJson.h"
#include "Toolkit/Answers/RiskText.h"
#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Ask/StartSubject.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;
using Ids = std::vector<amd_id>;

/// The pages of a list of alternatives, each of which is looked at for its risks.
constexpr std::size_t kAlternativesOfPage = 10;
constexpr std::size_t kNamesInText = 10;

/// A question that a tool asked, and what came of it.
struct AskedPath
{
    const ServedModel& served;
    Question question{};
    Answer answer{};

    [[nodiscard]] const model::Model& GetModel() const { return *served.asked.model; }
};

/// Returns the arguments that make up the question.
nlohmann::json SelectPathArguments(const nlohmann::json& arguments)
{
    nlohmann::json selected = nlohmann::json::object();
    for (const std::string& key : ListArgumentGroup("path")) {
        if (arguments.contains(key))
            selected[key] = arguments[key];
    }
    return selected;
}

/// Returns the arguments that a tool is called with once more.
nlohmann::json SelectRepeatedArguments(const nlohmann::json& arguments)
{
    nlohmann::json repeated = arguments;
    for (const std::string& key : ListArgumentGroup("page"))
        repeated.erase(key);
    return repeated;
}

AskedPath AskPath(ToolCall& call, const SelectorChoice& selector = {})
{
    const ServedModel& served = call.FindModel();
    AskedPath asked{.served = served};
    asked.question = ReadQuestion({.json = SelectPathArguments(call.json)}, {});
    asked.question.selector = selector;
    asked.answer = call.asker.Ask(served, asked.question);
    if (asked.answer.error)
        throw InputError({{"", asked.answer.error->text}});
    return asked;
}

SqlOptions ReadSqlOptions(ToolCall& call)
{
    JsonWords<const SqlDialect*> dialects;
    for (const SqlDialect& dialect : GetSqlDialects())
        dialects.emplace_back(dialect.word, &dialect);
    SqlOptions options;
    options.dialect = call.arguments.GetChoice("dialect", dialects).value_or(nullptr);
    if (call.arguments.GetBoolean("innerJoins").value_or(false))
        options.outerJoins = JoinOptions::EOuterJoins::Never;
    call.problems.ThrowIfAny();
    return options;
}

std::string ListSubjectNames(const Answer& answer)
{
    std::vector<std::string> names;
    for (const amd_id& subject : answer.terminals)
        names.push_back(answer.NameOf(subject));
    return JoinFirstTexts(names, kNamesInText);
}

Json PathToJson(const AskedPath& asked)
{
    Json joins = Json::array();
    for (const amd_id& id : asked.answer.path) {
        if (const AnswerJoin* const join = asked.answer.FindJoin(id))
            joins.push_back(JoinToJson(asked.GetModel(), *join));
    }
    return joins;
}

Json SeparationToJson(const Answer& answer)
{
    if (answer.connected)
        return {};
    Json groups = Json::array();
    for (const Ids& group : answer.separation.groups)
        groups.push_back(NamesToJson(answer, group));
    return {{"groups", std::move(groups)},
            {"bridge", NamesToJson(answer, answer.separation.bridge)}};
}

std::string DescribeSeparation(const Answer& answer)
{
    std::string text = "NO JOIN PATH connects " + ToDisplayText(ListSubjectNames(answer)) +
                       ". Do not invent a join; query them one by one, or tell the user.\n";
    for (const Ids& group : answer.separation.groups) {
        std::vector<std::string> names;
        for (const amd_id& subject : group)
            names.push_back(answer.NameOf(subject));
        text += "  together: " + ToDisplayText(JoinFirstTexts(names, kNamesInText)) + '\n';
    }
    return text;
}

/// What a FROM clause came to.
struct WrittenPath
{
    /// Nothing when the path has none.
    std::optional<std::string> from{};
    /// Why not.
    std::string problem{};
};

/// What is told of a path that connects the subjects.
struct FoundPath
{
    Risks risks{};
    std::vector<PathWarning> warnings{};
    std::optional<PathQuestion> question{};
    WrittenPath written{};
};

WrittenPath WriteFrom(const AskedPath& asked, const SqlOptions& options)
{
    try {
        return {.from = WriteSql(asked.served.asked, asked.answer, asked.answer.path, options)};
    } catch (const InputError& problem) {
        return {.problem = problem.what()};
    }
}

std::string WriteNotices(const std::vector<std::string>& notices)
{
    std::string text;
    for (const std::string& notice : notices)
        text += "Notice: " + ToDisplayText(notice) + '\n';
    return text;
}

std::string DescribePath(const AskedPath& asked, const FoundPath& found)
{
    const Answer& answer = asked.answer;
    const auto& [from, problem] = found.written;
    const std::string joins = std::to_string(answer.path.size()) +
                              (answer.path.size() == 1 ? " join connects " : " joins connect ");
    std::string text = ToDisplayText("Model " + asked.served.name + ": " + joins +
                                     ListSubjectNames(answer) + '.') +
                       "\n\n";
    text += from ? *from : "No FROM clause can be written: " + ToDisplayText(problem);
    if (text.back() != '\n')
        text += '\n';
    text += '\n';
    if (const std::string rows = DescribeRows(answer, found.risks); !rows.empty())
        text += "Rows: " + ToDisplayText(rows) + '\n';
    if (const std::string outer = DescribeOuterJoins(answer, found.risks); !outer.empty())
        text += "Outer joins: " + ToDisplayText(outer) + '\n';
    text += ToText(found.warnings);
    return found.question ? text + ToText(*found.question) : text;
}

Json ToJson(const AskedPath& asked, const FoundPath& found)
{
    const Answer& answer = asked.answer;
    const std::optional<std::string>& from = found.written.from;
    return {{"model", asked.served.name},
            {"subjects", NamesToJson(answer, answer.terminals)},
            {"connected", answer.connected},
            {"from", from ? Json(*from) : Json()},
            {"rows", DescribeRows(answer, found.risks)},
            {"joins", PathToJson(asked)},
            {"warnings", qe::tool::ToJson(found.warnings)},
            {"question", qe::tool::ToJson(found.question)},
            {"separation", SeparationToJson(answer)},
            {"notices", answer.notices}};
}

} // namespace

ToolResult FindJoinPath(ToolCall& call)
{
    SqlOptions options = ReadSqlOptions(call);
    const std::string start = call.arguments.GetText("start");
    const AskedPath asked = AskPath(call);
    const Answer& answer = asked.answer;
    if (!start.empty())
        options.start = FindStart(asked.GetModel(), answer, "start", start);
    FoundPath found;
    if (answer.connected) {
        found.risks = FindRisks(asked.question, answer, options);
        found.warnings = ListPathWarnings(answer, found.risks);
        found.question = FindPathQuestion(asked.GetModel(), answer, call.json);
        found.written = WriteFrom(asked, options);
    }
    ToolResult result{.content = ToJson(asked, found)};
    result.text = answer.connected ? DescribePath(asked, found) : DescribeSeparation(answer);
    result.text += WriteNotices(answer.notices);
    return result;
}

namespace {

Json AlternativeToJson(const AskedPath& asked, const nlohmann::json& arguments, std::size_t index,
                       const std::vector<PathWarning>& warnings)
{
    const Answer& answer = asked.answer;
    const Alternative& alternative = answer.alternatives[index];
    Json names = Json::array();
    for (const amd_id& join : alternative.joins)
        names.push_back(JoinName(asked.GetModel(), join));
    const bool isTurnable = answer.ambiguity && index < answer.ambiguity->equallyCheap;
    const auto next =
        isTurnable ? MakeArguments(asked.GetModel(), answer, arguments, index) : std::nullopt;
    return {{"number", index + 1},          {"isChosen", answer.chosen == index},
            {"joins", std::move(names)},    {"weight", alternative.weight},
            {"warnings", ToJson(warnings)}, {"arguments", next ? Json(*next) : Json()}};
}

std::string DescribeAlternative(const Json& alternative, const std::vector<PathWarning>& warnings)
{
    std::string text =
        std::to_string(alternative["number"].get<std::size_t>()) + ". " +
        JoinTexts(alternative["joins"], [](const Json& name) { return name.get<std::string>(); }) +
        (alternative["isChosen"].get<bool>() ? " (chosen)" : "");
    text = ToDisplayText(text) + '\n';
    if (!alternative["arguments"].is_null())
        text += "   join_path with " + ToDisplayText(alternative["arguments"].dump()) + '\n';
    return text + ToText(warnings);
}

} // namespace

ToolResult ListPathAlternatives(ToolCall& call)
{
    const AskedPath asked = AskPath(call);
    const Answer& answer = asked.answer;
    const std::size_t total = answer.alternatives.size();
    const ListPage page = ReadPage(call, total, kAlternativesOfPage);
    const nlohmann::json arguments = SelectRepeatedArguments(call.json);
    ToolResult result;
    result.text = answer.connected ? ToDisplayText(std::to_string(total) + " ways connect " +
                                                   ListSubjectNames(answer) + ", best first:") +
                                         '\n'
                                   : DescribeSeparation(answer);
    Json list = Json::array();
    for (std::size_t index = page.first; index < page.first + page.count; ++index) {
        const auto warnings = ListPathWarnings(
            answer, FindRisks(answer, answer.alternatives[index].joins, JoinOptions()));
        list.push_back(AlternativeToJson(asked, arguments, index, warnings));
        result.text += DescribeAlternative(list.back(), warnings);
    }
    result.content = {{"model", asked.served.name},
                      {"subjects", NamesToJson(answer, answer.terminals)},
                      {"total", total},
                      {"alternatives", std::move(list)},
                      {"notices", answer.notices}};
    if (page.next) {
        result.content["nextCursor"] = *page.next;
        result.text += "More follow at the cursor \"" + *page.next + "\".\n";
    }
    result.text += WriteNotices(answer.notices);
    return result;
}

namespace {

std::vector<std::string> DescribeAppliedDecisions(const Answer& answer)
{
    std::vector<std::string> texts;
    for (const AnswerDecision& decision : answer.decisions)
        texts.push_back(DescribeDecision(decision));
    return texts;
}

Json WeighedPathToJson(const AskedPath& asked)
{
    Json joins = Json::array();
    for (const amd_id& id : asked.answer.path) {
        if (const AnswerJoin* const join = asked.answer.FindJoin(id))
            joins.push_back({{"join", JoinToJson(asked.GetModel(), *join)},
                             {"kind", JoinKindTitle(id)},
                             {"weight", join->weight}});
    }
    return joins;
}

std::string DescribeWeighedPath(const AskedPath& asked)
{
    std::string text;
    for (const amd_id& id : asked.answer.path) {
        const AnswerJoin* const join = asked.answer.FindJoin(id);
        if (join == nullptr)
            continue;
        text += "  " +
                ToDisplayText(DescribeEnds(asked.GetModel(), *join) + " (" +
                              std::string(JoinKindTitle(id)) + ", weight " +
                              std::to_string(join->weight) + ')') +
                '\n';
    }
    return text;
}

std::string DescribeReasons(const AskedPath& asked, const Risks& risks)
{
    const Answer& answer = asked.answer;
    const std::size_t total = answer.alternatives.size();
    std::string text =
        ToDisplayText("The path between " + ListSubjectNames(answer) +
                      (answer.weight ? " weighs " + std::to_string(*answer.weight) : "") +
                      "; the least weight wins.") +
        '\n' + DescribeWeighedPath(asked);
    text += "Candidates: " + std::to_string(total) +
            (answer.criterion.empty() ? "" : "; decided by: " + DecisionText(answer)) + '\n';
    for (const std::string& decision : DescribeAppliedDecisions(answer))
        text += ToDisplayText(decision) + '\n';
    if (answer.pastUse) {
        for (const std::string& query : answer.pastUse->queries)
            text += "Past query: " + ToDisplayText(query) + '\n';
    }
    if (const std::string rows = DescribeRows(answer, risks); !rows.empty())
        text += "Rows: " + ToDisplayText(rows) + '\n';
    return text;
}

} // namespace

ToolResult ExplainPath(ToolCall& call)
{
    const AskedPath asked = AskPath(call, {.explainsHistory = true});
    const Answer& answer = asked.answer;
    const Risks risks = FindRisks(asked.question, answer, {});
    const std::vector<PathWarning> warnings =
        answer.connected ? ListPathWarnings(answer, risks) : std::vector<PathWarning>();
    ToolResult result;
    result.text = answer.connected ? DescribeReasons(asked, risks) + ToText(warnings)
                                   : DescribeSeparation(answer);
    result.text += WriteNotices(answer.notices);
    result.content = {
        {"model", asked.served.name},
        {"subjects", NamesToJson(answer, answer.terminals)},
        {"connected", answer.connected},
        {"weight", answer.weight ? Json(*answer.weight) : Json()},
        {"candidates", answer.alternatives.size()},
        {"decidedBy", answer.criterion.empty() ? "" : DecisionText(answer)},
        {"joins", WeighedPathToJson(asked)},
        {"decisions", DescribeAppliedDecisions(answer)},
        {"pastQueries", answer.pastUse ? answer.pastUse->queries : std::vector<std::string>()},
        {"rowsOf", NamesToJson(answer, risks.rowsOf)},
        {"outerJoined", NamesToJson(answer, risks.outerJoined)},
        {"warnings", ToJson(warnings)}};
    return result;
}

} // namespace qe::tool
