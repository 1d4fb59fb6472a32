#ifndef TOOLKIT_TEXT_JSONOBJECT_H
#define TOOLKIT_TEXT_JSONOBJECT_H

#include "Toolkit/Text/JsonProblems.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe::tool {

/// A value of a document and the pointer to it.
struct PlacedJson
{
    const nlohmann::json* value = nullptr;
    std::string pointer;
};

enum class EPresence
{
    Optional,
    Required,
};

/// What a key comes to whose value is null.
enum class ENull
{
    Value,
    /// The same as no key, as programs write it that list every key.
    Absent,
};

/// Both ends belong to the range.
struct NumberRange
{
    std::int32_t minimum = std::numeric_limits<std::int32_t>::min();
    std::int32_t maximum = std::numeric_limits<std::int32_t>::max();
};

/// Words with the values that they stand for.
template <typename Value>
using JsonWords = std::vector<std::pair<std::string_view, Value>>;

/// One object of a document, read key by key. What has the wrong type or value is reported and
/// counts as absent. Refers to the document, the problems and the keys.
class JsonObject
{
public:
    /// A value that is no object is reported and counts as one without keys.
    JsonObject(const PlacedJson& json, JsonProblems& problems, ENull null = ENull::Value);

    [[nodiscard]] const std::string& GetPointer() const { return mPointer; }

    /// Returns the value of a key; its `value` is null, its pointer empty, when there is none.
    [[nodiscard]] PlacedJson Find(std::string_view key, EPresence presence = EPresence::Optional);
    /// Returns the text of a key; empty when there is none.
    [[nodiscard]] std::string GetText(std::string_view key,
                                      EPresence presence = EPresence::Optional);
    /// Returns the texts in the list of a key.
    [[nodiscard]] std::optional<std::vector<std::string>> GetTexts(std::string_view key);
    [[nodiscard]] std::optional<std::int32_t> GetNumber(std::string_view key,
                                                        const NumberRange& range = {});
    /// Returns a number of things, which may be large.
    [[nodiscard]] std::optional<std::uint64_t> GetCount(std::string_view key);
    [[nodiscard]] std::optional<bool> GetBoolean(std::string_view key);
    /// Returns what the word of a key stands for.
    template <typename Value>
    [[nodiscard]] std::optional<Value> GetChoice(std::string_view key,
                                                 const JsonWords<Value>& choices);
    /// Returns the elements of the list of a key.
    [[nodiscard]] std::vector<PlacedJson> GetList(std::string_view key);

    /// Returns the members of the object of a key, by their names, which hold no U+0000.
    [[nodiscard]] std::vector<std::pair<std::string, PlacedJson>> GetMembers(std::string_view key);

    /// Lets the object have the keys, whatever they hold.
    void Ignore(std::initializer_list<std::string_view> keys);

    /// Reports the keys that nobody has asked for, but for those that were told already.
    void RejectUnknownKeys();

    /// Reports those of them that are some other key misspelt. For objects that may have keys which
    /// only others read.
    void RejectMisspeltKeys();

private:
    [[nodiscard]] bool IsKnown(std::string_view key) const;
    void RejectKey(const std::string& key, std::vector<std::string> nearestKeys);

    /// Reports that there is no such key, and which other key may be meant for it.
    void TellMissing(std::string_view key);

    const nlohmann::json* mObject = nullptr;
    std::string mPointer;
    JsonProblems* mProblems;
    ENull mNull;
    std::vector<std::string_view> mKnownKeys;
    std::vector<std::string_view> mToldKeys;
};

/// Returns the text that a value is; null when it is none, or holds U+0000.
[[nodiscard]] const std::string* FindText(const nlohmann::json& value);
/// Returns a text without U+0000; nothing, and reports it, when the value is none.
[[nodiscard]] std::optional<std::string> ReadText(const PlacedJson& json, JsonProblems& problems);
/// Returns a whole number of the range; nothing, and reports it, when the value is none.
[[nodiscard]] std::optional<std::int32_t> ReadNumber(const PlacedJson& json, JsonProblems& problems,
                                                     const NumberRange& range = {});
/// Returns the position of the word that the value is; nothing, and reports it, when the value is
/// none of the words.
[[nodiscard]] std::optional<std::size_t> ReadWord(const PlacedJson& json,
                                                  const std::vector<std::string_view>& words,
                                                  JsonProblems& problems);
/// Returns the elements of a list; nothing, and reports it, when the value is none.
[[nodiscard]] std::vector<PlacedJson> ReadList(const PlacedJson& json, JsonProblems& problems);
/// Reports that the value should have been `wanted`, such as "a string".
void RejectType(const PlacedJson& json, const std::string& wanted, JsonProblems& problems);

template <typename Value>
std::optional<Value> JsonObject::GetChoice(std::string_view key, const JsonWords<Value>& choices)
{
    const PlacedJson found = Find(key);
    if (found.value == nullptr)
        return std::nullopt;
    std::vector<std::string_view> words;
    for (const auto& choice : choices)
        words.push_back(choice.first);
    const auto position = ReadWord(found, words, *mProblems);
    return position ? std::optional<Value>(choices[*position].second) : std::nullopt;
}

} // namespace qe::tool

#endif
