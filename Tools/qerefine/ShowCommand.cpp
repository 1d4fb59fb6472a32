#include "Tools/qerefine/Commands.h"

#include "Toolkit/Ask/NameResolver.h"
#include "Toolkit/Draw/DotWriter.h"
#include "Toolkit/Draw/Graphviz.h"
#include "Toolkit/Draw/ModelPicture.h"
#include "Toolkit/Draw/PictureFormat.h"
#include "Toolkit/Import/OpenModel.h"
#include "Tools/qerefine/CommandContext.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

struct ShowArguments
{
    std::string model;
    std::string format = "svg";
    std::vector<std::string> around;
    std::size_t limit = 100;
};

void RunShow(const ShowArguments& arguments, CommandContext& context)
{
    const ToolModel model = OpenModel(arguments.model);
    NameResolver names(*model.model);
    const std::vector<amd_id> around = names.ResolveSubjects("--around", arguments.around);
    names.ThrowProblems();
    const Picture picture = DrawModel(model, around, ListLimit::FromOption(arguments.limit));
    if (around.empty() && picture.nodes.size() < picture.subjects)
        context.error << "The " << picture.nodes.size() << " subjects with most joins of "
                      << picture.subjects << " are drawn; --limit 0 draws all, --around some\n";
    if (arguments.format == "dot")
        context.output << WriteDot(picture);
    else if (arguments.format == "svg")
        context.output << MakeSvg(picture);
    else
        context.output << RunGraphviz(WriteDot(picture), EImage::Png);
}

} // namespace

void AddShowCommand(CLI::App& app, CommandContext& context)
{
    const auto arguments = std::make_shared<ShowArguments>();
    CLI::App* const command = app.add_subcommand("show", "Draws a model.");
    command->add_option("MODEL", arguments->model, "Model file, SQLite database or SQL file")
        ->required();
    command->add_option("--format", arguments->format, "dot, svg or png")
        ->check(CLI::IsMember({"dot", "svg", "png"}))
        ->capture_default_str();
    command->add_option("--around", arguments->around,
                        "Draw only these subjects and what is joined to them");
    command->add_option("--limit", arguments->limit, "Subjects drawn at most, 0 for all")
        ->capture_default_str();
    command->footer("Example:\n  qerefine show warehouse.json --around Sales > sales.svg");
    command->callback([arguments, &context] { RunShow(*arguments, context); });
}

} // namespace qe::tool
