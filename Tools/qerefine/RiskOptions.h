#ifndef TOOLS_QEREFINE_RISKOPTIONS_H
#define TOOLS_QEREFINE_RISKOPTIONS_H

#include "Toolkit/Ask/Risks.h"
#include "Tools/qerefine/Command.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace qe::tool {

/// What becomes of the risks of answers beside the answers themselves.
struct RiskOptions
{
    enum class ENotices : std::uint8_t
    {
        Written,
        /// Nothing but errors is written to the error stream.
        Quiet,
    };

    /// The risks that end in an exit code of their own.
    std::vector<ERisk> failOn{};
    ENotices notices = ENotices::Written;
};

/// Adds --fail-on and --quiet, in that group of the help.
void AddRiskOptions(CLI::App& command, RiskOptions& options, const std::string& group);

/// Returns how a command ends that would end with `code`, but for the risks that `hasRisk` tells
/// of.
[[nodiscard]] EExitCode JudgeRisks(const RiskOptions& options, EExitCode code,
                                   const std::function<bool(ERisk)>& hasRisk);

/// The context of a command for all but errors: with --quiet nothing comes out of its error stream.
class NoticeContext
{
public:
    /// Refers to the context's streams.
    NoticeContext(const RiskOptions& options, const CommandContext& context);
    NoticeContext(const NoticeContext&) = delete;
    NoticeContext& operator=(const NoticeContext&) = delete;

    [[nodiscard]] const CommandContext& Get() const { return mContext; }

private:
    /// Without a buffer it takes everything and keeps nothing.
    std::ostream mNowhere{nullptr};
    CommandContext mContext;
};

} // namespace qe::tool

#endif
