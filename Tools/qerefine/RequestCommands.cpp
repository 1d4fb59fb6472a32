// The commands that work through a file of requests: batch answers them, evaluate compares the
// answers with the joins that people wrote.

#include "Tools/qerefine/Command.h"

#include "Toolkit/Answers/RequestOutput.h"
#include "Toolkit/Batch/Batch.h"
#include "Toolkit/Batch/Interrupt.h"
#include "Toolkit/Batch/LineReader.h"
#include "Toolkit/Batch/ProgressBar.h"
#include "Toolkit/Batch/QuestionReader.h"
#include "Toolkit/Evaluate/Evaluation.h"
#include "Toolkit/Evaluate/ModelSource.h"
#include "Toolkit/Text/JsonText.h"
#include "Tools/qerefine/CommandOptions.h"
#include "Tools/qerefine/RiskOptions.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <thread>

namespace qe::tool {

namespace {

constexpr std::size_t kMostThreads = 256;
/// More threads are used only when asked for.
constexpr std::size_t kMostDefaultThreads = 8;

constexpr double kAllPercent = 100;

constexpr const char* kBatchRemarks = R"(

A request is a JSON object on a line of its own, such as
  {"id": "sales by region", "subjects": ["orders", "region"]}

The exit code is 1 when a request failed, or after an interrupt, and 7 when an
answer has a risk that --fail-on names.)";

constexpr const char* kEvaluateRemarks = R"(

A request is as for batch, with the joins that a person wrote, such as
  {"id": "7", "subjects": ["orders", "customer"],
   "joins": [["orders.customer_id", "customer.customer_id"]]}
all on one line. In a folder of models, "db" names the one that is asked.)";

/// A model and a file of requests, on the command line.
struct RequestOptions
{
    ModelOptions model{};
    /// "-" is standard input.
    std::string requests = "-";
    /// What requests do not say, as one JSON object.
    std::string defaults = "{}";
};

struct BatchCommandOptions
{
    RequestOptions file{};
    std::size_t threads =
        std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, kMostDefaultThreads);
    ListLimit alternatives{0};
    RiskOptions risks{};
};

struct EvaluateCommandOptions
{
    RequestOptions file{};
    EReportFormat format = EReportFormat::PlainText;
    EDifferences differences = EDifferences::Counted;
    /// The share that must be answered the same.
    std::optional<double> leastSame{};
};

void AddRequestOptions(CLI::App& command, RequestOptions& options)
{
    command
        .add_option("REQUESTS", options.requests, "One JSON object a line; \"-\" is standard input")
        ->type_name("");
    AddModelSettings(command, options.model, "Options");
    command
        .add_option("--defaults", options.defaults, "What requests do not say: an object like them")
        ->type_name("JSON");
}

/// Sets the settings for the process and returns the question with what requests do not say.
/// Throws InputError.
Question PrepareDefaults(const RequestOptions& options)
{
    if (options.model.path == "/dev/stdin" && options.requests == "-")
        throw CLI::ValidationError("REQUESTS",
                                   "standard input can only be read once, and MODEL is read first");
    Question question;
    try {
        question = ReadDefaults(options.defaults);
    } catch (const InputError& error) {
        throw InputError({InputProblem{"--defaults", error.what()}});
    }
    question.settings = options.model.settings;
    ApplySettings(question.settings);
    return question;
}

void AddBatchOptions(CLI::App& command, BatchCommandOptions& options)
{
    AddModelPath(command, options.file.model.path);
    AddRequestOptions(command, options.file);
    command.add_option("--jobs", options.threads, "How many threads work on the requests")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, kMostThreads))
        ->capture_default_str();
    AddLimit(command, "--alternatives", options.alternatives,
             "How many ranked alternatives an answer shows, none by default")
        ->type_name("N");
    AddRiskOptions(command, options.risks, "Options");
}

