#ifndef TOOLKIT_CHECK_RULES_H
#define TOOLKIT_CHECK_RULES_H

#include "Toolkit/Text/DisplayText.h"
#include "amd_id.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// How much a finding matters. In ascending order.
enum class ESeverity : std::uint8_t
{
    /// The rule is not applied.
    Off,
    Note,
    Warning,
    Error,
};

/// Returns "off", "note", "warning" or "error".
[[nodiscard]] std::string_view ToText(ESeverity severity);

/// Returns the severity of that name, or nothing.
[[nodiscard]] std::optional<ESeverity> ParseSeverity(std::string_view name);

/// One of several equally cheap paths, and what would make the refiner take it.
struct CheckedPath
{
    std::vector<amd_id> joins{};
    /// "A -[join]- B", from end to end.
    std::string text{};
    /// A join that no other of the paths uses; the empty id when there is none.
    amd_id decidingJoin;
    std::string decidingName{};
};

/// One thing that a modeller should know.
struct Finding
{
    /// What it is about: a subject, a join, or both ends of a path.
    std::vector<amd_id> place{};
    /// The names of the place.
    std::string placeText{};
    /// What was found, one sentence.
    std::string text{};
    /// What to do about it, one sentence or two.
    std::string advice{};
    /// Ambiguous paths: those that are shown.
    std::vector<CheckedPath> paths{};
};

/// What one rule found.
struct RuleFindings
{
    /// The first findings, in an order that depends on the model alone.
    std::vector<Finding> findings{};
    /// How many there are in all.
    std::size_t total = 0;
    /// Why the total is too low, when the rule had to stop early; else empty.
    std::string notice{};
};

/// How far rules search and how much they show.
struct CheckLimits
{
    /// The findings that are shown of each rule; what is left out is counted.
    ListLimit findings{20};
    /// Ambiguous paths are searched for up to this many ordinary joins.
    int pathJoins = 2;
    /// The joins that the search for ambiguous paths passes at most, in all.
    std::size_t pathSteps = 50'000'000;
};

class ModelGraph;

/// One rule of the check. Its code never changes.
struct Rule
{
    std::string_view code;
    ESeverity severity;
    RuleFindings (*find)(const ModelGraph& model, const CheckLimits& limits);
};

/// Joins that the refiner leaves out because it cannot read them. Takes linear time.
[[nodiscard]] RuleFindings FindUnreadableJoins(const ModelGraph& model, const CheckLimits& limits);
/// Shortcuts whose chain leads to nothing that could be joined. Takes linear time.
[[nodiscard]] RuleFindings FindEmptyShortcuts(const ModelGraph& model, const CheckLimits& limits);
/// Joins whose condition does not mention both ends. Takes linear time.
[[nodiscard]] RuleFindings FindOneSidedConditions(const ModelGraph& model,
                                                  const CheckLimits& limits);
/// Subjects without any join. Takes linear time.
[[nodiscard]] RuleFindings FindUnreachedSubjects(const ModelGraph& model,
                                                 const CheckLimits& limits);
/// Groups of subjects that no join connects to the largest group. Takes linear time.
[[nodiscard]] RuleFindings FindSeparateGroups(const ModelGraph& model, const CheckLimits& limits);
/// Pairs of subjects with several cheapest paths that have no subject between them in common:
/// longer ambiguous paths all come from such pairs. Nearest pairs first. Takes the time of a
/// bounded search from each subject.
[[nodiscard]] RuleFindings FindAmbiguousPaths(const ModelGraph& model, const CheckLimits& limits);
/// Joins that compare items which are no key of an end that needs one. Takes the time of reading
/// all conditions.
[[nodiscard]] RuleFindings FindJoinsWithoutKeys(const ModelGraph& model, const CheckLimits& limits);
/// Joins with many rows at both ends, but for those that FindJoinsWithoutKeys explains. Takes
/// linear time.
[[nodiscard]] RuleFindings FindManyToManyJoins(const ModelGraph& model, const CheckLimits& limits);
/// Subjects at which the rows of two facts meet: a path from one fact to the other over them
/// multiplies the rows of both. Takes the time of a search from each subject over to-many joins.
[[nodiscard]] RuleFindings FindChasmTraps(const ModelGraph& model, const CheckLimits& limits);
/// Subjects with dimensions of their own that are themselves the to-one end of a join: a path over
/// that join repeats their rows. Takes linear time.
[[nodiscard]] RuleFindings FindFanTraps(const ModelGraph& model, const CheckLimits& limits);

/// All rules, in the order in which they are reported. A new rule is a function and an entry here.
inline constexpr std::array kRules{
    Rule{"unreadable-join", ESeverity::Error, FindUnreadableJoins},
    Rule{"empty-shortcut", ESeverity::Error, FindEmptyShortcuts},
    Rule{"one-sided-condition", ESeverity::Warning, FindOneSidedConditions},
    Rule{"unreached-subject", ESeverity::Warning, FindUnreachedSubjects},
    Rule{"separate-group", ESeverity::Warning, FindSeparateGroups},
    Rule{"ambiguous-path", ESeverity::Warning, FindAmbiguousPaths},
    Rule{"not-unique", ESeverity::Warning, FindJoinsWithoutKeys},
    Rule{"many-to-many", ESeverity::Warning, FindManyToManyJoins},
    Rule{"chasm", ESeverity::Note, FindChasmTraps},
    Rule{"fan", ESeverity::Note, FindFanTraps},
};

/// Adds one more to what a rule found: `describe` makes the finding, unless enough are shown.
template <typename Describe>
void Record(RuleFindings& found, const CheckLimits& limits, const Describe& describe)
{
    if (limits.findings.Shows(found.total++))
        found.findings.push_back(describe());
}

} // namespace qe::tool

#endif
