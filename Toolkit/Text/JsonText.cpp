#include "Toolkit/Text/JsonText.h"

#include "Engine/Services/Characters.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <set>
#include <vector>

namespace qe::tool {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

/// Objects and lists may be nested this deep.
constexpr std::size_t kMaximumDepth = 256;

/// Texts for people are at most this wide, where they can be.
constexpr std::size_t kLineWidth = 100;

/// Returns the place of a byte; of a document without a name, which is a single line, the column.
std::string PlaceOf(std::string_view text, std::size_t offset, const std::string& documentName)
{
    const auto [line, column] = PositionCounter(text).MoveTo(offset);
    if (documentName.empty())
        return "column " + std::to_string(column);
    return documentName + ':' + std::to_string(line) + ':' + std::to_string(column);
}

/// Follows the parser through the text, which knows neither where in the document it is nor
/// whether a key has been there before.
class DocumentWalk
{
public:
    explicit DocumentWalk(JsonProblems& problems) : mProblems(&problems) {}

    void Step(json::parse_event_t event, const json& parsed)
    {
        switch (event) {
        case json::parse_event_t::object_start:
        case json::parse_event_t::array_start:
            CountElement();
            Enter(event);
            break;
        case json::parse_event_t::key:
            RecordKey(parsed.get_ref<const std::string&>());
            break;
        case json::parse_event_t::value:
            CountElement();
            break;
        default:
            mLevels.pop_back();
        }
    }

    /// Returns the pointer to the value that comes next.
    [[nodiscard]] std::string GetNextPointer() const
    {
        std::string pointer = GetPointer();
        if (!mLevels.empty() && mLevels.back().isList)
            pointer = ChildPointer(pointer.substr(0, pointer.rfind('/')), mLevels.back().elements);
        return pointer;
    }

private:
    struct Level
    {
        bool isList;
        std::size_t elements = 0;
        std::string key{};
        std::set<std::string> keys{};
    };

    void CountElement()
    {
        if (!mLevels.empty() && mLevels.back().isList)
            ++mLevels.back().elements;
    }

    void Enter(json::parse_event_t event)
    {
        if (mLevels.size() == kMaximumDepth)
            throw InputError(
                {{mProblems->ToPlace(GetPointer()),
                  "is nested too deep: more than " + std::to_string(kMaximumDepth) + " levels"}});
        mLevels.push_back({event == json::parse_event_t::array_start});
    }

    void RecordKey(const std::string& key)
    {
        Level& level = mLevels.back();
        level.key = key;
        if (!level.keys.insert(key).second)
            mProblems->Add(GetPointer(), "key is given twice: \"" + key + '"');
    }

    [[nodiscard]] std::string GetPointer() const
    {
        std::string pointer;
        for (const Level& level : mLevels)
            pointer = level.isList ? ChildPointer(pointer, level.elements - 1)
                                   : ChildPointer(pointer, level.key);
        return pointer;
    }

    JsonProblems* mProblems;
    std::vector<Level> mLevels;
};

/// Returns the parser's message without its own place and number.
std::string Reason(const json::exception& error)
{
    const std::string message = error.what();
    const std::size_t start = message.find("syntax error");
    return start == std::string::npos ? message.substr(message.find("] ") + 2)
                                      : message.substr(start);
}

/// Returns the text of `value`, whose first line begins in the column `indent` + `lead`.
std::string Render(const ordered_json& value, std::size_t indent, std::size_t lead)
{
    if (!value.is_structured() || value.empty())
        return ToJsonLine(value);

    std::vector<std::string> parts;
    std::size_t width = indent + lead + 4;
    bool fits = true;
    for (const auto& member : value.items()) {
        const std::string key = value.is_object() ? ToJsonLine(member.key()) + ": " : std::string();
        parts.push_back(key + Render(member.value(), indent + 2, key.size()));
        width += parts.back().size() + 2;
        fits = fits && parts.back().find('\n') == std::string::npos;
    }
    const bool oneLine = fits && width <= kLineWidth;
    const std::string margin(indent + 2, ' ');
    std::string text = value.is_object() ? "{" : "[";
    for (std::size_t i = 0; i < parts.size(); ++i) {
        text += i == 0 ? "" : ",";
        text += oneLine ? (i == 0 && value.is_array() ? "" : " ") : '\n' + margin;
        text += parts[i];
    }
    text += oneLine ? (value.is_array() ? "" : " ") : '\n' + std::string(indent, ' ');
    return text + (value.is_object() ? '}' : ']');
}

} // namespace

json ParseJson(std::string_view text, JsonProblems& problems)
{
    DocumentWalk walk(problems);
    try {
        return json::parse(text, [&walk](int, json::parse_event_t event, json& parsed) {
            walk.Step(event, parsed);
            return true;
        });
    } catch (const json::parse_error& error) {
        const std::size_t offset = error.byte == 0 ? 0 : error.byte - 1;
        const std::string& documentName = problems.GetDocumentName();
        throw InputError({{PlaceOf(text, offset, documentName),
                           documentName.empty() ? "not valid JSON" : Reason(error)}});
    } catch (const json::exception& error) {
        // A number that no number type holds.
        throw InputError({{problems.ToPlace(walk.GetNextPointer()), Reason(error)}});
    }
}

std::string FormatJson(const ordered_json& document)
{
    return Render(document, 0, 0) + '\n';
}

std::string ToJsonText(const ordered_json& value)
{
    constexpr int kIndent = 2;
    return value.dump(kIndent, ' ', false, ordered_json::error_handler_t::replace);
}

std::string ToJsonLine(const ordered_json& value)
{
    return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

} // namespace qe::tool
