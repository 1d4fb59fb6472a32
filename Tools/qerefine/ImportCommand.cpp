#include "Tools/qerefine/Command.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/Names.h"
#include "Toolkit/Import/Live/ServerKinds.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/DisplayText.h"
#include "Tools/qerefine/CommandOptions.h"
#include "Tools/qerefine/DelayedProgress.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace qe::tool {

namespace {

constexpr const char* kSqliteKind = "sqlite";
constexpr const char* kSqlKind = "sql";
constexpr const char* kExample = "qerefine import sqlite shop.db --roles -o shop.json";

struct Options
{
    std::vector<std::string> files{};
    ImportKind kind{};
    ImportOptions import{};
};

void AddOptions(CLI::App& command, Options& options)
{
    AcceptStandardInput(
        *command.add_option("FILE", options.files, "What to read")->required()->type_name(""));
    AddRoles(command, options.import.roles);
}

/// Returns the choice that each of the words is.
Choices<ImportKind> ListKinds(const std::vector<std::string>& words)
{
    Choices<ImportKind> kinds;
    for (const std::string& word : words)
        kinds.emplace_back(word, FindImportKind(word).value());
    return kinds;
}

void AddSqlOptions(CLI::App& command, Options& options)
{
    AddOptions(command, options);
    AddChoice(command, "--from", options.kind, ListKinds(ListDialectWords()),
              "The dialect of the files; recognised without it");
}

/// The files may be those of a subcommand, which takes no options from here.
void AddAnyOptions(CLI::App& command, Options& options)
{
    AddOptions(command, options);
    AddChoice(command, "--from", options.kind, ListKinds(ListImportWords()),
              "The dialect or format of the files; recognised without it");
    AddServerOptions(command, options.import.server);
    command.get_option("FILE")->required(false);
}

void AddSqliteOptions(CLI::App& command, Options& options)
{
    AddOptions(command, options);
    command.get_option("FILE")->expected(1);
}

/// The kind stands at that position of the list.
template <std::size_t kind>
void AddUrlOptions(CLI::App& command, Options& options)
{
    const auto complete = [](std::string& url) {
        if (FindServerKind(url) == nullptr)
            url.insert(0, ListServerKinds()[kind].impliedScheme);
        return std::string();
    };
    command.add_option("URL", options.files, "The database")
        ->required()
        ->expected(1)
        ->type_name("")
        ->transform(CLI::Validator(complete, ""));
    AddRoles(command, options.import.roles);
    AddServerOptions(command, options.import.server);
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
        return ImportSql({options.files.begin(), options.files.end()}, importOptions,
                         options.kind.dialect);
    });
}

/// The kind stands at that position of the list.
template <std::size_t kind>
ToolModel RunServer(const Options& options, const CommandContext& context)
{
    return RunImport(options, context, [&options](const ImportOptions& importOptions) {
        return ImportServer(options.files.front(), importOptions, ListServerKinds()[kind]);
    });
}

/// Throws a UsageError where the first word is no file and like a kind, but for a letter.
void RejectMistypedKind(const std::string& word)
{
    std::error_code error;
    if (word.find_first_of("./:") != std::string::npos || std::filesystem::exists(word, error))
        return;
    std::vector<std::string_view> kinds{kSqliteKind, kSqlKind};
    for (const ServerKind& kind : ListServerKinds())
        kinds.push_back(kind.word);
    const std::vector<std::string> nearest = model::NearestNames(word, kinds);
    if (!nearest.empty())
        throw UsageError(InputError({{"", "unknown command \"" + word + '"', nearest}}));
}

/// Imports whatever the file holds; several files are DDL.
ToolModel RunAny(const Options& options, const CommandContext& context)
{
    if (options.files.empty())
        throw CLI::RequiredError("FILE");
    RejectMistypedKind(options.files.front());
    const SourceFormat* const format = options.kind.format;
    if (format != nullptr && options.files.size() != 1)
        throw UsageError(InputError(
            {{"", "one file or folder makes a model of " + std::string(format->title)}}));
    if (options.kind.dialect)
        return RunSql(options, context);
    return RunImport(options, context, [&](const ImportOptions& importOptions) {
        if (options.files.size() != 1)
            return ImportTogether({options.files.begin(), options.files.end()}, importOptions);
        return OpenModelAs(options.files.front(), options.kind, importOptions);
    });
}

void WriteSummary(const Options& options, const ToolModel& imported, const CommandContext& context)
{
    const std::string origin = imported.origin.empty() ? "" : "; read as " + imported.origin;
    context.error << ToDisplayText(ToShownPath(options.files.front())) << ": "
                  << imported.model->GetSubjects().size() << " tables, "
                  << imported.model->GetIds(IdClassRelationship).size() << " joins" << origin
                  << '\n';
}

EExitCode Report(const Options& options, const ToolModel& imported, const CommandContext& context)
{
    WriteNotes(imported, context);
    context.output << WriteModelText(imported);
    WriteSummary(options, imported, context);
    return EExitCode::Done;
}

void AddSqliteImport(const CommandLine& line)
{
    AddCommand(line, Command<Options, ToolModel>{
                         .help = {.name = kSqliteKind,
                                  .summary = "Reads an SQLite database, which stays as it is.",
                                  .example = kExample},
                         .addOptions = AddSqliteOptions,
                         .run = RunSqlite,
                         .report = Report});
}

void AddSqlImport(const CommandLine& line)
{
    AddCommand(line, Command<Options, ToolModel>{
                         .help = {.name = kSqlKind,
                                  .summary = "Reads files of DDL, one after the other as one "
                                             "script.",
                                  .example = "qerefine import sql tables.sql keys.sql > shop.json"},
                         .addOptions = AddSqlOptions,
                         .run = RunSql,
                         .report = Report});
}

/// The kind stands at that position of the list.
template <std::size_t kind>
void AddServerImport(const CommandLine& line, const char* summary, const char* example)
{
    AddCommand(line,
               Command<Options, ToolModel>{.help = {.name = ListServerKinds()[kind].word.data(),
                                                    .summary = summary,
                                                    .example = example},
                                           .addOptions = AddUrlOptions<kind>,
                                           .run = RunServer<kind>,
                                           .report = Report});
}

void AddServerImports(const CommandLine& line)
{
    AddServerImport<0>(line, "Reads a database on a PostgreSQL server.",
                       "qerefine import postgresql postgresql://ann@db.example/shop -o shop.json");
    AddServerImport<1>(line, "Reads a database on a MySQL or MariaDB server.",
                       "qerefine import mysql mysql://ann@db.example/shop -o shop.json");
    AddServerImport<2>(line, "Reads a database through an ODBC driver.",
                       "qerefine import odbc \"odbc:DSN=shop\" -o shop.json");
}

} // namespace

void AddImportCommand(const CommandLine& line)
{
    CLI::App& import = AddCommand(
        line,
        Command<Options, ToolModel>{
            .help = {.name = "import",
                     .summary = "Makes a model file of a database, of its DDL or of a model of "
                                "another tool, whose kind is recognised unless it is named.",
                     .example = "qerefine import shop.db --roles -o shop.json"},
            .addOptions = AddAnyOptions,
            .run = RunAny,
            .report = Report});
    import.require_subcommand(0, 1);
    const CommandLine kinds{.app = import, .context = line.context, .exitCode = line.exitCode};
    AddSqliteImport(kinds);
    AddSqlImport(kinds);
    AddServerImports(kinds);
    for (CLI::App* const kind : import.get_subcommands([](const CLI::App*) { return true; }))
        for (CLI::Option* const option : import.get_options())
            kind->excludes(option);
}

} // namespace qe::tool
