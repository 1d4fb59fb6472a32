#include "Toolkit/History/RecordReader.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonText.h"

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

constexpr NumberRange kCounts{.minimum = 1, .maximum = 1'000'000'000};

NamedPair ReadPair(const PlacedJson& json, JsonProblems& problems)
{
    std::vector<std::string> columns;
    for (const PlacedJson& element : ReadList(json, problems)) {
        columns.push_back(ascii::ToLower(ReadText(element, problems).value_or("")));
        if (columns.back().find('.') == std::string::npos)
            problems.Add(element.pointer, "must be a column as \"table.column\"");
    }
    if (columns.size() == 2)
        return {std::move(columns[0]), std::move(columns[1])};
    problems.Add(json.pointer, "must be a list of two columns");
    return {};
}

/// Returns what a key holds, whatever it is, as a text.
std::string ReadAnything(JsonObject& record, std::string_view key)
{
    const PlacedJson found = record.Find(key);
    if (found.value == nullptr)
        return {};
    return found.value->is_string() ? found.value->get<std::string>() : found.value->dump();
}

} // namespace

PastQuery ReadRecord(std::string_view line)
{
    JsonProblems problems;
    const nlohmann::json json = ParseJson(line, problems);
    JsonObject record({&json, ""}, problems);
    PastQuery query;
    if (json.is_object()) {
        for (const char* const key : {"subjects", "joins"})
            static_cast<void>(record.Find(key, EPresence::Required));
    }
    for (const std::string& subject :
         record.GetTexts("subjects").value_or(std::vector<std::string>()))
        query.tables.push_back(ToTableName(subject));
    for (const PlacedJson& pair : record.GetList("joins"))
        query.pairs.push_back(ReadPair(pair, problems));
    query.id = ReadAnything(record, "id");
    query.database = ReadAnything(record, "db");
    query.text = record.GetText("text");
    query.count = static_cast<std::size_t>(record.GetNumber("count", kCounts).value_or(1));
    problems.ThrowIfAny();
    Normalise(query);
    return query;
}

} // namespace qe::tool
