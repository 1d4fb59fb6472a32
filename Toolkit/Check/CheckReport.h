#ifndef TOOLKIT_CHECK_CHECKREPORT_H
#define TOOLKIT_CHECK_CHECKREPORT_H

#include "Toolkit/Check/Finding.h"
#include "Toolkit/Check/Rules.h"

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
};

/// What one rule says about the model.
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

    /// Counts the findings of that severity, those that are not shown too.
    [[nodiscard]] std::size_t Count(ESeverity severity) const;
    /// Gives the severity of the worst finding, or Off when there is none.
    [[nodiscard]] ESeverity GetWorst() const;
};

/// Holds the model against all rules.
[[nodiscard]] CheckReport CheckModel(const ToolModel& model, const CheckOptions& options);

} // namespace qe::tool

#endif
