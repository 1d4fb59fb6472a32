#include "Toolkit/Answers/RequestOutput.h"

#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Batch/Batch.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/TextStream.h"
#include "Toolkit/Text/TextTable.h"

#include <cstddef>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace qe::tool {
namespace {

using Json = nlohmann::ordered_json;

/// Writes the members of the answer, or the error, behind those that are there.
class OutcomeWriter
{
public:
    OutcomeWriter(Json& json, const BatchEntry& entry, ListLimit alternatives)
        : mJson(json), mEntry(entry), mAlternatives(alternatives)
    {}

    void operator()(const Answer& answer)
    {
        mJson.update(ToJson(mEntry.question, answer, mEntry.risks, mAlternatives));
    }

    void operator()(const InputError& error)
    {
        Json problems = Json::array();
        for (const InputProblem& problem : error.GetProblems())
            problems.push_back({{"place", problem.place},
                                {"text", problem.text},
                                {"nearestNames", problem.nearestNames}});
        mJson["error"] = {{"kind", "request"}, {"text", error.what()}, {"problems", problems}};
    }

    void operator()(const InternalFailure& failure)
    {
        mJson["error"] = {{"kind", "internal"}, {"text", failure.text}};
    }

private:
    Json& mJson;
    const BatchEntry& mEntry;
    ListLimit mAlternatives;
};

} // namespace

Json ToJson(const BatchEntry& entry, ListLimit alternatives)
{
    Json json{{"line", entry.line}, {"id", entry.id}};
    std::visit(OutcomeWriter(json, entry, alternatives), entry.outcome);
    return json;
}

