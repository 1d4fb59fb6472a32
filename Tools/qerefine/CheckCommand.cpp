#include "Tools/qerefine/Commands.h"

#include "Toolkit/Answers/CheckOutput.h"
#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Text/JsonLayout.h"
#include "Tools/qerefine/CommandContext.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

/// What the user gave.
struct CheckArguments
{
    std::string model;
    std::string format = "text";
    std::string failOn = "warning";
    std::vector<std::string> severities;
    CheckOptions options;
};

ESeverity ReadSeverity(const std::string& name)
{
    const auto severity = ParseSeverity(name);
    if (!severity)
        throw CLI::ValidationError("--severity", "Not one of off, note, warning, error: " + name);
    return *severity;
}

/// Reads "code=severity".
void ApplySeverity(const std::string& text, CheckOptions& options)
{
    const std::size_t equal = text.find('=');
    const std::string code = text.substr(0, equal);
    if (equal == std::string::npos ||
        std::none_of(kRules.begin(), kRules.end(),
                     [&](const Rule& rule) { return rule.code == code; }))
        throw CLI::ValidationError("--severity",
                                   "Not CODE=SEVERITY with the code of a rule: " + text);
    options.severities[code] = ReadSeverity(text.substr(equal + 1));
}

void RunCheck(CheckArguments& arguments, CommandContext& context)
{
    for (const std::string& severity : arguments.severities)
        ApplySeverity(severity, arguments.options);
    const ToolModel model = OpenModel(arguments.model);
    const CheckReport report = CheckModel(model, arguments.options);
    if (arguments.format == "json")
        context.output << ToJsonText(ToJson(report, arguments.model)) << '\n';
    else
        WriteText(context.output, report);
    const ESeverity worst = report.GetWorst();
    if (arguments.failOn != "never" && worst != ESeverity::Off &&
        worst >= ReadSeverity(arguments.failOn))
        context.exitCode = EExitCode::NotConnected;
}

} // namespace

void AddCheckCommand(CLI::App& app, CommandContext& context)
{
    const auto arguments = std::make_shared<CheckArguments>();
    CLI::App* const command =
        app.add_subcommand("check", "Tells what a modeller should know about a model first.");
    command->add_option("MODEL", arguments->model, "Model file, SQLite database or SQL file")
        ->required();
    command->add_option("--format", arguments->format, "text or json")
        ->check(CLI::IsMember({"text", "json"}))
        ->capture_default_str();
    command->add_option("--severity", arguments->severities,
                        "CODE=off|note|warning|error: what a rule's findings count as");
    command
        ->add_option("--fail-on", arguments->failOn,
                     "End with exit code 1 when something at least so severe is found")
        ->check(CLI::IsMember({"note", "warning", "error", "never"}))
        ->capture_default_str();
    CheckLimits& limits = arguments->options.limits;
    command->add_option("--limit", limits.findings, "Findings shown of each rule; all are counted")
        ->capture_default_str();
    command
        ->add_option("--path-joins", limits.pathJoins,
                     "Longest ambiguous paths that are looked for, in joins")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    command
        ->add_option("--path-steps", limits.pathSteps,
                     "Where the search for ambiguous paths gives up, in joins passed")
        ->capture_default_str();
    command->footer("Example:\n  qerefine check warehouse.json --severity chasm=warning --limit 5");
    command->callback([arguments, &context] { RunCheck(*arguments, context); });
}

} // namespace qe::tool
