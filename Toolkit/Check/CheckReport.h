#ifndef TOOLKIT_CHECK_CHECKREPORT_H
#define TOOLKIT_CHECK_CHECKREPORT_H

#include "Toolkit/Check/Causes.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/Model/Decision.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace qe::tool {

struct ToolModel;

struct CheckOptions
{
    CheckLimits limits{};
    /// Severities by code that stand in for those of the rules. Unknown codes have no effect.
    std::map<std::string, ESeverity, std::less<>> severities{};
    /// What is accepted beside what the model accepts.
    std::vector<AcceptedFinding> baseline{};
};

/// What one rule found, and how much it matters.
struct RuleReport
{
    std::string code{};
    ESeverity severity = ESeverity::Off;
    RuleFindings found{};
    /// Of the findings that count.
    std::vector<Cause> causes{};

    /// Returns how many findings are accepted.
    [[nodiscard]] std::size_t CountAccepted() const;
    /// Returns how many are not, including those that were not kept.
    [[nodiscard]] std::size_t CountNew() const { return found.total - CountAccepted(); }
};

/// Something that is accepted though no rule finds it.
struct IdleAcceptance
{
    std::string id{};
    Acceptance acceptance{};
    /// Ids of findings that were probably meant, best first.
    std::vector<std::string> nearest{};
};

struct CheckReport
{
    std::size_t subjects = 0;
    std::size_t joins = 0;
    /// The rules that are not off, the most severe first.
    std::vector<RuleReport> rules{};
    /// Those of rules that were looked at to the end, the model's first.
    std::vector<IdleAcceptance> idle{};

    /// Returns the number of findings of that severity that count.
    [[nodiscard]] std::size_t Count(ESeverity severity) const;
    /// Returns the number of findings that are accepted.
    [[nodiscard]] std::size_t CountAccepted() const;
    /// Returns the severity of the worst finding that counts, or Off when there is none.
    [[nodiscard]] ESeverity GetWorst() const;
};

/// Applies all rules to the model. Findings that the model or the baseline accepts do not count.
[[nodiscard]] CheckReport CheckModel(const ToolModel& model, const CheckOptions& options);

} // namespace qe::tool

#endif