namespace {

using Json = nlohmann::ordered_json;

/// The version of the form that Documentation/answer.schema.json describes.
constexpr int kEvaluationVersion = 1;

struct Row
{
    std::string name;
    const Tally* tally;
};

std::vector<Row> MakeRows(const Evaluation& evaluation)
{
    std::vector<Row> rows{{"all", &evaluation.all}};
    if (evaluation.withoutHistory)
        rows.push_back({"all, without history", &*evaluation.withoutHistory});
    // One group alone is all requests again.
    if (evaluation.byGiven.size() > 1) {
        for (const auto& [given, tally] : evaluation.byGiven)
            rows.push_back({"given: " + (given.empty() ? "-" : given), &tally});
    }
    for (const auto& [subjects, tally] : evaluation.bySubjects)
        rows.push_back({"subjects: " + std::to_string(subjects), &tally});
    if (evaluation.byCase.size() > 1) {
        for (const auto& [caseName, tally] : evaluation.byCase)
            rows.push_back({"case: " + (caseName.empty() ? "-" : caseName), &tally});
    }
    return rows;
}

double Percent(std::size_t part, std::size_t whole)
{
    return whole == 0 ? 0.0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

std::string PercentText(std::size_t part, std::size_t whole)
{
    TextStream text;
    text << std::fixed << std::setprecision(1) << Percent(part, whole) << " %";
    return text.str();
}

void AddRow(TextTable& table, const Row& row)
{
    const Tally& tally = *row.tally;
    const std::size_t requests = tally.CountRequests();
    const std::size_t same = tally.Get(EComparison::Same);
    const std::size_t equallyGood = tally.CountEquallyGood();
    std::vector<std::string> cells{row.name,
                                   std::to_string(requests),
                                   std::to_string(same),
                                   PercentText(same, requests),
                                   std::to_string(equallyGood),
                                   PercentText(equallyGood, requests)};
    for (std::size_t kind = 1; kind < kComparisonCount; ++kind)
        cells.push_back(std::to_string(tally.counts[kind]));
    cells.push_back(std::to_string(tally.sameSkipping));
    table.AddRow(std::move(cells));
}

std::string PairsText(const std::vector<NamedPair>& pairs)
{
    const auto toText = [](const NamedPair& pair) { return pair.first + " = " + pair.second; };
    return pairs.empty() ? "-" : ToDisplayText(JoinTexts(pairs, toText));
}

void WriteDifference(std::ostream& out, const Difference& difference)
{
    out << "line " << difference.line << ' ' << ToDisplayText(difference.id) << ": "
        << ToText(difference.comparison);
    if (!difference.reason.empty()) {
        std::istringstream problems(difference.reason);
        const char* separator = ": ";
        for (std::string problem; std::getline(problems, problem); separator = "\n  ")
            out << separator << ToDisplayText(problem);
        out << '\n';
        return;
    }
    out << (difference.isCut ? " (the list of candidates was cut)" : "")
        << "\n  written only: " << PairsText(difference.onlyWritten)
        << "\n  chosen only:  " << PairsText(difference.onlyChosen) << '\n';
}

Json ToJson(const Tally& tally)
{
    const std::size_t requests = tally.CountRequests();
    Json counts = Json::object();
    for (std::size_t kind = 0; kind < kComparisonCount; ++kind)
        counts[std::string(ToText(static_cast<EComparison>(kind)))] = tally.counts[kind];
    return {{"requests", requests},
            {"same", Percent(tally.Get(EComparison::Same), requests)},
            {"amongEquallyGood", Percent(tally.CountEquallyGood(), requests)},
            {"sameSkipping", Percent(tally.sameSkipping, requests)},
            {"counts", counts}};
}

template <typename Map>
Json GroupsToJson(const Map& groups)
{
    Json object = Json::object();
    for (const auto& [key, tally] : groups) {
        if constexpr (std::is_same_v<typename Map::key_type, std::string>)
            object[key] = ToJson(tally);
        else
            object[std::to_string(key)] = ToJson(tally);
    }
    return object;
}

Json PairsToJson(const std::vector<NamedPair>& pairs)
{
    Json list = Json::array();
    for (const NamedPair& pair : pairs)
        list.push_back({pair.first, pair.second});
    return list;
}

} // namespace

void WriteText(std::ostream& out, const Evaluation& evaluation, EDifferences differences)
{
    std::vector<TextTable::Column> columns{{"requests", TextTable::EAlign::Left}};
    for (const char* const title : {"number", "same", "share", "equally good", "share", "other",
                                    "longer", "outside", "apart", "refused", "skipping"})
        columns.push_back({title, TextTable::EAlign::Right});
    TextTable table(std::move(columns));
    for (const Row& row : MakeRows(evaluation))
        AddRow(table, row);
    table.Write(out, "");
    if (evaluation.cutLists > 0)
        out << "Lists of candidates that were cut, so that the choice may be arbitrary: "
            << evaluation.cutLists << '\n';
    if (differences == EDifferences::Listed) {
        out << '\n';
        for (const Difference& difference : evaluation.differences)
            WriteDifference(out, difference);
    }
}

nlohmann::ordered_json ToJson(const Evaluation& evaluation)
{
    Json list = Json::array();
    for (const Difference& difference : evaluation.differences)
        list.push_back({{"line", difference.line},
                        {"id", difference.id},
                        {"comparison", ToText(difference.comparison)},
                        {"onlyWritten", PairsToJson(difference.onlyWritten)},
                        {"onlyChosen", PairsToJson(difference.onlyChosen)},
                        {"reason", difference.reason},
                        {"cut", difference.isCut}});
    return {
        {"version", kEvaluationVersion},
        {"cutLists", evaluation.cutLists},
        {"all", ToJson(evaluation.all)},
        {"withoutHistory", evaluation.withoutHistory ? ToJson(*evaluation.withoutHistory) : Json()},
        {"byGiven", GroupsToJson(evaluation.byGiven)},
        {"bySubjects", GroupsToJson(evaluation.bySubjects)},
        {"byCase", GroupsToJson(evaluation.byCase)},
        {"differences", list}};
}

} // namespace qe::tool
