#include "Toolkit/Text/JsonLayout.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <vector>

namespace qe::tool {

using nlohmann::ordered_json;

namespace {

constexpr std::size_t LineWidth = 100;

/// Writes `value`, whose first line begins in the column `indent` + `lead`.
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
    const bool oneLine = fits && width <= LineWidth;
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

std::string LayOut(const ordered_json& document)
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
