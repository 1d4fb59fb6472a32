#ifndef TOOLKIT_TEXT_JSONOBJECT_H
#define TOOLKIT_TEXT_JSONOBJECT_H

#include "Toolkit/Text/FileProblems.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
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

/// One object of a document, read key by key. What has the wrong type is told and counts as
/// absent. Refers to the document and the problems.
class JsonObject
{
public:
    /// A value that is no object is told and counts as one without keys.
    JsonObject(const PlacedJson& json, FileProblems& problems);

    [[nodiscard]] const std::string& GetPointer() const { return mPointer; }

    /// Gives the value of a key; its `value` is null when there is none.
    [[nodiscard]] PlacedJson Find(std::string_view key, EPresence presence = EPresence::Optional);
    /// Gives the text of a key; empty when there is none.
    [[nodiscard]] std::string GetText(std::string_view key,
                                      EPresence presence = EPresence::Optional);
    [[nodiscard]] std::optional<std::int32_t> GetNumber(std::string_view key);
    /// Gives the elements of the list of a key.
    [[nodiscard]] std::vector<PlacedJson> GetList(std::string_view key);

    /// Tells the keys that nobody has asked for.
    void RefuseOtherKeys();

private:
    const nlohmann::json* mObject = nullptr;
    std::string mPointer;
    FileProblems* mProblems;
    std::vector<std::string_view> mKnownKeys;
};

/// Reads a text without U+0000. Gives nothing, and tells it, when the value is none.
[[nodiscard]] std::optional<std::string> ReadText(const PlacedJson& json, FileProblems& problems);
/// Reads a whole number of 32 bits. Gives nothing, and tells it, when the value is none.
[[nodiscard]] std::optional<std::int32_t> ReadNumber(const PlacedJson& json,
                                                     FileProblems& problems);
/// Tells that the value should have been `wanted`, such as "a string".
void RefuseType(const PlacedJson& json, const std::string& wanted, FileProblems& problems);

} // namespace qe::tool

#endif
