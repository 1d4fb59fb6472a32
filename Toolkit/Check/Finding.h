#ifndef TOOLKIT_CHECK_FINDING_H
#define TOOLKIT_CHECK_FINDING_H

#include "Toolkit/Text/ListLimit.h"
#include "amd_id.h"

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

} // namespace qe::tool

#endif
