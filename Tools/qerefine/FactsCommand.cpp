#include "Tools/qerefine/Commands.h"

#include "Toolkit/Answers/FactOutput.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/FactReport.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/JsonLayout.h"
#include "Tools/qerefine/QuestionCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>

namespace qe::tool {

namespace {

class FactsCommand final : public QuestionCommand
{
public:
    FactsCommand(CLI::App& app, CommandContext& context)
        : QuestionCommand(app, context, EOperation::Path,
                          {"facts",
                           "Tells facts from dimensions, in the whole model or along a path.",
                           "qerefine facts shop.json Orders Returns Region"})
    {
        GetOptions().AddSubjects(0);
        GetOptions().AddLists(QuestionOptions::ELists::Preferences);
        GetOptions().AddReportFormat();
    }

private:
    void Respond(const ToolModel& model) override
    {
        const FactReport report = FindFacts(CollectJoins(model));
        if (GetOptions().AsksForJson())
            GetContext().output << ToJsonText(ToJson(report, *model.model)) << '\n';
        else
            WriteText(GetContext().output, report, *model.model);
    }

    /// Gives the joins of the path between the subjects; without subjects those of the model.
    std::vector<AnswerJoin> CollectJoins(const ToolModel& model)
    {
        CommandContext& context = GetContext();
        const Question question = GetOptions().MakeQuestion(context);
        if (question.subjects.empty())
            return ReadJoins(model);
        const Answer answer = Ask(model, question);
        if (answer.error)
            context.error << "qerefine: " << ToDisplayText(answer.error->text) << '\n';
        if (!answer.connected)
            context.exitCode = EExitCode::NotConnected;
        if (answer.error)
            context.exitCode = EExitCode::LibraryError;
        std::vector<AnswerJoin> joins;
        for (const amd_id& join : answer.path)
            joins.push_back(*answer.FindJoin(join));
        return joins;
    }
};

} // namespace

void AddFactsCommand(CLI::App& app, CommandContext& context)
{
    QuestionCommand::Attach(std::make_shared<FactsCommand>(app, context));
}

} // namespace qe::tool
