#include "Tools/qerefine/RiskOptions.h"

#include "Tools/qerefine/CommandOptions.h"

#include <algorithm>
#include <ostream>

namespace qe::tool {

void AddRiskOptions(CLI::App& command, RiskOptions& options, const std::string& group)
{
    const Choices<ERisk> words(kRiskWords.begin(), kRiskWords.end());
    command
        .add_option("--fail-on", options.failOn,
                    "Exit code 7 when the answer has one of these risks")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->transform(CLI::CheckedTransformer(words).description(""))
        ->type_name(ToTypeName(words) + ",...")
        ->group(group);
    command
        .add_flag_callback(
            "--quiet", [&options] { options.notices = RiskOptions::ENotices::Quiet; },
            "Write nothing but errors to standard error")
        ->group(group);
}

EExitCode JudgeRisks(const RiskOptions& options, EExitCode code,
                     const std::function<bool(ERisk)>& hasRisk)
{
    const bool isRisky = std::any_of(options.failOn.begin(), options.failOn.end(), hasRisk);
    return code == EExitCode::Done && isRisky ? EExitCode::Risky : code;
}

std::ostream& GetNoticeStream(const RiskOptions& options, const CommandContext& context)
{
    // Without a buffer a stream takes everything and keeps nothing.
    thread_local std::ostream nowhere(nullptr);
    return options.notices == RiskOptions::ENotices::Quiet ? nowhere : context.error;
}

} // namespace qe::tool
