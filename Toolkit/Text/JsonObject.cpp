#include "Toolkit/Text/JsonObject.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/Misspelling.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace qe::tool {

namespace {

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

const std::string* FindText(const nlohmann::json& value)
{
    const auto* const text = value.get_ptr<const std::string*>();
    return text == nullptr || text->find('\0') != std::string::npos ? nullptr : text;
}

void RejectType(const PlacedJson& json, const std::string& wanted, JsonProblems& problems)
{
    problems.Add(json.pointer, "must be " + wanted + ", not " + TypeTitle(*json.value));
}

namespace {

void RejectZero(const std::string& pointer, JsonProblems& problems)
{
    problems.Add(pointer, "must not hold the character U+0000");
}

} // namespace

std::optional<std::string> ReadText(const PlacedJson& json, JsonProblems& problems)
{
    if (!json.value->is_string()) {
        RejectType(json, "a string", problems);
        return std::nullopt;
    }
    if (const std::string* const text = FindText(*json.value))
        return *text;
    RejectZero(json.pointer, problems);
    return std::nullopt;
}

namespace {

/// The bounds of whole numbers; those of NumberRange are narrower.
struct WideRange
{
    std::int64_t minimum;
    std::int64_t maximum;
};

std::optional<std::int64_t> ReadWholeNumber(const PlacedJson& json, JsonProblems& problems,
                                            const WideRange& range)
{
    const auto rejectRange = [&] {
        problems.Add(json.pointer, "must lie between " + std::to_string(range.minimum) + " and " +
                                       std::to_string(range.maximum) + ": " + json.value->dump());
        return std::nullopt;
    };
    // Digits beyond what fits the widest integers are read as a number of the other kind.
    constexpr double kWidest = 9e18;
    if (json.value->is_number_float() && std::abs(json.value->get<double>()) > kWidest)
        return rejectRange();
    if (!json.value->is_number_integer()) {
        RejectType(json, "a whole number", problems);
        return std::nullopt;
    }
    // Numbers that only fit the unsigned type would turn negative in the signed one.
    const auto number = json.value->get<std::int64_t>();
    const bool isTooLarge = json.value->is_number_unsigned() && number < 0;
    if (isTooLarge || number < range.minimum || number > range.maximum)
        return rejectRange();
    return number;
}

} // namespace

std::optional<std::int32_t> ReadNumber(const PlacedJson& json, JsonProblems& problems,
                                       const NumberRange& range)
{
    const auto number =
        ReadWholeNumber(json, problems, {.minimum = range.minimum, .maximum = range.maximum});
    return number ? std::optional(static_cast<std::int32_t>(*number)) : std::nullopt;
}

std::optional<std::size_t>
ReadWord(const PlacedJson& json, const std::vector<std::string_view>& words, JsonProblems& problems)
{
    const auto word = ReadText(json, problems);
    if (!word)
        return std::nullopt;
    const auto found = std::find(words.begin(), words.end(), *word);
    if (found != words.end())
        return static_cast<std::size_t>(found - words.begin());
    std::vector<std::string> nearest = model::NearestNames(*word, words);
    std::string text = "unknown value: \"" + *word + '"';
    if (nearest.empty())
        text += "; it may be " + JoinTexts(words);
    problems.Add(json.pointer, text, std::move(nearest));
    return std::nullopt;
}

std::vector<PlacedJson> ReadList(const PlacedJson& json, JsonProblems& problems)
{
    std::vector<PlacedJson> elements;
    if (!json.value->is_array()) {
        RejectType(json, "a list", problems);
        return elements;
    }
    elements.reserve(json.value->size());
    for (const nlohmann::json& element : *json.value)
        elements.push_back({&element, ChildPointer(json.pointer, elements.size())});
    return elements;
}

JsonObject::JsonObject(const PlacedJson& json, JsonProblems& problems, ENull null)
    : mPointer(json.pointer), mProblems(&problems), mNull(null)
{
    if (json.value->is_object())
        mObject = json.value;
    else
        RejectType(json, "an object", problems);
}

PlacedJson JsonObject::Find(std::string_view key, EPresence presence)
{
    mKnownKeys.push_back(key);
    if (mObject == nullptr) {
        mProblems->MarkReported(ChildPointer(mPointer, key));
        return {};
    }
    const auto member = mObject->find(key);
    if (member != mObject->end() && !(member->is_null() && mNull == ENull::Absent))
        return {&*member, ChildPointer(mPointer, key)};
    if (presence == EPresence::Required)
        TellMissing(key);
    return {};
}

void JsonObject::TellMissing(std::string_view key)
{
    const bool isNull = mObject->contains(key);
    std::string text =
        (isNull ? "has null for the key \"" : "lacks the key \"") + std::string(key) + '"';
    // Neighbours such as "from_columns" and "to_columns" are further from each other.
    const std::size_t limit = std::max<std::size_t>(1, key.size() / 5);
    const std::string wanted = model::FoldCase(key);
    for (const auto& member : mObject->items()) {
        const std::string& other = member.key();
        if (isNull || model::EditDistance(wanted, model::FoldCase(other), limit) > limit ||
            std::find(mKnownKeys.begin(), mKnownKeys.end(), other) != mKnownKeys.end())
            continue;
        text += ", but has \"" + other + '"';
        mToldKeys.push_back(other);
        break;
    }
    mProblems->Add(mPointer, text);
    mProblems->MarkReported(ChildPointer(mPointer, key));
}

std::string JsonObject::GetText(std::string_view key, EPresence presence)
{
    // A pointer costs more than the text, and only what is wrong needs it.
    if (mObject != nullptr) {
        const auto member = mObject->find(key);
        const std::string* const text = member == mObject->end() ? nullptr : FindText(*member);
        if (text != nullptr) {
            mKnownKeys.push_back(key);
            return *text;
        }
    }
    const PlacedJson found = Find(key, presence);
    return found.value == nullptr ? std::string() : ReadText(found, *mProblems).value_or("");
}

std::optional<std::vector<std::string>> JsonObject::GetTexts(std::string_view key)
{
    const PlacedJson found = Find(key);
    if (found.value == nullptr)
        return std::nullopt;
    std::vector<std::string> texts;
    for (const PlacedJson& element : ReadList(found, *mProblems)) {
        if (auto text = ReadText(element, *mProblems))
            texts.push_back(std::move(*text));
    }
    return texts;
}

std::optional<std::int32_t> JsonObject::GetNumber(std::string_view key, const NumberRange& range)
{
    const PlacedJson found = Find(key);
    return found.value == nullptr ? std::nullopt : ReadNumber(found, *mProblems, range);
}

std::optional<std::uint64_t> JsonObject::GetCount(std::string_view key)
{
    // Readers that take numbers for floating ones know all of these.
    constexpr WideRange kCounts{.minimum = 0, .maximum = (std::int64_t{1} << 53) - 1};
    const PlacedJson found = Find(key);
    const auto count =
        found.value == nullptr ? std::nullopt : ReadWholeNumber(found, *mProblems, kCounts);
    return count ? std::optional(static_cast<std::uint64_t>(*count)) : std::nullopt;
}

std::optional<bool> JsonObject::GetBoolean(std::string_view key)
{
    const PlacedJson found = Find(key);
    if (found.value == nullptr)
        return std::nullopt;
    if (found.value->is_boolean())
        return found.value->get<bool>();
    RejectType(found, "true or false", *mProblems);
    return std::nullopt;
}

std::vector<PlacedJson> JsonObject::GetList(std::string_view key)
{
    const PlacedJson found = Find(key);
    return found.value == nullptr ? std::vector<PlacedJson>() : ReadList(found, *mProblems);
}

std::vector<std::pair<std::string, PlacedJson>> JsonObject::GetMembers(std::string_view key)
{
    std::vector<std::pair<std::string, PlacedJson>> members;
    const PlacedJson found = Find(key);
    if (found.value == nullptr)
        return members;
    if (!found.value->is_object()) {
        RejectType(found, "an object", *mProblems);
        return members;
    }
    for (const auto& [name, value] : found.value->items()) {
        const std::string pointer = ChildPointer(found.pointer, name);
        if (name.find('\0') == std::string::npos)
            members.emplace_back(name, PlacedJson{&value, pointer});
        else
            RejectZero(pointer, *mProblems);
    }
    return members;
}

void JsonObject::Ignore(std::initializer_list<std::string_view> keys)
{
    mKnownKeys.insert(mKnownKeys.end(), keys.begin(), keys.end());
}

bool JsonObject::IsKnown(std::string_view key) const
{
    const auto isIn = [key](const std::vector<std::string_view>& keys) {
        return std::find(keys.begin(), keys.end(), key) != keys.end();
    };
    return isIn(mKnownKeys) || isIn(mToldKeys);
}

void JsonObject::RejectKey(const std::string& key, std::vector<std::string> nearestKeys)
{
    mProblems->Add(ChildPointer(mPointer, key), "key is unknown: \"" + key + '"',
                   std::move(nearestKeys));
}

void JsonObject::RejectUnknownKeys()
{
    if (mObject == nullptr)
        return;
    for (const auto& member : mObject->items()) {
        if (!IsKnown(member.key()))
            RejectKey(member.key(), model::NearestNames(member.key(), mKnownKeys));
    }
}

void JsonObject::RejectMisspeltKeys()
{
    if (mObject == nullptr)
        return;
    for (const auto& member : mObject->items()) {
        if (IsKnown(member.key()))
            continue;
        if (const std::string_view meant = FindMeantWord(member.key(), mKnownKeys); !meant.empty())
            RejectKey(member.key(), {std::string(meant)});
    }
}

} // namespace qe::tool
