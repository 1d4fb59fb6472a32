#include "Tests/Fuzz/RequestFaults.h"

#include "Engine/Model/Model.h"
#include "Tests/Fuzz/MemoryFile.h"
#include "Tests/Fuzz/ReadingFaults.h"
#include "Toolkit/Answers/RequestOutput.h"
#include "Toolkit/Batch/Batch.h"
#include "Toolkit/Batch/LineReader.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/History/HistoryFile.h"
#include "Toolkit/History/HistoryPack.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/History/LoadHistory.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/JsonText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <sstream>
#include <tuple>
#include <variant>
#include <vector>

namespace qe::test {

namespace {

using namespace qe::tool;

/// A ring with a branch, a role, and joins over two columns.
constexpr const char* kShop = R"({
  "subjects": [
    {"name": "sale", "items": ["id", "customer_id", "payer_id", "day", "store_id"],
     "keys": [["id"]]},
    {"name": "customer", "items": ["id", "region_id"], "keys": [["id"]]},
    {"name": "store", "items": ["id", "region_id"], "keys": [["id"]]},
    {"name": "region", "items": ["id", "name"], "keys": [["id"]]},
    {"name": "line", "items": ["sale_id", "number", "product"], "keys": [["sale_id", "number"]]},
    {"name": "back", "items": ["sale_id", "number"]},
    "island"],
  "shortcuts": [{"name": "payer", "target": "customer"}],
  "relationships": [
    {"name": "sc", "left": "sale", "right": "customer", "leftCardinality": "0..n",
     "rightCardinality": "1..1", "condition": "[sale].[customer_id] = [customer].[id]"},
    {"name": "sp", "left": "sale", "right": "payer", "leftCardinality": "0..n",
     "rightCardinality": "0..1", "condition": "[sale].[payer_id] = [payer].[id]"},
    {"name": "ss", "left": "sale", "right": "store", "leftCardinality": "0..n",
     "rightCardinality": "1..1", "condition": "[sale].[store_id] = [store].[id]"},
    {"name": "cr", "left": "customer", "right": "region", "leftCardinality": "0..n",
     "rightCardinality": "1..1", "condition": "[customer].[region_id] = [region].[id]"},
    {"name": "sr", "left": "store", "right": "region", "leftCardinality": "0..n",
     "rightCardinality": "1..1", "condition": "[store].[region_id] = [region].[id]"},
    {"name": "ls", "left": "line", "right": "sale", "leftCardinality": "1..n",
     "rightCardinality": "1..1", "condition": "[line].[sale_id] = [sale].[id]"},
    {"name": "bl", "left": "back", "right": "line", "leftCardinality": "0..n",
     "rightCardinality": "1..1",
     "condition": "[back].[sale_id] = [line].[sale_id] AND [back].[number] = [line].[number]"}]
})";

const ToolModel& GetShop()
{
    static const ToolModel shop = ReadModelText(kShop, "shop.json");
    return shop;
}

auto Tie(const Question& question)
{
    return std::tie(question.operation, question.subjects, question.secondSet,
                    question.favouredJoins, question.requiredJoins, question.avoidedJoins,
                    question.favouredSubjects, question.restriction.onlySubjects,
                    question.restriction.withoutSubjects, question.restriction.onlyJoins,
                    question.restriction.withoutJoins, question.ranking.useFactTableCount,
                    question.ranking.useStraightestPath, question.selector.kind,
                    question.selector.checkOptional, question.selector.subjectsAreCandidates,
                    question.governors.crossProduct, question.governors.grouping,
                    question.commandType);
}

std::string FindAnswerFault(const BatchEntry& entry)
{
    if (const auto* const error = std::get_if<InputError>(&entry.outcome))
        return FindFault(*error);
    if (const auto* const failure = std::get_if<InternalFailure>(&entry.outcome))
        return "the tool failed: " + failure->text;
    const auto& error = std::get<Answer>(entry.outcome).error;
    return error && error->kind == AnswerError::EKind::Internal
               ? "the library failed: " + error->text
               : "";
}

