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

/// Why a finding does not count.
struct Acceptance
{
    enum class EPlace : std::uint8_t
    {
        Model,
        Baseline,
    };

    EPlace place = EPlace::Model;
    std::string reason{};
};

/// One thing that a modeller should know.
struct Finding
{
    /// The rule and the names of the place: the same whatever else the model holds, and in
    /// whatever order. CheckModel sets it.
    std::string id{};
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
    /// Ambiguous paths: what they pass, ends included, as positions among the model's subjects.
    std::vector<std::size_t> passed{};
    /// Nothing for a finding that counts.
    std::optional<Acceptance> accepted{};
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

/// How far rules search and how much they keep.
struct CheckLimits
{
    /// The findings that are kept of each rule; the others are counted.
    ListLimit findings{100'000};
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
    /// What all its findings have in common, without a full stop.
    std::string_view title{};
    /// What is done about them.
    std::string_view advice{};
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
/// Decisions one of which prefers a join that another avoids, where none goes first. Takes
/// quadratic time.
[[nodiscard]] RuleFindings FindContradictingDecisions(const ModelGraph& model,
                                                      const CheckLimits& limits);
/// Decisions that the answers to their subjects do not follow. Takes the time of a request for
/// each.
[[nodiscard]] RuleFindings FindUnfollowedDecisions(const ModelGraph& model,
                                                   const CheckLimits& limits);
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
    Rule{"unreadable-join", ESeverity::Error, FindUnreadableJoins,
         "A join cannot be read, so no path uses it", "Mend it, or delete it."},
    Rule{"empty-shortcut", ESeverity::Error, FindEmptyShortcuts,
         "A shortcut stands for nothing that could be joined",
         "Let it stand for a query subject, or delete it."},
    Rule{"one-sided-condition", ESeverity::Warning, FindOneSidedConditions,
         "A join has no condition that compares both ends",
         "Compare an item of one end with an item of the other."},
    Rule{"unreached-subject", ESeverity::Warning, FindUnreachedSubjects,
         "No join leads to a subject", "Add a relationship to it, or leave it out of the model."},
    Rule{"separate-group", ESeverity::Warning, FindSeparateGroups,
         "No join connects a group of subjects to the others",
         "Add a relationship; where the groups do not go together, accept the finding."},
    Rule{"ambiguous-path", ESeverity::Warning, FindAmbiguousPaths,
         "Several equally cheap paths join two subjects",
         "Decide which path is meant: ask for it with \"qerefine path ... --favour JOIN --save\"."},
    Rule{"contradicting-decisions", ESeverity::Warning, FindContradictingDecisions,
         "A decision prefers a join that another avoids",
         "Decide for the subjects of both, or delete one of them."},
    Rule{"unfollowed-decision", ESeverity::Warning, FindUnfollowedDecisions,
         "The answers do not follow a decision", "Save the choice anew, or delete the decision."},
    Rule{"not-unique", ESeverity::Warning, FindJoinsWithoutKeys,
         "A join compares items that are no key of the end it takes for one row",
         "Compare all items of a key, or set the cardinality to many."},
    Rule{"many-to-many", ESeverity::Warning, FindManyToManyJoins,
         "A join has many rows at both ends",
         "Put a bridge subject between them, or set the right cardinality."},
    Rule{"chasm", ESeverity::Note, FindChasmTraps,
         "The rows of two or more facts meet at a subject",
         "Ask for such facts in queries of their own and join the sums; where the authors of "
         "reports know that, accept the finding."},
    Rule{
        "fan", ESeverity::Note, FindFanTraps,
        "A join repeats the rows of a subject with dimensions of its own",
        "Sum its measures before joining the details, or move them and its dimensions there; where "
        "it has no measures, accept the finding."},
};

/// Returns the rule of that code, or null.
[[nodiscard]] const Rule* FindRule(std::string_view code);

/// Adds one more to what a rule found: `describe` makes the finding, unless enough are kept.
template <typename Describe>
void Record(RuleFindings& found, const CheckLimits& limits, const Describe& describe)
{
    if (limits.findings.Shows(found.total++))
        found.findings.push_back(describe());
}

} // namespace qe::tool

#endif
