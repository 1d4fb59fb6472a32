#ifndef TOOLKIT_CHECK_CAUSES_H
#define TOOLKIT_CHECK_CAUSES_H

#include <cstddef>
#include <string>
#include <vector>

namespace qe::tool {

class ModelGraph;
struct RuleFindings;

/// Findings of one rule that have one cause.
struct Cause
{
    /// The subject that they have in common; empty where only the rule is.
    std::string name{};
    /// Positions among the rule's findings, in order.
    std::vector<std::size_t> findings{};
};

/// Returns the causes of the findings that count, those with most findings first. Of the subjects
/// that ambiguous paths pass, again and again the one that most of those left pass is taken: where
/// it is decided on, or left out, they mostly go. Each finding has one cause. Takes time for the
/// findings and, for each cause, the subjects of the model.
[[nodiscard]] std::vector<Cause> FindCauses(const ModelGraph& model, const RuleFindings& found);

} // namespace qe::tool

#endif
