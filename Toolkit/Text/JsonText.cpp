#include "Toolkit/Text/JsonText.h"

#include "Engine/Services/TextPosition.h"

#include <nlohmann/json.hpp>

#include <set>
#include <vector>

namespace qe::tool {

namespace {

using nlohmann::json;

std::string PlaceOf(std::string_view text, std::size_t offset, const std::string& fileName)
{
    const auto [line, column] = PositionCounter(text).MoveTo(offset);
    return fileName + ':' + std::to_string(line) + ':' + std::to_string(column);
}

/// Follows the parser through the text, which knows neither where in the document it is nor
/// whether a key has been there before.
class DocumentWalk
{
public:
    DocumentWalk(const std::string& fileName, FileProblems& problems)
        : mFileName(fileName), mProblems(&problems)
    {}

    void Step(json::parse_event_t event, const json& parsed)
    {
        switch (event) {
        case json::parse_event_t::object_start:
        case json::parse_event_t::array_start:
            CountElement();
            Enter(event);
            break;
        case json::parse_event_t::key:
            NoteKey(parsed.get_ref<const std::string&>());
            break;
        case json::parse_event_t::value:
            CountElement();
            break;
        default:
            mLevels.pop_back();
        }
    }

    /// Gives the pointer to the value that comes next.
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
        if (mLevels.size() == MaximumDepth)
            throw InputError(
                {{mFileName + '#' + GetPointer(),
                  "is nested too deep: more than " + std::to_string(MaximumDepth) + " levels"}});
        mLevels.push_back({event == json::parse_event_t::array_start});
    }

    void NoteKey(const std::string& key)
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

    std::string mFileName;
    FileProblems* mProblems;
    std::vector<Level> mLevels;
};

/// Takes the parser's own place and number out of its message.
std::string Reason(const std::string& message)
{
    const std::size_t start = message.find("syntax error");
    return start == std::string::npos ? message.substr(message.find("] ") + 2)
                                      : message.substr(start);
}

} // namespace

json ParseJson(std::string_view text, const std::string& fileName, FileProblems& problems)
{
    DocumentWalk walk(fileName, problems);
    try {
        return json::parse(text, [&walk](int, json::parse_event_t event, json& parsed) {
            walk.Step(event, parsed);
            return true;
        });
    } catch (const json::parse_error& error) {
        const std::size_t offset = error.byte == 0 ? 0 : error.byte - 1;
        throw InputError({{PlaceOf(text, offset, fileName), Reason(error.what())}});
    } catch (const json::exception& error) {
        // A number that no number type holds.
        throw InputError({{fileName + '#' + walk.GetNextPointer(), Reason(error.what())}});
    }
}

} // namespace qe::tool
