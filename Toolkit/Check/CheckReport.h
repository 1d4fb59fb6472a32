#ifndef TOOLKIT_CHECK_CHECKREPORT_H
#define TOOLKIT_CHECK_CHECKREPORT_H

#include "Toolkit/Check/Rules.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qe::tool {

class JoinHistory;
struct ToolModel;

struct CheckOptions
{
    /// What past queries say of the model; may be null.
    std::shared_ptr<const JoinHistory> history{};
    CheckLimits limits{};
    /// Severities by code that stand in for those of the rules. Unknown codes have no effect.
    std::map<std::string, ESeverity, std::less<>> severities{};
};

/// What one rule found, and how much it matters.
struct RuleReport
{
    std::string code{};
    ESeverity severity = ESeverity::Off;
    RuleFindings found{};
};

struct CheckReport
{
    std::size_t subjects = 0;
    std::size_t joins = 0;
    /// The rules that are not off, the most severe first.
    std::vector<RuleReport> rules{};

    /// Returns the number of findings of that severity, including those that are not shown.
    [[nodiscard]] std::size_t Count(ESeverity severity) const;
    /// Returns the severity of the worst finding, or Off when there is none.
    [[nodiscard]] ESeverity GetWorst() const;
};

/// Applies all rules to the model.
[[nodiscard]] CheckReport CheckModel(const ToolModel& model, const CheckOptions& options);

} // namespace qe::tool

#endif
