#include "Toolkit/Check/Rules.h"

#include <array>

namespace qe::tool {

namespace {

constexpr std::array kRules{
    Rule{"unreadable-join", ESeverity::Error, FindUnreadableJoins},
    Rule{"empty-shortcut", ESeverity::Error, FindEmptyShortcuts},
    Rule{"one-sided-condition", ESeverity::Warning, FindOneSidedConditions},
    Rule{"unreached-subject", ESeverity::Warning, FindUnreachedSubjects},
    Rule{"separate-group", ESeverity::Warning, FindSeparateGroups},
    Rule{"ambiguous-path", ESeverity::Warning, FindAmbiguousPaths},
    Rule{"many-to-many", ESeverity::Warning, FindManyToManyJoins},
    Rule{"chasm", ESeverity::Note, FindChasmTraps},
    Rule{"fan", ESeverity::Note, FindFanTraps},
};

} // namespace

std::span<const Rule> GetRules()
{
    return kRules;
}

std::string_view ToText(ESeverity severity)
{
    switch (severity) {
    case ESeverity::Off:
        return "off";
    case ESeverity::Note:
        return "note";
    case ESeverity::Warning:
        return "warning";
    case ESeverity::Error:
        return "error";
    }
    return "";
}

} // namespace qe::tool
