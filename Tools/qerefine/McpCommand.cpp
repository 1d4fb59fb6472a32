#include "Tools/qerefine/Command.h"

#include "Toolkit/Agent/AgentServer.h"
#include "Toolkit/Agent/ModelShelf.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/History/LoadHistory.h"
#include "Toolkit/Import/OpenModel.h"
#include "Tools/qerefine/CommandOptions.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <ostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

constexpr const char* kRemarks = R"(

It speaks the Model Context Protocol over standard input and output until the
input ends. Each model is asked for under its name: NAME where it is given, else
what the file or database is called.)";

constexpr std::size_t kMostThreads = 64;
/// More threads are used only when asked for.
constexpr std::size_t kMostDefaultThreads = 4;
/// The models that a client is told of before it asks.
constexpr std::size_t kModelsInInstructions = 20;

struct Options
{
    std::vector<std::string> models{};
    /// What all models share; the path is that of one after the other.
    ModelOptions shared{};
    std::size_t threads =
        std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, kMostDefaultThreads);
};

void AddOptions(CLI::App& command, Options& options)
{
    command
        .add_option("MODEL", options.models,
                    "Models, each as for the other commands, with a name before it or not: "
                    "shop=shop.sqlite")
        ->type_name("[NAME=]MODEL")
        ->required();
    AddModelSettings(command, options.shared, "Options");
    AddHistory(command, options.shared.histories, "Options");
    command.add_option("--jobs", options.threads, "Calls that are worked on at a time")
        ->type_name("NUMBER")
        ->check(CLI::Range(std::size_t{1}, kMostThreads).description(""));
}

ServedModel OpenServedModel(const Options& options, const NamedModel& named,
                            const CommandContext& context)
{
    if (named.path == "-" || named.path == "/dev/stdin")
        throw CLI::ValidationError("MODEL",
                                   "standard input carries the protocol, and can be no model");
    ModelOptions open = options.shared;
    open.path = named.path;
    ServedModel served{.name = named.name, .source = ToShownPath(open.path)};
    served.model =
        NameWork("reading " + served.source, [&open] { return OpenModel(open.path, open.open); });
    WriteNotes(served.model, context);
    const auto history = OpenHistory(served.model, open, context);
    served.asked = history == nullptr ? served.model : WithHistory(served.model, history);
    served.history = history;
    return served;
}

ModelShelf OpenModels(const Options& options, const CommandContext& context)
{
    ApplySettings(options.shared.settings);
    std::vector<ServedModel> models;
    for (const std::string& text : options.models)
        models.push_back(OpenServedModel(options, ParseNamedModel(text), context));
    return BlameArguments([&models] { return ModelShelf(std::move(models)); });
}

std::string WriteInstructions(const ModelShelf& shelf)
{
    std::vector<std::string> names;
    for (const ServedModel& model : shelf.Get())
        names.push_back(model.name);
    return "Before you write SQL that joins tables, call join_path with the tables that the query "
           "needs, and take its FROM clause as it stands; do not guess joins. Heed its warnings. "
           "Where it has a question, put that to the user. Models: " +
           JoinFirstTexts(names, kModelsInInstructions) + '.';
}

EExitCode Serve(const Options& options, const ModelShelf& shelf, const CommandContext& context)
{
    // Diagnostics of other threads must not flush the output while a message is written.
    std::ostream* const tied = context.error.tie(nullptr);
    ServeAgent(
        shelf, context.input, context.output,
        {.identity = {.version = QEREFINER_VERSION, .instructions = WriteInstructions(shelf)},
         .threads = options.threads});
    context.error.tie(tied);
    return EExitCode::Done;
}

} // namespace

void AddMcpCommand(const CommandLine& line)
{
    const CommandHelp help{.name = "mcp",
                           .summary = "Answers agents, by the Model Context Protocol.",
                           .example = "qerefine mcp shop=shop.sqlite hr=postgresql://db/hr",
                           .remarks = kRemarks};
    CLI::App& subcommand = AddSubcommand(line.app, help);
    const auto options = std::make_shared<Options>();
    AddOptions(subcommand, *options);
    subcommand.callback([line, options] {
        line.exitCode = Serve(*options, OpenModels(*options, line.context), line.context);
    });
}

} // namespace qe::tool
