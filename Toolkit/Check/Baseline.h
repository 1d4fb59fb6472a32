#ifndef TOOLKIT_CHECK_BASELINE_H
#define TOOLKIT_CHECK_BASELINE_H

#include "Toolkit/Model/Decision.h"

#include <filesystem>
#include <string>
#include <vector>

namespace qe::tool {

struct CheckReport;

/// Returns the accepted findings of a baseline file. Throws an InputError with all its mistakes.
[[nodiscard]] std::vector<AcceptedFinding> ReadBaseline(const std::filesystem::path& path);

/// Returns a baseline that accepts the findings of the report, in its order: those that are new for
/// this reason, those of a baseline before for theirs. What the model accepts is left out.
[[nodiscard]] std::string WriteBaselineText(const CheckReport& report, const std::string& reason);

} // namespace qe::tool

#endif
