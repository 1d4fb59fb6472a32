#ifndef TOOLKIT_ANSWERS_CHECKPIPELINES_H
#define TOOLKIT_ANSWERS_CHECKPIPELINES_H

#include "Toolkit/Check/Rules.h"

#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace qe::tool {

struct CheckReport;

/// What the forms for build servers say beside the report.
struct PipelineContext
{
    /// The model as the command line named it.
    std::string modelName{};
    std::string toolVersion{};
    /// From this severity on a finding that counts is a failure; nothing: none is.
    std::optional<ESeverity> failOn{};
};

/// Returns the report as a SARIF 2.1.0 log with all findings that were kept: each with its id as
/// fingerprint, accepted ones as suppressed.
[[nodiscard]] nlohmann::ordered_json ToSarif(const CheckReport& report,
                                             const PipelineContext& context);

/// Writes the report in the XML form of JUnit with all findings that were kept: a test suite for
/// each rule, a test case for each finding. Accepted ones count as skipped.
void WriteJunit(std::ostream& out, const CheckReport& report, const PipelineContext& context);

} // namespace qe::tool

#endif
