#include "Tools/qerefine/Command.h"

#include "Toolkit/Answers/CheckOutput.h"
#include "Toolkit/Answers/CheckPipelines.h"
#include "Toolkit/Check/Baseline.h"
#include "Toolkit/Check/CheckReport.h"
#include "Toolkit/Check/Rules.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/Text/JsonText.h"
#include "Toolkit/Text/OutputFile.h"
#include "Tools/qerefine/CommandOptions.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>

namespace qe::tool {

namespace {

enum class EFormat : std::uint8_t
{
    PlainText,
    JsonText,
    Sarif,
    Junit,
};

struct Options
{
    ModelOptions model{};
    EFormat format = EFormat::PlainText;
    CheckView view{};
    /// Empty: none is read, or written.
    std::filesystem::path baseline{};
    std::filesystem::path newBaseline{};
    std::string reason = "not looked at yet";
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

void AddBaselines(CLI::App& command, Options& options)
{
    command
        .add_option("--baseline", options.baseline,
                    "File of findings that are accepted, each with its reason")
        ->type_name("FILE");
    CLI::Option* const write = command
                                   .add_option("--write-baseline", options.newBaseline,
                                               "Write a file that accepts all that is found now")
                                   ->type_name("FILE");
    command.add_option("--reason", options.reason, "--write-baseline: why they are accepted")
        ->type_name("TEXT")
        ->needs(write)
        ->check(CLI::Validator(
            [](const std::string& text) {
                return text.empty() ? std::string("a reason must not be empty") : std::string();
            },
            ""))
        ->capture_default_str();
}

void AddSearchLimits(CLI::App& command, CheckLimits& limits)
{
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

void AddOptions(CLI::App& command, Options& options)
{
    AddModelPath(command, options.model.path);
    AddServerOptions(command, options.model.open.server);
    AddHistory(command, options.model.histories, "Options");
    AddChoice(command, "--format", options.format,
              {{"text", EFormat::PlainText},
               {"json", EFormat::JsonText},
               {"sarif", EFormat::Sarif},
               {"junit", EFormat::Junit}},
              "How the findings are written")
        ->default_str("text");
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
    AddLimit(command, "--limit", options.view.limit,
             "Findings shown of each rule; where there are more, text shows so many causes")
        ->default_str("20");
    command.add_flag_callback(
        "--all",
        [&options] {
            options.view = {.limit = ListLimit::All(), .accepted = CheckView::EAccepted::Shown};
        },
        "Show every finding, those that are accepted too");
    AddBaselines(command, options);
    AddSearchLimits(command, options.check.limits);
}

CheckReport Run(const Options& options, const CommandContext& context)
{
    CheckOptions check = options.check;
    if (!options.baseline.empty())
        check.baseline = ReadBaseline(options.baseline);
    const ToolModel model = OpenModel(options.model.path, options.model.open);
    // The model is checked as it is declared, without the joins that people make beside it.
    check.history = OpenHistory(model, options.model, context);
    return CheckModel(model, check);
}

void Write(const Options& options, const CheckReport& report, std::ostream& out)
{
    const PipelineContext pipeline{.modelName = ToShownPath(options.model.path),
                                   .toolVersion = QEREFINER_VERSION,
                                   .failOn = options.failOn};
    switch (options.format) {
    case EFormat::PlainText:
        return WriteText(out, report, options.view);
    case EFormat::JsonText:
        out << ToJsonText(ToJson(report, pipeline.modelName, options.view)) << '\n';
        return;
    case EFormat::Sarif:
        out << ToJsonText(ToSarif(report, pipeline)) << '\n';
        return;
    case EFormat::Junit:
        return WriteJunit(out, report, pipeline);
    }
}

EExitCode Report(const Options& options, const CheckReport& report, const CommandContext& context)
{
    Write(options, report, context.output);
    if (!options.newBaseline.empty()) {
        WriteFileWhole(options.newBaseline, WriteBaselineText(report, options.reason));
        return EExitCode::Done;
    }
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
