#include "Tools/qerefine/SaveOptions.h"

#include "Toolkit/Answers/AnswerText.h"
#include "Toolkit/Ask/ModelDecisions.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"
#include "Toolkit/Text/OutputFile.h"
#include "Tools/qerefine/Command.h"
#include "Tools/qerefine/CommandOptions.h"

#include <CLI/CLI.hpp>

#include <ostream>

namespace qe::tool {

namespace {

constexpr const char* kSaveGroup = "Decision";

[[noreturn]] void Refuse(const std::string& text)
{
    throw UsageError(InputError({InputProblem{"--save", text}}));
}

} // namespace

void AddSaveOptions(CLI::App& command, SaveOptions& options)
{
    CLI::Option* const save =
        command
            .add_flag_callback(
                "--save",
                [&options] { options.scope = options.scope.value_or(EDecisionScope::Subjects); },
                "Keep the answer in the model file as a decision for these subjects")
            ->group(kSaveGroup);
    command
        .add_flag_callback(
            "--everywhere", [&options] { options.scope = EDecisionScope::Everywhere; },
            "--save: for all questions")
        ->needs(save)
        ->group(kSaveGroup);
    command.add_option("--reason", options.reason, "--save: why")
        ->type_name("TEXT")
        ->needs(save)
        ->group(kSaveGroup);
}

void CheckSaveOptions(const SaveOptions& options, const ModelOptions& model)
{
    if (!options.scope)
        return;
    if (!IsModelFile(model.path))
        Refuse("only a model file keeps decisions, and this is none: " + ToShownPath(model.path) +
               " (qerefine import makes one)");
    if (!model.settings.empty())
        Refuse("a model does not keep settings: ask without --set");
}

SavedModel PrepareSave(const ModelOptions& options, const ChoiceToSave& choice)
{
    SavedModel saved{.path = options.path};
    const std::optional<Decision> decision = FindDecision(choice);
    if (!decision) {
        saved.message = "nothing to save: the model answers so without a decision";
        return saved;
    }
    const std::string text = ReadInputFile(options.path);
    const ToolModel before = ReadModelText(text, options.path.string());
    saved.text = AddDecision(text, before, *decision);
    // What is written must be read as what was decided.
    const ToolModel after = ReadModelText(saved.text, options.path.string());
    saved.message = "saved in " + options.path.string() + ": " +
                    DescribeDecision(ToAnswerDecision(*after.model, *decision));
    return saved;
}

void Save(const SavedModel& saved, const CommandContext& context)
{
    if (!saved.text.empty())
        WriteFileWhole(saved.path, saved.text);
    context.error << "qerefine: " << ToDisplayText(saved.message) << '\n';
}

} // namespace qe::tool
