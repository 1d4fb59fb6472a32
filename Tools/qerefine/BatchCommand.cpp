#include "Tools/qerefine/Commands.h"

#include "Toolkit/Batch/Batch.h"
#include "Toolkit/Batch/Interrupt.h"
#include "Toolkit/Batch/ProgressBar.h"
#include "Toolkit/Text/DisplayText.h"
#include "Tools/qerefine/CommandContext.h"
#include "Tools/qerefine/RequestFile.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <thread>

namespace qe::tool {

namespace {

constexpr std::size_t kMostThreads = 256;

constexpr const char* kFooter = R"(Example:
  qerefine batch shop.sqlite requests.jsonl --jobs 4 > answers.jsonl

A request is a JSON object on a line of its own, such as
  {"id": "sales by region", "subjects": ["orders", "region"]}

The exit code is 1 when a request failed, or after an interrupt.)";

struct Options
{
    RequestFileOptions file{};
    BatchOptions batch{};
    std::optional<std::size_t> alternatives{};
};

void Run(Options& options, CommandContext& context)
{
    options.batch.defaults = options.file.Prepare();
    if (options.alternatives)
        options.batch.alternatives = ListLimit::FromOption(*options.alternatives);
    const ToolModel model = OpenModel(options.file.model, options.file.GetOpenOptions());
    for (const std::string& note : model.notes)
        context.error << "note: " << ToDisplayText(note) << '\n';
    RequestFile requests(options.file.requests, context.input);
    const Interrupt interrupt;
    options.batch.stop = &interrupt.GetFlag();

    std::optional<ProgressBar> bar;
    if (context.terminal.error == Terminal::EStream::Terminal) {
        bar.emplace(context.error, context.terminal.width, requests.GetSize());
        options.batch.observer = [&bar](const BatchSummary& soFar) {
            bar->Show(soFar.bytes, soFar.requests);
        };
    }
    const BatchSummary summary = RunBatch(model, requests.Get(), context.output, options.batch);
    bar.reset();
    context.error << ToText(summary) << '\n';
    if (summary.failures > 0 || summary.wasInterrupted)
        context.exitCode = EExitCode::NotConnected;
}

} // namespace

void AddBatchCommand(CLI::App& app, CommandContext& context)
{
    const auto options = std::make_shared<Options>();
    options->batch.threads = std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, 8);
    CLI::App* const command =
        app.add_subcommand("batch", "Answers many requests, one line of JSON each.");
    command
        ->add_option("MODEL", options->file.model,
                     "Model file (JSON), SQLite database or file of DDL statements")
        ->type_name("")
        ->required();
    options->file.AddTo(*command);
    command->add_option("--jobs", options->batch.threads, "How many threads work on the requests")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, kMostThreads))
        ->capture_default_str();
    command
        ->add_option("--alternatives", options->alternatives,
                     "How many ranked alternatives an answer shows; 0: all; none by default")
        ->type_name("N");
    command->footer(kFooter);
    command->callback([options, &context] { Run(*options, context); });
}

} // namespace qe::tool
