#include "Tools/qerefine/Command.h"

#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Draw/DotWriter.h"
#include "Toolkit/Draw/Graphviz.h"
#include "Toolkit/Draw/PictureFormat.h"
#include "Toolkit/Draw/Pictures.h"
#include "Tools/qerefine/CommandOptions.h"
#include "Tools/qerefine/DelayedProgress.h"

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

enum class EPictureFormat : std::uint8_t
{
    Dot,
    Svg,
    Png,
};

struct Options
{
    ModelOptions model{};
    EPictureFormat format = EPictureFormat::Svg;
    std::vector<std::string> around{};
    ListLimit limit{100};
};

void AddOptions(CLI::App& command, Options& options)
{
    AddModelPath(command, options.model.path);
    AddRoles(command, options.model.open.roles);
    AddServerOptions(command, options.model.open.server);
    AddChoice(
        command, "--format", options.format,
        {{"dot", EPictureFormat::Dot}, {"svg", EPictureFormat::Svg}, {"png", EPictureFormat::Png}},
        "The form of the picture")
        ->default_str("svg");
    command.add_option("--around", options.around,
                       "Draw only these subjects and what is joined to them");
    AddLimit(command, "--limit", options.limit, "Subjects drawn at most")->default_str("100");
}

Picture Run(const Options& options, const CommandContext& context)
{
    const ToolModel model = OpenModelWithNotes(options.model, context);
    const std::vector<amd_id> around = BlameArguments([&] {
        NameResolver names(*model.model);
        std::vector<amd_id> found = names.ResolveSubjects("--around", options.around);
        names.ThrowProblems();
        return found;
    });
    return DrawModel(model, around, options.limit);
}

EExitCode Report(const Options& options, const Picture& picture, const CommandContext& context)
{
    if (options.around.empty() && picture.nodes.size() < picture.subjects)
        context.error << "The " << picture.nodes.size() << " subjects with most joins of "
                      << picture.subjects << " are drawn; --limit 0 draws all, --around some\n";
    DelayedProgress progress(context);
    const DrawingWait wait{.limit = kLongestDrawing, .observer = progress.GetObserver()};
    switch (options.format) {
    case EPictureFormat::Dot:
        context.output << WriteDot(picture);
        break;
    case EPictureFormat::Svg:
        context.output << MakeSvg(picture, wait);
        break;
    case EPictureFormat::Png:
        context.output << RunGraphviz(WriteDot(picture), EImage::Png, wait);
        break;
    }
    return EExitCode::Done;
}

} // namespace

void AddShowCommand(const CommandLine& line)
{
    const CommandHelp help{.name = "show",
                           .summary = "Draws a model.",
                           .example = "qerefine show warehouse.json --around Sales > sales.svg"};
    AddCommand(line, Command<Options, Picture>{
                         .help = help, .addOptions = AddOptions, .run = Run, .report = Report});
}

} // namespace qe::tool