std::string Pack(const std::vector<PastQuery>& queries)
{
    std::ostringstream out;
    WritePack(out, queries);
    return out.str();
}

HistoryEntries ReadHistory(std::string_view bytes, const SchemaColumns& columns)
{
    const MemoryFile file(bytes);
    return ReadHistoryFile(file.GetPath(), &columns);
}

std::vector<std::size_t> CountUses(const JoinHistory& history)
{
    std::vector<std::size_t> uses;
    for (const JoinHistory::Join& join : history.GetJoins())
        uses.push_back(join.uses);
    return uses;
}

std::string FindCountFault(JoinHistory& history, const std::vector<PastQuery>& queries)
{
    for (const PastQuery& query : queries)
        history.Add(query);
    const std::vector<std::size_t> counts = CountUses(history);
    for (std::size_t use = 0; use < history.GetUses().size(); ++use)
        history.Forget(use);
    const std::vector<std::size_t> none = CountUses(history);
    if (std::any_of(none.begin(), none.end(), [](std::size_t count) { return count != 0; }))
        return "joins of forgotten queries count";
    for (std::size_t use = 0; use < history.GetUses().size(); ++use)
        history.Remember(use);
    return CountUses(history) == counts ? "" : "queries that came back count otherwise";
}

} // namespace

std::string FindRequestFault(std::string_view bytes)
{
    try {
        const RequestDocument request = ParseRequest(bytes);
        const Question question = ReadQuestion(request, {});
        const Question again = ReadQuestion(ParseRequest(ToJsonLine(request.json)), {});
        return Tie(question) == Tie(again) ? "" : "the same request is another question";
    } catch (const InputError& error) {
        return FindFault(error);
    }
}

std::string FindBatchFault(std::string_view bytes)
{
    std::string fault;
    std::size_t expected = 0;
    std::istringstream input{std::string(bytes)};
    std::ostringstream output;
    const BatchSummary summary =
        RunBatch(GetShop(), input,
                 {.stream = output,
                  .toLine =
                      [&](const BatchEntry& entry) {
                          ++expected;
                          if (fault.empty())
                              fault = FindAnswerFault(entry);
                          return ToJsonLine(ToJson(entry, ListLimit::All()));
                      }},
                 {.longestLine = 300});
    std::istringstream lines(output.str());
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        if (!nlohmann::json::accept(line))
            return "an answer is no JSON: " + line;
    }
    if (count != expected || summary.requests != expected)
        return "not every request has one answer";
    return fault;
}

std::string FindSettingFault(std::string_view bytes)
{
    try {
        const Setting setting = ParseSetting(bytes);
        const Setting again = ParseSetting(ToText(setting));
        return setting.section == again.section && setting.key == again.key &&
                       setting.value == again.value
                   ? ""
                   : "a setting is written as another";
    } catch (const InputError& error) {
        return FindFault(error);
    }
}

std::string FindHistoryFault(std::string_view bytes)
{
    JoinHistory history(*GetShop().model);
    HistoryEntries entries;
    try {
        entries = ReadHistory(bytes, history.GetColumns());
    } catch (const InputError& error) {
        return FindFault(error);
    }
    // A statement may hold no query about joins, or several.
    if (entries.unread > entries.entries ||
        entries.firstUnread.size() != std::min(entries.unread, HistoryEntries::kNamed))
        return "more entries are unread than there are";
    for (const InputProblem& problem : entries.firstUnread) {
        if (std::string fault = FindFault(InputError({problem})); !fault.empty())
            return fault;
    }
    const std::string packed = Pack(entries.queries);
    if (!packed.empty() && Pack(ReadHistory(packed, history.GetColumns()).queries) != packed)
        return "a packed history is packed otherwise when it is read: " + packed;
    if (std::string fault = FindCountFault(history, entries.queries); !fault.empty())
        return fault;
    return FindFault(WithHistory(GetShop(), std::make_shared<JoinHistory>(history)));
}

} // namespace qe::test
