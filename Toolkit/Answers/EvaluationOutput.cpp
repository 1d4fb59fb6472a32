#include "Toolkit/Answers/EvaluationOutput.h"

#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <sstream>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

/// The version of the form that the documentation describes.
constexpr int kJsonVersion = 1;
constexpr std::size_t kNameWidth = 28;

struct Row
{
    std::string name;
    const Tally* tally;
};

std::vector<Row> MakeRows(const Evaluation& evaluation)
{
    std::vector<Row> rows{{"all", &evaluation.all}};
    // A split into one group says nothing more.
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

std::string ShareText(std::size_t part, std::size_t whole)
{
    std::ostringstream text;
    text << std::setw(6) << part << std::fixed << std::setprecision(1) << std::setw(7)
         << Percent(part, whole) << " %";
    return text.str();
}

void WriteRow(std::ostream& output, const Row& row)
{
    const Tally& tally = *row.tally;
    const std::size_t requests = tally.CountRequests();
    output << std::left << std::setw(static_cast<int>(kNameWidth)) << row.name << std::right
           << std::setw(9) << requests << ' ' << ShareText(tally.Get(EComparison::Same), requests)
           << "  " << ShareText(tally.CountEquallyGood(), requests);
    for (std::size_t kind = 1; kind < ComparisonCount; ++kind)
        output << std::setw(10) << tally.counts[kind];
    output << '\n';
}

std::string PairsText(const std::vector<NamedPair>& pairs)
{
    const auto toText = [](const NamedPair& pair) { return pair.first + " = " + pair.second; };
    return pairs.empty() ? "-" : JoinTexts(pairs, toText);
}

void WriteDifference(std::ostream& output, const Difference& difference)
{
    output << "line " << difference.line << ' ' << difference.id << ": "
           << ToText(difference.comparison);
    if (!difference.reason.empty()) {
        output << ": " << difference.reason << '\n';
        return;
    }
    output << "\n  written only: " << PairsText(difference.onlyWritten)
           << "\n  chosen only:  " << PairsText(difference.onlyChosen) << '\n';
}

Json ToJson(const Tally& tally)
{
    const std::size_t requests = tally.CountRequests();
    Json counts = Json::object();
    for (std::size_t kind = 0; kind < ComparisonCount; ++kind)
        counts[std::string(ToText(static_cast<EComparison>(kind)))] = tally.counts[kind];
    return {{"requests", requests},
            {"same", Percent(tally.Get(EComparison::Same), requests)},
            {"amongEquallyGood", Percent(tally.CountEquallyGood(), requests)},
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

void WriteEvaluation(std::ostream& output, const Evaluation& evaluation, EDifferences differences)
{
    output << std::left << std::setw(static_cast<int>(kNameWidth)) << "requests" << std::right
           << std::setw(9) << "number" << ' ' << std::setw(15) << "same"
           << "  " << std::setw(15) << "equally good";
    for (const char* title : {"other", "longer", "outside", "apart", "refused"})
        output << std::setw(10) << title;
    output << '\n';
    for (const Row& row : MakeRows(evaluation))
        WriteRow(output, row);
    if (differences == EDifferences::Listed) {
        output << '\n';
        for (const Difference& difference : evaluation.differences)
            WriteDifference(output, difference);
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
                        {"reason", difference.reason}});
    return {{"version", kJsonVersion},
            {"all", ToJson(evaluation.all)},
            {"byGiven", GroupsToJson(evaluation.byGiven)},
            {"bySubjects", GroupsToJson(evaluation.bySubjects)},
            {"byCase", GroupsToJson(evaluation.byCase)},
            {"differences", list}};
}

} // namespace qe::tool
