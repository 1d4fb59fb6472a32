// The command that makes small files of past queries.

#include "Tools/qerefine/Command.h"

#include "Toolkit/History/HistoryFile.h"
#include "Toolkit/History/HistoryPack.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Text/DisplayText.h"
#include "Tools/qerefine/CommandOptions.h"

#include <filesystem>
#include <iterator>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

constexpr const char* kPackRemarks = R"(

What is written holds tables, columns and counts: no values, no texts, no names of queries.)";

struct PackOptions
{
    std::vector<std::string> files{};
    std::string model{};
};

struct PackResult
{
    HistoryEntries history{};
};

void AddOptions(CLI::App& command, PackOptions& options)
{
    command
        .add_option("FILE", options.files,
                    "Past queries: lines of JSON as for evaluate, or SQL statements")
        ->type_name("")
        ->required();
    command
        .add_option("--model", options.model,
                    "The model that tells which table a column without one belongs to")
        ->type_name("MODEL");
}

PackResult Run(const PackOptions& options, const CommandContext& /*context*/)
{
    std::optional<SchemaColumns> columns;
    if (!options.model.empty())
        columns.emplace(*OpenModel(options.model).model);
    PackResult result;
    for (const std::string& path : options.files) {
        HistoryEntries file = ReadHistoryFile(path, columns ? &*columns : nullptr);
        result.history.entries += file.entries;
        for (const InputProblem& problem : file.firstUnread)
            result.history.AddUnread(problem);
        result.history.unread += file.unread - file.firstUnread.size();
        result.history.queries.insert(result.history.queries.end(),
                                      std::make_move_iterator(file.queries.begin()),
                                      std::make_move_iterator(file.queries.end()));
    }
    return result;
}

EExitCode Report(const PackOptions& /*options*/, const PackResult& result,
                 const CommandContext& context)
{
    const HistoryEntries& history = result.history;
    const std::size_t lines = WritePack(context.output, history.queries);
    for (const InputProblem& problem : history.firstUnread)
        context.error << "note: " << ToDisplayText(problem.place + ": " + problem.text) << '\n';
    context.error << "entries: " << history.entries << ", not read: " << history.unread
                  << ", lines written: " << lines << '\n';
    return EExitCode::Done;
}

} // namespace

void AddHistoryCommand(const CommandLine& line)
{
    const CommandHelp group{.name = "history",
                            .summary = "Makes small files of past queries.",
                            .example = "qerefine history pack query-log.sql > past.jsonl"};
    CLI::App& history = AddSubcommand(line.app, group);
    history.require_subcommand(1);
    const CommandHelp pack{.name = "pack",
                           .summary = "Writes past queries as tables, columns and counts.",
                           .example = "qerefine history pack query-log.sql --model shop.json",
                           .remarks = kPackRemarks};
    AddCommand(CommandLine{history, line.context, line.exitCode},
               Command<PackOptions, PackResult>{
                   .help = pack, .addOptions = AddOptions, .run = Run, .report = Report});
}

} // namespace qe::tool
