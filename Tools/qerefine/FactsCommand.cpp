#include "Tools/qerefine/Commands.h"

#include "Engine/Model/Model.h"
#include "Toolkit/Answers/AnswerJson.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/FactReport.h"
#include "Toolkit/Ask/SubjectName.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/JsonLayout.h"
#include "Tools/qerefine/QuestionCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

namespace qe::tool {

namespace {

using Json = nlohmann::ordered_json;

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
            GetContext().output << ToJsonText(ToJson(*model.model, report)) << '\n';
        else
            WriteText(GetContext().output, *model.model, report);
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

    static void WriteText(std::ostream& out, const model::Model& model, const FactReport& report)
    {
        out << report.facts.size() << (report.facts.size() == 1 ? " fact\n" : " facts\n");
        for (const FactReport::Fact& fact : report.facts) {
            out << "  " << ToDisplayText(SubjectName(model, fact.subject));
            if (!fact.allDimensions.empty())
                out << ": " << ToDisplayList(SubjectNames(model, fact.allDimensions));
            out << '\n';
        }
        if (report.facts.size() > 1)
            out << "Shared dimensions: "
                << ToDisplayList(SubjectNames(model, report.sharedDimensions)) << '\n';
        for (const FactReport::Problem& problem : report.problems)
            out << "Join " << ToDisplayText(model.Find(problem.join)->name) << ": "
                << ToDisplayText(problem.text) << '\n';
    }

    static Json ToJson(const model::Model& model, const FactReport& report)
    {
        Json facts = Json::array();
        for (const FactReport::Fact& fact : report.facts)
            facts.push_back({{"fact", SubjectName(model, fact.subject)},
                             {"ownDimensions", SubjectNames(model, fact.ownDimensions)},
                             {"allDimensions", SubjectNames(model, fact.allDimensions)}});
        Json problems = Json::array();
        for (const FactReport::Problem& problem : report.problems)
            problems.push_back({{"join", ToText(problem.join)},
                                {"name", model.Find(problem.join)->name},
                                {"text", problem.text}});
        return {{"version", kAnswerVersion},
                {"facts", facts},
                {"sharedDimensions", SubjectNames(model, report.sharedDimensions)},
                {"problems", problems}};
    }
};

} // namespace

void AddFactsCommand(CLI::App& app, CommandContext& context)
{
    QuestionCommand::Attach(std::make_shared<FactsCommand>(app, context));
}

} // namespace qe::tool
