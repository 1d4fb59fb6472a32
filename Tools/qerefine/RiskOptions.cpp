#include "Tools/qerefine/RiskOptions.h"

#include "Tools/qerefine/CommandOptions.h"

#include <algorithm>

namespace qe::tool {

void AddRiskOptions(CLI::App& command, RiskOptions& options, const std::string& group)
{
    const Choices<ERisk> words(kRiskWords.begin(), kRiskWords.end());
    std::vector<std::string> names;
    for (const auto& [word, risk] : words)
        names.push_back(word);
    const auto choose = [&options, words](const std::vector<std::string>& chosen) {
        for (const auto& [word, risk] : words) {
            if (std::find(chosen.begin(), chosen.end(), word) != chosen.end())
                options.failOn.push_back(risk);
        }
    };
    command
        .add_option_function<std::vector<std::string>>(
            "--fail-on", choose, "Exit code 7 when an answer has one of these risks")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember(names).description(""))
        ->type_name(ToTypeName(words))
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

NoticeContext::NoticeContext(const RiskOptions& options, const CommandContext& context)
    : mContext{context.input, context.output,
               options.notices == RiskOptions::ENotices::Quiet ? mNowhere : context.error,
               context.terminal}
{}

} // namespace qe::tool
