#include "Toolkit/Text/JsonText.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/DocumentBuilder.h"
#include "Toolkit/Text/PlainJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

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

/// Hands what the parser reads to a builder; the parser goes on where true is returned.
class JsonReader
{
public:
    explicit JsonReader(DocumentBuilder& builder) : mBuilder(&builder) {}

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
        mBuilder->AddKey(std::move(name));
        return true;
    }

    template <typename Failure>
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/, const Failure& failure)
    {
        throw failure;
    }

private:
    bool AddValue(json value)
    {
        mBuilder->AddValue(std::move(value));
        return true;
    }

    bool Enter(json value)
    {
        mBuilder->Enter(std::move(value));
        return true;
    }

    bool Leave()
    {
        mBuilder->Leave();
        return true;
    }

    DocumentBuilder* mBuilder;
};

/// Walks over a text and counts its lines. The parser may read one character beyond what it tells,
/// so that the line counts on only behind the character after a line break.
class LineCounter
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    LineCounter(const char* position, std::size_t* line) : mPosition(position), mLine(line) {}

    reference operator*() const { return *mPosition; }
    LineCounter& operator++()
    {
        if (mIsBehindBreak)
            ++*mLine;
        mIsBehindBreak = *mPosition++ == '\n';
        return *this;
    }
    bool operator==(const LineCounter& other) const { return mPosition == other.mPosition; }
    bool operator!=(const LineCounter& other) const { return mPosition != other.mPosition; }

private:
    const char* mPosition;
    std::size_t* mLine;
    bool mIsBehindBreak = false;
};

/// Returns the line on which the first object or list begins that is nested too deep.
std::size_t FindDeepLine(std::string_view text)
{
    std::size_t depth = 0;
    bool isInText = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char letter = text[i];
        if (isInText && letter == '\\')
            ++i;
        else if (letter == '"')
            isInText = !isInText;
        else if (!isInText && (letter == '}' || letter == ']'))
            --depth;
        else if (!isInText && (letter == '{' || letter == '['))
            if (++depth > kMaximumDocumentDepth)
                return PositionCounter(text).MoveTo(i).line;
    }
    return 1;
}

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
    if (std::optional<json> document = ReadPlainJson(text))
        return std::move(*document);
    DocumentBuilder builder(problems);
    try {
        JsonReader reader(builder);
        json::sax_parse(text, &reader);
        return builder.TakeDocument();
    } catch (const DepthError&) {
        throw DepthError(problems.ToPlace(builder.GetPointer(), FindDeepLine(text)));
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

DocumentLines FindJsonLines(std::string_view text, const std::set<std::string>& pointers)
{
    LineRecord lines(pointers);
    JsonProblems ignored;
    DocumentBuilder builder(ignored);
    builder.Report(lines);
    JsonReader reader(builder);
    json::sax_parse(LineCounter(text.data(), &lines.Line()),
                    LineCounter(text.data() + text.size(), &lines.Line()), &reader);
    return lines.Get();
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

ordered_json& ListAt(ordered_json& object, const char* key)
{
    ordered_json& list = object[key];
    if (list.is_null())
        list = ordered_json::array();
    return list;
}

} // namespace qe::tool
