#include "Tools/qerefine/Command.h"

#include "Toolkit/Answers/CheckOutput.h"
#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/Text/JsonText.h"
#include "Tools/qerefine/CommandOptions.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>

namespace qe::tool {

namespace {

struct Options
{
    std::filesystem::path model{};
    EReportFormat format = EReportFormat::PlainText;
    /// Nothing: no finding makes the check fail.
    std::optional<ESeverity> failOn = ESeverity::Warning;
    CheckOptions check{};
};

/// Reads "code=severity".
void AddSeverity(const std::string& text, CheckOptions& options)
{
    const std::size_t equal = text.find('=');
    const std::string code = text.substr(0, equal);
    if (equal == std::string::npos ||
        std::none_of(kRules.begin(), kRules.end(),
                     [&code](const Rule& rule) { return rule.code == code; }))
        throw CLI::ValidationError("--severity",
                                   "Not CODE=SEVERITY with the code of a rule: " + text);
    const std::string name = text.substr(equal + 1);
    const std::optional<ESeverity> severity = ParseSeverity(name);
    if (!severity)
        throw CLI::ValidationError("--severity", "Not one of off, note, warning, error: " + name);
    options.severities[code] = *severity;
}

void AddOptions(CLI::App& command, Options& options)
{
    AddModelPath(command, options.model);
    AddReportFormat(command, options.format, "How the findings are written")->default_str("text");
    command.add_option_function<std::vector<std::string>>(
        "--severity",
        [&options](const std::vector<std::string>& texts) {
            for (const std::string& text : texts)
                AddSeverity(text, options.check);
        },
        "CODE=off|note|warning|error: what a rule's findings count as");
    AddChoice(command, "--fail-on", options.failOn,
              {{"note", ESeverity::Note},
               {"warning", ESeverity::Warning},
               {"error", ESeverity::Error},
               {"never", std::nullopt}},
              "End with exit code 1 when something at least so severe is found")
        ->default_str("warning");
    CheckLimits& limits = options.check.limits;
    AddLimit(command, "--limit", limits.findings, "Findings shown of each rule")->default_str("20");
    command
        .add_option("--path-joins", limits.pathJoins,
                    "Longest ambiguous paths that are looked for, in joins")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    RejectNegative(
        *command
             .add_option("--path-steps", limits.pathSteps,
                         "Where the search for ambiguous paths gives up, in joins passed")
             ->capture_default_str());
}

CheckReport Run(const Options& options, const CommandContext& /*context*/)
{
    return CheckModel(OpenModel(options.model), options.check);
}

EExitCode Report(const Options& options, const CheckReport& report, const CommandContext& context)
{
    if (options.format == EReportFormat::JsonText)
        context.output << ToJsonText(ToJson(report, options.model.string())) << '\n';
    else
        WriteText(context.output, report);
    const ESeverity worst = report.GetWorst();
    const bool fails = options.failOn && worst != ESeverity::Off && worst >= *options.failOn;
    return fails ? EExitCode::NegativeResult : EExitCode::Done;
}

} // namespace

void AddCheckCommand(const CommandLine& line)
{
    const CommandHelp help{.name = "check",
                           .summary = "Tells what a modeller should know about a model first.",
                           .example =
                               "qerefine check warehouse.json --severity chasm=warning --limit 5"};
    AddCommand(line, Command<Options, CheckReport>{
                         .help = help, .addOptions = AddOptions, .run = Run, .report = Report});
}

} // namespace qe::tool