BatchSummary RunRequests(const BatchCommandOptions& options, const CommandContext& context)
{
    BatchOptions batch{.threads = options.threads, .defaults = PrepareDefaults(options.file)};
    const NoticeContext notices(options.risks, context);
    const ToolModel model = OpenModelWithNotes(options.file.model, notices.Get());
    RequestFile requests(options.file.requests, context.input);
    const Interrupt interrupt;
    batch.stop = &interrupt.GetFlag();
    std::optional<ProgressBar> bar;
    if (context.terminal.error == Terminal::EStream::Terminal) {
        bar.emplace(notices.Get().error, context.terminal.width);
        batch.observer = [&bar, size = requests.GetSize()](const BatchSummary& soFar) {
            bar->Show(
                {.done = soFar.bytes, .size = size, .count = soFar.requests, .unit = "requests"});
        };
    }
    const BatchOutput output{.stream = context.output,
                             .toLine = [&options](const BatchEntry& entry) {
                                 return ToJsonLine(ToJson(entry, options.alternatives));
                             }};
    return RunBatch(model, requests.Get(), output, batch);
}

EExitCode ReportBatch(const BatchCommandOptions& options, const BatchSummary& summary,
                      const CommandContext& context)
{
    NoticeContext(options.risks, context).Get().error << ToText(summary) << '\n';
    const bool isWhole = summary.failures == 0 && !summary.wasInterrupted;
    return JudgeRisks(
        options.risks, isWhole ? EExitCode::Done : EExitCode::NegativeResult,
        [&summary](ERisk risk) { return summary.risky[static_cast<std::size_t>(risk)] > 0; });
}

void AddEvaluateOptions(CLI::App& command, EvaluateCommandOptions& options)
{
    AddModelPath(command, options.file.model.path,
                 "Model file (JSON), SQLite database, file of DDL statements, or a folder of such");
    AddRequestOptions(command, options.file);
    AddReportFormat(command, options.format, "How the shares are written")->default_str("text");
    command.add_flag_callback(
        "--list", [&options] { options.differences = EDifferences::Listed; },
        "Tell each request that was not answered the same, or why it was refused");
    command
        .add_option("--min-same", options.leastSame,
                    "End with exit code 8 when fewer are answered the same, in percent")
        ->type_name("PERCENT")
        ->check(CLI::Range(0.0, kAllPercent))
        ->check(CLI::Validator(
            [](const std::string& text) {
                return text.find_first_of("nN") == std::string::npos ? std::string()
                                                                     : "not a number: " + text;
            },
            ""));
}

Evaluation RunEvaluation(const EvaluateCommandOptions& options, const CommandContext& context)
{
    const Question defaults = PrepareDefaults(options.file);
    const ModelOptions& model = options.file.model;
    ModelSource models(model.path, [&model](const std::filesystem::path& path) {
        return OpenModel(path, model.open);
    });
    RequestFile requests(options.file.requests, context.input);
    return Evaluate(models, requests.Get(), defaults);
}

EExitCode ReportEvaluation(const EvaluateCommandOptions& options, const Evaluation& evaluation,
                           const CommandContext& context)
{
    if (options.format == EReportFormat::JsonText)
        context.output << ToJsonText(ToJson(evaluation)) << '\n';
    else
        WriteText(context.output, evaluation, options.differences);
    const auto requests = static_cast<double>(evaluation.all.CountRequests());
    const auto same = static_cast<double>(evaluation.all.Get(EComparison::Same));
    if (!options.leastSame || (requests > 0 && kAllPercent * same >= *options.leastSame * requests))
        return EExitCode::Done;
    context.error << "qerefine: " << same << " of " << requests
                  << " requests were answered the same, less than " << *options.leastSame << " %\n";
    return EExitCode::ShareMissed;
}

} // namespace

void AddBatchCommand(const CommandLine& line)
{
    const CommandHelp help{.name = "batch",
                           .summary = "Answers many requests, one line of JSON each.",
                           .example =
                               "qerefine batch shop.sqlite requests.jsonl --jobs 4 > answers.jsonl",
                           .remarks = kBatchRemarks};
    AddCommand(line, Command<BatchCommandOptions, BatchSummary>{.help = help,
                                                                .addOptions = AddBatchOptions,
                                                                .run = RunRequests,
                                                                .report = ReportBatch});
}

void AddEvaluateCommand(const CommandLine& line)
{
    const CommandHelp help{.name = "evaluate",
                           .summary = "Compares answers with the joins that people wrote.",
                           .example = "qerefine evaluate shop.json query-log.jsonl --list",
                           .remarks = kEvaluateRemarks};
    AddCommand(line, Command<EvaluateCommandOptions, Evaluation>{.help = help,
                                                                 .addOptions = AddEvaluateOptions,
                                                                 .run = RunEvaluation,
                                                                 .report = ReportEvaluation});
}

} // namespace qe::tool
