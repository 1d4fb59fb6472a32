#include "Toolkit/Text/JsonEdit.h"

#include "Toolkit/Text/JsonText.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

namespace qe::tool {

namespace {

/// A part of the text.
struct Span
{
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// An object or a list, and the values in it.
struct Container
{
    std::vector<std::string> keys{};
    std::vector<Span> values{};
    /// Where the bracket stands that closes it.
    std::size_t end = 0;
};

/// Finds where things are in a text that is known to be JSON.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : mText(text) {}

    /// Returns the first object or list from the position on.
    [[nodiscard]] Container Scan(std::size_t from) const
    {
        Container container;
        std::size_t at = mText.find_first_of("{[", from);
        const bool isObject = mText[at] == '{';
        at = SkipSpace(at + 1);
        while (mText[at] != '}' && mText[at] != ']') {
            if (isObject) {
                const std::size_t end = FindEnd(at);
                container.keys.push_back(
                    nlohmann::json::parse(mText.substr(at, end - at)).get<std::string>());
                at = SkipSpace(mText.find(':', end) + 1);
            }
            container.values.push_back({.begin = at, .end = FindEnd(at)});
            at = SkipSpace(container.values.back().end);
            if (mText[at] == ',')
                at = SkipSpace(at + 1);
        }
        container.end = at;
        return container;
    }

private:
    [[nodiscard]] std::size_t SkipSpace(std::size_t at) const
    {
        return mText.find_first_not_of(" \t\r\n", at);
    }

    /// Returns the position behind the value that begins there.
    [[nodiscard]] std::size_t FindEnd(std::size_t at) const
    {
        if (mText[at] == '"')
            return FindEndOfString(at);
        if (mText[at] != '{' && mText[at] != '[')
            return mText.find_first_of(" \t\r\n,]}", at);
        std::size_t depth = 0;
        do {
            if (mText[at] == '"') {
                at = FindEndOfString(at);
                continue;
            }
            if (mText[at] == '{' || mText[at] == '[')
                ++depth;
            if (mText[at] == '}' || mText[at] == ']')
                --depth;
            ++at;
        } while (depth > 0);
        return at;
    }

    [[nodiscard]] std::size_t FindEndOfString(std::size_t at) const
    {
        for (++at; mText[at] != '"'; ++at) {
            if (mText[at] == '\\')
                ++at;
        }
        return at + 1;
    }

    std::string_view mText;
};

/// Returns the list of that key, if the text has one.
std::optional<Container> FindList(std::string_view text, std::string_view key)
{
    const Scanner scanner(text);
    const Container top = scanner.Scan(0);
    for (std::size_t i = 0; i < top.keys.size(); ++i) {
        if (top.keys[i] == key)
            return scanner.Scan(top.values[i].begin);
    }
    return std::nullopt;
}

/// Returns the value as it stands behind a margin.
std::string Render(const nlohmann::ordered_json& value, const std::string& margin)
{
    std::string rendered;
    std::string text = FormatJson(value);
    text.pop_back();
    for (const char character : text) {
        rendered += character;
        if (character == '\n')
            rendered += margin;
    }
    return rendered;
}

/// Returns what is new with the line breaks of the text.
std::string AdaptBreaks(const std::string& added, std::string_view text)
{
    if (text.find("\r\n") == std::string_view::npos)
        return added;
    std::string adapted;
    for (const char character : added)
        adapted += character == '\n' ? std::string("\r\n") : std::string(1, character);
    return adapted;
}

std::string Replace(std::string_view text, const Span& span, const std::string& added)
{
    return std::string(text.substr(0, span.begin)) + AdaptBreaks(added, text) +
           std::string(text.substr(span.end));
}

/// Adds a line at the end of an object or list; `margin` is what the closing bracket stands behind.
std::string Append(std::string_view text, const Container& container, const std::string& margin,
                   const std::string& line)
{
    if (container.values.empty())
        return Replace(text, {.begin = container.end, .end = container.end},
                       '\n' + margin + "  " + line + '\n' + margin);
    const std::size_t last = container.values.back().end;
    // A bracket on the line of the last value gets a line of its own.
    const bool isOnLine = text.substr(last, container.end - last).find('\n') == std::string::npos;
    return Replace(text, {.begin = last, .end = isOnLine ? container.end : last},
                   ",\n" + margin + "  " + line + (isOnLine ? '\n' + margin : std::string()));
}

} // namespace

std::string AppendElement(std::string_view text, std::string_view key,
                          const nlohmann::ordered_json& element)
{
    const std::string rendered = Render(element, "    ");
    if (const std::optional<Container> list = FindList(text, key))
        return Append(text, *list, "  ", rendered);
    const std::string line = nlohmann::json(key).dump() + ": [\n    " + rendered + "\n  ]";
    return Append(text, Scanner(text).Scan(0), "", line);
}

std::string ReplaceElement(std::string_view text, std::string_view key, std::size_t position,
                           const nlohmann::ordered_json& element)
{
    const std::optional<Container> list = FindList(text, key);
    return Replace(text, list.value().values.at(position), Render(element, "    "));
}

} // namespace qe::tool
