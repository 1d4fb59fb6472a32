#include "Toolkit/Model/ContentValues.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Model/ModelWords.h"

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace qe::tool {

namespace {

struct NumberPair
{
    std::int32_t first = 0;
    std::int32_t second = 0;
};

/// Returns the two numbers of a list; nothing when it is no such list. Wrong numbers in a list of
/// two are reported.
std::optional<NumberPair> ReadPair(const PlacedJson& json, JsonProblems& problems)
{
    if (!json.value->is_array() || json.value->size() != 2)
        return std::nullopt;
    const auto read = [&](std::size_t index) {
        return ReadNumber({&(*json.value)[index], ChildPointer(json.pointer, index)}, problems);
    };
    const auto first = read(0);
    const auto second = read(1);
    if (!first || !second) {
        problems.MarkReported(json.pointer);
        return std::nullopt;
    }
    return NumberPair{*first, *second};
}

void RejectUnreported(const PlacedJson& json, const std::string& wanted, JsonProblems& problems)
{
    if (!problems.IsReported(json.pointer))
        RejectType(json, wanted, problems);
}

model::Reference ReadIdReference(const PlacedJson& json, JsonProblems& problems)
{
    JsonObject object(json, problems);
    const auto classCode = object.GetNumber(keys::kClass);
    static_cast<void>(object.Find(keys::kClass, EPresence::Required));
    const PlacedJson id = object.Find(keys::kId, EPresence::Required);
    object.RejectUnknownKeys();
    const amd_id read = ReadId(id, classCode.value_or(0), problems);
    if (!classCode || read == amd_id()) {
        problems.MarkReported(json.pointer);
        return {};
    }
    return read;
}

model::Reference ReadPlacedReference(const PlacedJson& json, JsonProblems& problems)
{
    if (json.value->is_object())
        return ReadIdReference(json, problems);
    if (!json.value->is_string()) {
        RejectType(json, "a name or an object with class and id", problems);
        return {};
    }
    return ReadText(json, problems).value_or("");
}

} // namespace

model::Reference ReadReference(JsonObject& json, const char* key, JsonProblems& problems)
{
    const PlacedJson found = json.Find(key, EPresence::Required);
    return found.value == nullptr ? model::Reference() : ReadPlacedReference(found, problems);
}

std::vector<PlacedReference> ReadReferences(JsonObject& json, const char* key,
                                            JsonProblems& problems)
{
    std::vector<PlacedReference> references;
    for (const PlacedJson& element : json.GetList(key))
        references.push_back(
            {.reference = ReadPlacedReference(element, problems), .pointer = element.pointer});
    return references;
}

model::CardinalityRange ReadCardinality(JsonObject& json, const char* key, JsonProblems& problems)
{
    const PlacedJson found = json.Find(key, EPresence::Required);
    if (found.value == nullptr)
        return {};
    if (found.value->is_string()) {
        const std::string word = ReadText(found, problems).value_or("");
        if (const auto known = ParseCardinality(word))
            return *known;
        if (!problems.IsReported(found.pointer))
            problems.Add(found.pointer, "unknown cardinality: \"" + word + '"',
                         model::NearestNames(word, CardinalityWords(), 4));
        return {};
    }
    if (const auto pair = ReadPair(found, problems))
        return {pair->first, pair->second};
    RejectUnreported(found, "a cardinality such as \"0..n\" or a list of two numbers", problems);
    return {};
}

amd_id ReadId(const PlacedJson& json, std::int32_t classCode, JsonProblems& problems)
{
    if (json.value == nullptr)
        return {};
    amd_id id(0, classCode, 0);
    if (json.value->is_number()) {
        const auto number = ReadNumber(json, problems);
        if (!number)
            return {};
        id.number = *number;
    } else if (const auto pair = ReadPair(json, problems)) {
        id.domain = pair->first;
        id.number = pair->second;
    } else {
        RejectUnreported(json, "a number or a list of domain and number", problems);
        return {};
    }
    if (id.number != 0)
        return id;
    problems.Add(json.pointer, "must not be 0");
    return {};
}

AcceptedFinding ReadAcceptedFinding(const PlacedJson& json, JsonProblems& problems)
{
    JsonObject object(json, problems);
    const auto read = [&](const char* key) {
        std::string text = object.GetText(key, EPresence::Required);
        const std::string pointer = ChildPointer(json.pointer, key);
        if (text.empty() && !problems.IsReported(pointer))
            problems.Add(pointer, "must not be empty");
        return text;
    };
    AcceptedFinding accepted{.id = read(keys::kId), .reason = read(keys::kReason)};
    object.RejectUnknownKeys();
    return accepted;
}

NameSet ReadNameSet(const PlacedJson& json, const NameSet& names, JsonProblems& problems)
{
    if (json.value->is_boolean())
        return json.value->get<bool>() ? names : NameSet();
    NameSet chosen;
    for (const PlacedJson& element : ReadList(json, problems)) {
        const std::optional<std::string> name = ReadText(element, problems);
        if (!name)
            continue;
        if (names.count(*name) == 0)
            problems.Add(element.pointer,
                         "is no item of the query subject and no part of its table: \"" + *name +
                             '"',
                         model::NearestNames(*name, {names.begin(), names.end()}));
        chosen.insert(*name);
    }
    return chosen;
}

} // namespace qe::tool
