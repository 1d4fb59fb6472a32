#include "Tools/Commands/AskCommands.h"

#include "Tools/Ask/Asker.h"
#include "Tools/Commands/AnswerOptions.h"
#include "Tools/Commands/Diagnostics.h"
#include "Tools/Commands/QuestionOptions.h"
#include "Tools/InputError.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace qe::tool {

namespace {

using ELists = QuestionOptions::ELists;

/// What one of these commands keeps while the command line is parsed.
struct AskCommand
{
    AskCommand(EOperation operation, CommandContext& commandContext)
        : context(commandContext), question(operation)
    {}

    void Run()
    {
        const ToolModel model = question.OpenModel(context);
        const Question asked = question.MakeQuestion(context);
        try {
            answer.Write(context, model, asked, Ask(model, asked));
        } catch (const InputError& error) {
            // The names came from the command line, not from a file.
            WriteProblems(context.error, error);
            context.exitCode = EExitCode::WrongUsage;
        }
    }

    CommandContext& context;
    QuestionOptions question;
    AnswerOptions answer;
};

struct Description
{
    const char* name;
    const char* text;
    const char* example;
};

using AskCommandPtr = std::shared_ptr<AskCommand>;

CLI::App& Add(CLI::App& app, const Description& description, const AskCommandPtr& command)
{
    CLI::App* const subcommand = app.add_subcommand(description.name, description.text);
    subcommand->footer(std::string("Example:\n  ") + description.example);
    subcommand->callback([command] { command->Run(); });
    command->question.AddModel(*subcommand);
    return *subcommand;
}

} // namespace

void AddPathCommand(CLI::App& app, CommandContext& context)
{
    const auto command = std::make_shared<AskCommand>(EOperation::Path, context);
    CLI::App& path =
        Add(app,
            {"path", "Finds the joins that connect the subjects, and the alternatives.",
             "qerefine path shop.json Orders Region --favour Orders-Customer --format sql"},
            command);
    command->question.AddSubjects(path, 1);
    command->question.AddLists(path, ELists::Preferences);
    command->question.AddFavouredSubjects(path);
    command->question.AddRanking(path);
    command->question.AddSelector(path);
    command->question.AddGovernors(path);
    command->answer.Add(path);
}

void AddBestCommand(CLI::App& app, CommandContext& context)
{
    const auto command = std::make_shared<AskCommand>(EOperation::BestPaths, context);
    CLI::App& best = Add(app,
                         {"best", "Finds all best paths that connect the subjects.",
                          "qerefine best shop.json Orders Region --avoid \"Ship To\""},
                         command);
    command->question.AddSubjects(best, 1);
    command->question.AddLists(best, ELists::Avoidance);
    command->question.AddFavouredSubjects(best);
    command->question.AddGovernors(best);
    command->answer.Add(best);
}

void AddSubjectsCommand(CLI::App& app, CommandContext& context)
{
    const auto command = std::make_shared<AskCommand>(EOperation::JoinedSubjects, context);
    CLI::App& subjects =
        Add(app,
            {"subjects", "Finds the subjects that the joins between the given ones touch.",
             "qerefine subjects shop.json Orders Region"},
            command);
    command->question.AddSubjects(subjects, 1);
    command->question.AddLists(subjects, ELists::Graph);
    command->question.AddGovernors(subjects);
    command->answer.Add(subjects);
}

void AddBetweenCommand(CLI::App& app, CommandContext& context)
{
    const auto command = std::make_shared<AskCommand>(EOperation::PathBetween, context);
    CLI::App& between =
        Add(app,
            {"between", "Finds a cheapest path from one set of subjects to another, or all.",
             "qerefine between shop.json --from Orders --from Returns --to Region --all"},
            command);
    command->question.AddTwoSets(between);
    between.add_flag_callback(
        "--all",
        [question = &command->question] { question->SetOperation(EOperation::BestPathsBetween); },
        "Give all best paths");
    command->question.AddLists(between, ELists::Avoidance);
    command->question.AddRanking(between);
    command->question.AddSelector(between);
    command->question.AddGovernors(between);
    command->answer.Add(between);
}

void AddTreeCommand(CLI::App& app, CommandContext& context)
{
    const auto command = std::make_shared<AskCommand>(EOperation::TreeJoins, context);
    CLI::App& tree =
        Add(app,
            {"tree", "Finds the joins of a tree of cheapest paths that also passes over shortcuts.",
             "qerefine tree shop.json Orders \"Bill To\" Region"},
            command);
    command->question.AddSubjects(tree, 1);
    command->question.AddLists(tree, ELists::Avoidance);
    command->question.AddGovernors(tree);
    command->answer.Add(tree);
}

} // namespace qe::tool
