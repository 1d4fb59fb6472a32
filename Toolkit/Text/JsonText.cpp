#include "Toolkit/Text/JsonText.h"

#include "Engine/Services/Characters.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
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

/// Puts together the document that a parser reads. It knows, which the parser does not, where in
/// the document it is and whether a key has been there before.
class DocumentBuilder
{
public:
    explicit DocumentBuilder(JsonProblems& problems) : mProblems(&problems) {}

    [[nodiscard]] json TakeDocument() { return std::move(mDocument); }

    /// Returns the pointer to the value that comes next.
    [[nodiscard]] std::string GetNextPointer() const
    {
        std::string pointer = GetPointer();
        if (!mLevels.empty() && mLevels.back().value->is_array())
            pointer =
                ChildPointer(pointer.substr(0, pointer.rfind('/')), mLevels.back().value->size());
        return pointer;
    }

    // What the parser calls; it goes on when they return true.
    bool null() { return AddValue(nullptr); }
    bool boolean(bool value) { return AddValue(value); }
    bool number_integer(std::int64_t value) { return AddValue(value); }
    bool number_unsigned(std::uint64_t value) { return AddValue(value); }
    bool number_float(double value, const std::string& /*text*/) { return AddValue(value); }
    bool string(std::string& value) { return AddValue(std::move(value)); }
    bool binary(json::binary_t& value) { return AddValue(std::move(value)); }
    bool start_object(std::size_t /*size*/) { return Enter(json::object()); }
    bool start_array(std::size_t /*size*/) { return Enter(json::array()); }
    bool end_object() { return Leave(); }
    bool end_array() { return Leave(); }

    bool key(std::string& name)
    {
        Level& level = mLevels.back();
        const auto [member, isNew] =
            level.value->get_ref<json::object_t&>().try_emplace(std::move(name));
        level.key = &member->first;
        level.member = &member->second;
        if (!isNew)
            mProblems->Add(GetPointer(), "key is given twice: \"" + member->first + '"');
        return true;
    }

    template <typename Failure>
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/, const Failure& failure)
    {
        throw failure;
    }

private:
    struct Level
    {
        json* value;
        /// In an object, what was named last.
        const std::string* key = nullptr;
        json* member = nullptr;
    };

    json& Place(json value)
    {
        if (mLevels.empty())
            return mDocument = std::move(value);
        const Level& level = mLevels.back();
        if (level.value->is_array())
            return level.value->emplace_back(std::move(value));
        return *level.member = std::move(value);
    }

    bool AddValue(json value)
    {
        Place(std::move(value));
        return true;
    }

    bool Enter(json value)
    {
        json& placed = Place(std::move(value));
        if (mLevels.size() == kMaximumDepth)
            throw InputError(
                {{mProblems->ToPlace(GetPointer()),
                  "is nested too deep: more than " + std::to_string(kMaximumDepth) + " levels"}});
        mLevels.push_back({&placed});
        return true;
    }

    bool Leave()
    {
        mLevels.pop_back();
        return true;
    }

    [[nodiscard]] std::string GetPointer() const
    {
        std::string pointer;
        for (const Level& level : mLevels)
            pointer = level.value->is_array() ? ChildPointer(pointer, level.value->size() - 1)
                                              : ChildPointer(pointer, *level.key);
        return pointer;
    }

    JsonProblems* mProblems;
    json mDocument;
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
    DocumentBuilder builder(problems);
    try {
        json::sax_parse(text, &builder);
        return builder.TakeDocument();
    } catch (const json::parse_error& error) {
        const std::size_t offset = error.byte == 0 ? 0 : error.byte - 1;
        const std::string& documentName = problems.GetDocumentName();
        throw InputError({{PlaceOf(text, offset, documentName),
                           documentName.empty() ? "not valid JSON" : Reason(error)}});
    } catch (const json::exception& error) {
        // A number that no number type holds.
        throw InputError({{problems.ToPlace(builder.GetNextPointer()), Reason(error)}});
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
