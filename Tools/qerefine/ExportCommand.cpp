#include "Tools/qerefine/Command.h"

#include "Toolkit/Export/ExportFormat.h"
#include "Tools/qerefine/CommandOptions.h"

#include <ostream>
#include <string>

namespace qe::tool {

namespace {

struct Options
{
    ModelOptions model{};
    const ExportFormat* format = nullptr;
};

struct Exported
{
    std::string text{};
    LeftOut leftOut{};
};

void AddOptions(CLI::App& command, Options& options)
{
    AddModelPath(command, options.model.path);
    AddRoles(command, options.model.open.roles);
    Choices<const ExportFormat*> formats;
    for (const ExportFormat& format : ListExportFormats())
        formats.emplace_back(format.word, &format);
    AddChoice(command, "--to", options.format, formats, "The format to write")->required();
}

Exported Run(const Options& options, const CommandContext& context)
{
    const ToolModel model = OpenModelWithNotes(options.model, context);
    Exported exported;
    exported.text = options.format->write(model, exported.leftOut);
    return exported;
}

EExitCode Report(const Options& /*options*/, const Exported& exported,
                 const CommandContext& context)
{
    WriteNotes(exported.leftOut.List(), context);
    context.output << exported.text;
    return EExitCode::Done;
}

} // namespace

void AddExportCommand(const CommandLine& line)
{
    AddCommand(
        line, Command<Options, Exported>{
                  .help = {.name = "export",
                           .summary = "Writes a model in the format of another tool. What that has "
                                      "no place for is told.",
                           .example = "qerefine export shop.json --to mermaid -o shop.mmd"},
                  .addOptions = AddOptions,
                  .run = Run,
                  .report = Report});
}

} // namespace qe::tool
