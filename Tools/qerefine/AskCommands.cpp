#include "Tools/qerefine/Commands.h"

#include "Toolkit/Ask/Asker.h"
#include "Tools/qerefine/AnswerOptions.h"
#include "Tools/qerefine/QuestionCommand.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace qe::tool {

namespace {

using ELists = QuestionOptions::ELists;

class AskCommand final : public QuestionCommand
{
public:
    using QuestionCommand::QuestionCommand;

    void AddAnswerOptions() { mAnswerOptions.Add(GetSubcommand()); }

private:
    void Respond(const ToolModel& model) override
    {
        const Question question = GetOptions().MakeQuestion(GetContext());
        mAnswerOptions.Write(GetContext(), model, question, Ask(model, question));
    }

    AnswerOptions mAnswerOptions;
};

/// Adds a command, which the subcommand keeps.
AskCommand& Add(CLI::App& app, CommandContext& context, EOperation operation,
                const QuestionCommand::Description& description)
{
    const auto command = std::make_shared<AskCommand>(app, context, operation, description);
    QuestionCommand::Attach(command);
    return *command;
}

} // namespace

void AddPathCommand(CLI::App& app, CommandContext& context)
{
    AskCommand& path =
        Add(app, context, EOperation::Path,
            {"path", "Finds the joins that connect the subjects, and the alternatives.",
             "qerefine path shop.json Orders Region --favour Orders-Customer --format sql"});
    QuestionOptions& options = path.GetOptions();
    options.AddSubjects(1);
    options.AddLists(ELists::Preferences);
    options.AddFavouredSubjects();
    options.AddRanking();
    options.AddSelector();
    options.AddGovernors();
    path.AddAnswerOptions();
}

void AddBestCommand(CLI::App& app, CommandContext& context)
{
    AskCommand& best = Add(app, context, EOperation::BestPaths,
                           {"best", "Finds all best paths that connect the subjects.",
                            "qerefine best shop.json Orders Region --avoid \"Ship To\""});
    QuestionOptions& options = best.GetOptions();
    options.AddSubjects(1);
    options.AddLists(ELists::Avoidance);
    options.AddFavouredSubjects();
    options.AddGovernors();
    best.AddAnswerOptions();
}

void AddSubjectsCommand(CLI::App& app, CommandContext& context)
{
    AskCommand& subjects =
        Add(app, context, EOperation::JoinedSubjects,
            {"subjects", "Finds the subjects that the joins between the given ones touch.",
             "qerefine subjects shop.json Orders Region"});
    QuestionOptions& options = subjects.GetOptions();
    options.AddSubjects(1);
    options.AddLists(ELists::Graph);
    options.AddGovernors();
    subjects.AddAnswerOptions();
}

void AddBetweenCommand(CLI::App& app, CommandContext& context)
{
    AskCommand& between =
        Add(app, context, EOperation::PathBetween,
            {"between", "Finds a cheapest path from one set of subjects to another, or all.",
             "qerefine between shop.json --from Orders --from Returns --to Region --all"});
    QuestionOptions& options = between.GetOptions();
    options.AddTwoSets();
    between.GetSubcommand().add_flag_callback(
        "--all", [&options] { options.SetOperation(EOperation::BestPathsBetween); },
        "Give all best paths");
    options.AddLists(ELists::Avoidance);
    options.AddRanking();
    options.AddSelector();
    options.AddGovernors();
    between.AddAnswerOptions();
}

void AddTreeCommand(CLI::App& app, CommandContext& context)
{
    AskCommand& tree =
        Add(app, context, EOperation::TreeJoins,
            {"tree", "Finds the joins of a tree of cheapest paths that also passes over shortcuts.",
             "qerefine tree shop.json Orders \"Bill To\" Region"});
    QuestionOptions& options = tree.GetOptions();
    options.AddSubjects(1);
    options.AddLists(ELists::Avoidance);
    options.AddGovernors();
    tree.AddAnswerOptions();
}

} // namespace qe::tool
