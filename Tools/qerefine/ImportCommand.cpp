#include "Tools/qerefine/Command.h"

#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Model/ModelFile.h"
#include "Tools/qerefine/CommandOptions.h"
#include "Tools/qerefine/DelayedProgress.h"

#include <ostream>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

struct Options
{
    std::vector<std::string> files{};
    ImportOptions import{};
};

void AddOptions(CLI::App& command, Options& options)
{
    AcceptStandardInput(
        *command.add_option("FILE", options.files, "What to read")->required()->type_name(""));
    AddRoles(command, options.import.roles);
}

void AddSqliteOptions(CLI::App& command, Options& options)
{
    AddOptions(command, options);
    command.get_option("FILE")->expected(1);
}

/// Runs an import; on a terminal, one that takes long is followed by a bar.
template <typename Import>
ToolModel RunImport(const Options& options, const CommandContext& context, const Import& import)
{
    ImportOptions importOptions = options.import;
    DelayedProgress progress(context);
    importOptions.observer = progress.GetObserver();
    return import(importOptions);
}

ToolModel RunSqlite(const Options& options, const CommandContext& context)
{
    return RunImport(options, context, [&options](const ImportOptions& importOptions) {
        return ImportSqlite(options.files.front(), importOptions);
    });
}

ToolModel RunSql(const Options& options, const CommandContext& context)
{
    return RunImport(options, context, [&options](const ImportOptions& importOptions) {
        return ImportSql({options.files.begin(), options.files.end()}, importOptions);
    });
}

EExitCode Report(const Options& /*options*/, const ToolModel& imported,
                 const CommandContext& context)
{
    WriteNotes(imported, context);
    context.output << WriteModelText(imported);
    return EExitCode::Done;
}

} // namespace

void AddImportCommand(const CommandLine& line)
{
    constexpr const char* kExample = "qerefine import sqlite shop.db --roles -o shop.json";
    CLI::App& import =
        AddSubcommand(line.app, {.name = "import",
                                 .summary = "Makes a model file of a database or of its DDL.",
                                 .example = kExample});
    import.require_subcommand(1);
    const CommandLine sources{.app = import, .context = line.context, .exitCode = line.exitCode};
    const CommandHelp sqlite{.name = "sqlite",
                             .summary = "Reads an SQLite database, which stays as it is.",
                             .example = kExample};
    AddCommand(sources, Command<Options, ToolModel>{.help = sqlite,
                                                    .addOptions = AddSqliteOptions,
                                                    .run = RunSqlite,
                                                    .report = Report});
    const CommandHelp sql{
        .name = "sql",
        .summary = "Reads files of DDL, run one after the other in an empty database in memory.",
        .example = "qerefine import sql tables.sql keys.sql > shop.json"};
    AddCommand(sources,
               Command<Options, ToolModel>{
                   .help = sql, .addOptions = AddOptions, .run = RunSql, .report = Report});
}

} // namespace qe::tool
