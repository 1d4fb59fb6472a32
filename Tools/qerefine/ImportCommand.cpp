#include "Tools/qerefine/Commands.h"

#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputError.h"
#include "Tools/qerefine/CommandContext.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

struct ImportArguments
{
    std::vector<std::string> files;
    std::string output;
    bool roles = false;
};

using Import = std::function<ToolModel(const ImportArguments&, const ImportOptions&)>;

void WriteFile(const std::string& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    if (!file)
        throw InputError({{path, "cannot write the file"}});
}

void Run(const ImportArguments& arguments, const Import& import, CommandContext& context)
{
    const ERoles roles = arguments.roles ? ERoles::Shortcuts : ERoles::Plain;
    const ToolModel imported = import(arguments, ImportOptions{roles});
    for (const std::string& note : imported.notes)
        context.error << "note: " << ToDisplayText(note) << '\n';
    const std::string text = WriteModelText(imported);
    if (arguments.output.empty())
        context.output << text;
    else
        WriteFile(arguments.output, text);
}

void AddSource(CLI::App& command, CommandContext& context, const Import& import)
{
    const auto arguments = std::make_shared<ImportArguments>();
    command.add_option("FILE", arguments->files, "what to read")->required();
    command.add_option("-o,--output", arguments->output,
                       "where the model file goes; standard output without it");
    command.add_flag("--roles", arguments->roles,
                     "also make a shortcut for each role of a table that another one refers to "
                     "several times");
    command.callback([arguments, import, &context] { Run(*arguments, import, context); });
}

} // namespace

void AddImportCommand(CLI::App& app, CommandContext& context)
{
    CLI::App* const command =
        app.add_subcommand("import", "Makes a model file of a database or of its DDL.");
    command->require_subcommand(1);
    command->footer("Example:\n  qerefine import sqlite shop.db --roles -o shop.json");

    CLI::App* const sqlite =
        command->add_subcommand("sqlite", "Reads an SQLite database, which stays as it is.");
    sqlite->footer("Example:\n  qerefine import sqlite shop.db --roles -o shop.json");
    AddSource(*sqlite, context, [](const ImportArguments& arguments, const ImportOptions& options) {
        return ImportSqlite(arguments.files.front(), options);
    });
    sqlite->get_option("FILE")->expected(1);

    CLI::App* const sql = command->add_subcommand(
        "sql", "Reads files of DDL, run one after the other in an empty database in memory.");
    sql->footer("Example:\n  qerefine import sql tables.sql keys.sql > shop.json");
    AddSource(*sql, context, [](const ImportArguments& arguments, const ImportOptions& options) {
        return ImportSql({arguments.files.begin(), arguments.files.end()}, options);
    });
}

} // namespace qe::tool
