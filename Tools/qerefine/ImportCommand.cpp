#include "Tools/qerefine/Command.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Batch/ProgressBar.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/DisplayText.h"
#include "Tools/qerefine/CommandOptions.h"

#include <chrono>
#include <fstream>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

struct Options
{
    std::vector<std::string> files{};
    /// Empty: standard output.
    std::string output{};
    /// Nothing where it is to be recognised.
    std::optional<EDialect> dialect{};
    ImportOptions import{};
};

void WriteFile(const std::string& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    if (!file)
        throw InputError({{path, "cannot write the file"}});
}

void AddOptions(CLI::App& command, Options& options)
{
    command.add_option("FILE", options.files, "what to read")->required();
    command.add_option("-o,--output", options.output,
                       "where the model file goes; standard output without it");
    command.add_flag_callback(
        "--roles", [&options] { options.import.roles = ERoles::Shortcuts; },
        "also make a shortcut for each role of a table that another one refers to several times");
}

void AddSqlOptions(CLI::App& command, Options& options)
{
    AddOptions(command, options);
    command
        .add_option_function<std::string>(
            "--from", [&options](const std::string& word) { options.dialect = FindDialect(word); },
            "the dialect of the files; recognised without it")
        ->check(CLI::IsMember(ListDialectWords()))
        ->type_name("DIALECT");
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
    constexpr std::chrono::seconds kDelay(1);
    ImportOptions importOptions = options.import;
    std::optional<ProgressBar> bar;
    if (context.terminal.error == Terminal::EStream::Terminal) {
        bar.emplace(context.error, context.terminal.width, kDelay);
        importOptions.observer = [&bar](const Progress& progress) { bar->Show(progress); };
    }
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
        return ImportSql({options.files.begin(), options.files.end()}, importOptions,
                         options.dialect);
    });
}

/// Imports whatever the file holds; several files are DDL.
ToolModel RunAny(const Options& options, const CommandContext& context)
{
    if (options.dialect || options.files.size() != 1)
        return RunSql(options, context);
    return RunImport(options, context, [&options](const ImportOptions& importOptions) {
        return OpenModel(options.files.front(), importOptions);
    });
}

void WriteSummary(const Options& options, const ToolModel& imported, const CommandContext& context)
{
    const std::string origin = imported.origin.empty() ? "" : "; read as " + imported.origin;
    context.error << ToDisplayText(options.files.front()) << ": "
                  << imported.model->GetSubjects().size() << " tables, "
                  << imported.model->GetIds(IdClassRelationship).size() << " joins" << origin
                  << '\n';
}

EExitCode Report(const Options& options, const ToolModel& imported, const CommandContext& context)
{
    WriteNotes(imported, context);
    const std::string text = WriteModelText(imported);
    if (options.output.empty())
        context.output << text;
    else
        WriteFile(options.output, text);
    WriteSummary(options, imported, context);
    return EExitCode::Done;
}

/// Lets the command read files whose kind it has to recognise, unless a kind is named.
void AddAnyImport(const CommandLine& line, CLI::App& import)
{
    const auto options = std::make_shared<Options>();
    AddSqlOptions(import, *options);
    import.get_option("FILE")->required(false);
    import.callback([line, options, &import] {
        if (!import.get_subcommands().empty())
            return;
    if (options->files.empty())
        throw CLI::RequiredError("FILE");
    line.exitCode = Report(*options, RunAny(*options, line.context), line.context);
});
} // namespace

} // namespace qe::tool

void AddImportCommand(const CommandLine& line)
{
    constexpr const char* kExample = "qerefine import sqlite shop.db --roles -o shop.json";
    CLI::App& import = AddSubcommand(
        line.app,
        {.name = "import",
         .summary = "Makes a model file of a database or of its DDL, whose kind is recognised "
                    "unless it is named.",
         .example = kExample});
    import.require_subcommand(0, 1);
    AddAnyImport(line, import);
    const CommandLine sources{.app = import, .context = line.context, .exitCode = line.exitCode};
    const CommandHelp sqlite{.name = "sqlite",
                             .summary = "Reads an SQLite database, which stays as it is.",
                             .example = kExample};
    AddCommand(sources, Command<Options, ToolModel>{.help = sqlite,
                                                    .addOptions = AddSqliteOptions,
                                                    .run = RunSqlite,
                                                    .report = Report});
    const CommandHelp sql{.name = "sql",
                          .summary = "Reads files of DDL, one after the other as one script.",
                          .example = "qerefine import sql tables.sql keys.sql > shop.json"};
    AddCommand(sources,
               Command<Options, ToolModel>{
                   .help = sql, .addOptions = AddSqlOptions, .run = RunSql, .report = Report});
}

} // namespace qe::tool
