#include "Toolkit/Check/Rules.h"

#include <algorithm>
#include <array>

namespace qe::tool {
namespace {

/// The names of the severities, by their numbers.
constexpr std::array<std::string_view, 4> kSeverityNames{"off", "note", "warning", "error"};

} // namespace

std::string_view ToText(ESeverity severity)
{
    return kSeverityNames.at(static_cast<std::size_t>(severity));
}

std::optional<ESeverity> ParseSeverity(std::string_view name)
{
    const auto* const found = std::find(kSeverityNames.begin(), kSeverityNames.end(), name);
    if (found == kSeverityNames.end())
        return std::nullopt;
    return static_cast<ESeverity>(found - kSeverityNames.begin());
}

const Rule* FindRule(std::string_view code)
{
    const auto* const found = std::find_if(kRules.begin(), kRules.end(),
                                           [code](const Rule& rule) { return rule.code == code; });
    return found == kRules.end() ? nullptr : found;
}

} // namespace qe::tool
