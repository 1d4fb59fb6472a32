#include "Toolkit/Text/JsonObject.h"

#include "Engine/Model/NearestNames.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace qe::tool {

namespace {

constexpr std::int32_t LeastNumber = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t GreatestNumber = std::numeric_limits<std::int32_t>::max();

std::string TypeTitle(const nlohmann::json& value)
{
    switch (value.type()) {
    case nlohmann::json::value_t::object:
        return "an object";
    case nlohmann::json::value_t::array:
        return "a list";
    case nlohmann::json::value_t::string:
        return "a string";
    case nlohmann::json::value_t::number_float:
        return "a number with a fraction";
    case nlohmann::json::value_t::null:
        return "null";
    default:
        return value.is_boolean() ? "true or false" : "a number";
    }
}

} // namespace

void RefuseType(const PlacedJson& json, const std::string& wanted, FileProblems& problems)
{
    problems.Add(json.pointer, "must be " + wanted + ", not " + TypeTitle(*json.value));
}

std::optional<std::string> ReadText(const PlacedJson& json, FileProblems& problems)
{
    if (!json.value->is_string()) {
        RefuseType(json, "a string", problems);
        return std::nullopt;
    }
    const auto& text = json.value->get_ref<const std::string&>();
    if (text.find('\0') != std::string::npos) {
        problems.Add(json.pointer, "must not hold the character U+0000");
        return std::nullopt;
    }
    return text;
}

std::optional<std::int32_t> ReadNumber(const PlacedJson& json, FileProblems& problems)
{
    if (!json.value->is_number_integer()) {
        RefuseType(json, "a whole number", problems);
        return std::nullopt;
    }
    // Numbers that only fit the unsigned type would turn negative in the signed one.
    const bool tooLarge = json.value->is_number_unsigned() &&
                          json.value->get<std::uint64_t>() > std::uint64_t{GreatestNumber};
    const auto number = json.value->get<std::int64_t>();
    if (tooLarge || number < LeastNumber || number > GreatestNumber) {
        problems.Add(json.pointer, "must lie between " + std::to_string(LeastNumber) + " and " +
                                       std::to_string(GreatestNumber) + ": " + json.value->dump());
        return std::nullopt;
    }
    return static_cast<std::int32_t>(number);
}

JsonObject::JsonObject(const PlacedJson& json, FileProblems& problems)
    : mPointer(json.pointer), mProblems(&problems)
{
    if (json.value->is_object())
        mObject = json.value;
    else
        RefuseType(json, "an object", problems);
}

PlacedJson JsonObject::Find(std::string_view key, EPresence presence)
{
    mKnownKeys.push_back(key);
    PlacedJson found{nullptr, ChildPointer(mPointer, key)};
    if (mObject == nullptr) {
        mProblems->Settle(found.pointer);
        return found;
    }
    const auto member = mObject->find(key);
    if (member != mObject->end()) {
        found.value = &*member;
    } else if (presence == EPresence::Required) {
        mProblems->Add(mPointer, "lacks the key \"" + std::string(key) + '"');
        mProblems->Settle(found.pointer);
    }
    return found;
}

std::string JsonObject::GetText(std::string_view key, EPresence presence)
{
    const PlacedJson found = Find(key, presence);
    return found.value == nullptr ? std::string() : ReadText(found, *mProblems).value_or("");
}

std::optional<std::int32_t> JsonObject::GetNumber(std::string_view key)
{
    const PlacedJson found = Find(key);
    return found.value == nullptr ? std::nullopt : ReadNumber(found, *mProblems);
}

std::vector<PlacedJson> JsonObject::GetList(std::string_view key)
{
    std::vector<PlacedJson> elements;
    const PlacedJson found = Find(key);
    if (found.value == nullptr)
        return elements;
    if (!found.value->is_array()) {
        RefuseType(found, "a list", *mProblems);
        return elements;
    }
    for (const nlohmann::json& element : *found.value)
        elements.push_back({&element, ChildPointer(found.pointer, elements.size())});
    return elements;
}

void JsonObject::RefuseOtherKeys()
{
    if (mObject == nullptr)
        return;
    for (const auto& member : mObject->items()) {
        if (std::find(mKnownKeys.begin(), mKnownKeys.end(), member.key()) == mKnownKeys.end())
            mProblems->Add(ChildPointer(mPointer, member.key()),
                           "key is unknown: \"" + member.key() + '"',
                           model::NearestNames(member.key(), mKnownKeys));
    }
}

} // namespace qe::tool
