#include "Tools/qerefine/Commands.h"

#include "Toolkit/Answers/EvaluationOutput.h"
#include "Toolkit/Evaluate/Evaluator.h"
#include "Toolkit/Evaluate/ModelSource.h"
#include "Toolkit/Text/JsonLayout.h"
#include "Tools/qerefine/CommandContext.h"
#include "Tools/qerefine/RequestFile.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

namespace qe::tool {

namespace {

constexpr const char* kFooter = R"(Example:
  qerefine evaluate shop.json query-log.jsonl --list

A request is as for batch, with the joins that a person wrote, such as
  {"id": "7", "subjects": ["orders", "customer"],
   "joins": [["orders.customer_id", "customer.customer_id"]]}
all on one line. In a folder of models, "db" names the one that is asked.)";

struct Options
{
    RequestFileOptions file{};
    std::string format = "text";
    bool isListing = false;
};

void Run(const Options& options, CommandContext& context)
{
    const Question defaults = options.file.Prepare();
    ModelSource models(options.file.model, [&options](const std::filesystem::path& path) {
        return OpenModel(path, options.file.GetOpenOptions());
    });
    RequestFile requests(options.file.requests, context.input);
    const Evaluation evaluation = Evaluate(models, requests.Get(), defaults);
    if (options.format == "json")
        context.output << ToJsonText(ToJson(evaluation)) << '\n';
    else
        WriteText(context.output, evaluation,
                  options.isListing ? EDifferences::Listed : EDifferences::Counted);
}

} // namespace

void AddEvaluateCommand(CLI::App& app, CommandContext& context)
{
    const auto options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("evaluate", "Compares answers with the joins that people wrote.");
    command
        ->add_option("MODEL", options->file.model,
                     "Model file (JSON), SQLite database, file of DDL statements, or a folder "
                     "of such")
        ->type_name("")
        ->required();
    options->file.AddTo(*command);
    command->add_option("--format", options->format, "How the shares are written")
        ->type_name("text|json")
        ->check(CLI::IsMember(std::vector<std::string>{"text", "json"}).description(""))
        ->capture_default_str();
    command->add_flag("--list", options->isListing,
                      "Tell each request that was not answered the same");
    command->footer(kFooter);
    command->callback([options, &context] { Run(*options, context); });
}

} // namespace qe::tool
