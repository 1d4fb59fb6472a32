#include "Toolkit/History/RecordReader.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/JsonObject.h"
#include "Toolkit/Text/JsonText.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

constexpr NumberRange kCounts{.minimum = 1, .maximum = 1'000'000'000};

constexpr std::size_t kColumnsOfPair = 2;

bool IsColumn(const nlohmann::json& value)
{
    if (!value.is_string())
        return false;
    const auto& text = value.get_ref<const std::string&>();
    return text.find('.') != std::string::npos && text.find('\0') == std::string::npos;
}

void RejectPair(const PlacedJson& json, JsonProblems& problems)
{
    const std::vector<PlacedJson> columns = ReadList(json, problems);
    for (const PlacedJson& column : columns) {
        const auto text = ReadText(column, problems);
        if (text && !IsColumn(*column.value))
            problems.Add(column.pointer, "must be a column as \"table.column\"");
    }
    if (columns.size() != kColumnsOfPair)
        problems.Add(json.pointer, "must be a list of two columns");
}

NamedPair ReadPair(const PlacedJson& json, JsonProblems& problems)
{
    const nlohmann::json& columns = *json.value;
    // Nearly all are right: those need no place to tell of.
    if (!columns.is_array() || columns.size() != kColumnsOfPair ||
        !std::all_of(columns.begin(), columns.end(), IsColumn)) {
        RejectPair(json, problems);
        return {};
    }
    std::string first = ascii::ToLower(columns[0].get_ref<const std::string&>());
    std::string second = ascii::ToLower(columns[1].get_ref<const std::string&>());
    if (second < first)
        first.swap(second);
    return {std::move(first), std::move(second)};
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

std::vector<NamedPair> ReadNamedPairs(JsonObject& record, JsonProblems& problems)
{
    std::vector<NamedPair> pairs;
    for (const PlacedJson& pair : record.GetList("joins"))
        pairs.push_back(ReadPair(pair, problems));
    return pairs;
}

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
    query.pairs = ReadNamedPairs(record, problems);
    query.id = ReadAnything(record, "id");
    query.database = ReadAnything(record, "db");
    query.text = record.GetText("text");
    query.count = static_cast<std::size_t>(record.GetNumber("count", kCounts).value_or(1));
    problems.ThrowIfAny();
    Normalise(query);
    return query;
}

} // namespace qe::tool
