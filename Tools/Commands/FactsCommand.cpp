#include "Engine/Model/Model.h"
#include "Tools/Ask/Asker.h"
#include "Tools/Ask/FactReport.h"
#include "Tools/Ask/SubjectName.h"
#include "Tools/Commands/Diagnostics.h"
#include "Tools/Commands/QuestionOptions.h"
#include "Tools/Commands/ReportCommands.h"
#include "Tools/InputError.h"
#include "Tools/Output/DisplayText.h"
#include "Tools/Output/JsonAnswer.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

namespace qe::tool {

namespace {

using Ids = std::vector<amd_id>;
using Json = nlohmann::ordered_json;

class FactsCommand
{
public:
    FactsCommand(CLI::App& command, CommandContext& context)
        : mContext(context), mOptions(EOperation::Path)
    {
        mOptions.AddModel(command);
        mOptions.AddSubjects(command, 0);
        mOptions.AddLists(command, QuestionOptions::ELists::Preferences);
        command.add_option("--format", mFormat, "The form of the answer")
            ->type_name("text|json")
            ->check(CLI::IsMember(std::vector<std::string>{"text", "json"}).description(""))
            ->group("Output");
    }

    void Run()
    {
        const ToolModel model = mOptions.OpenModel(mContext);
        try {
            const FactReport report = FindFacts(CollectJoins(model));
            if (mFormat == "json")
                WriteJson(*model.model, report);
            else
                WriteText(*model.model, report);
        } catch (const InputError& error) {
            WriteProblems(mContext.error, error);
            mContext.exitCode = EExitCode::WrongUsage;
        }
    }

private:
    /// Gives the joins of the path between the subjects; without subjects those of the model.
    std::vector<AnswerJoin> CollectJoins(const ToolModel& model)
    {
        const Question question = mOptions.MakeQuestion(mContext);
        if (question.subjects.empty())
            return ReadJoins(model);
        const Answer answer = Ask(model, question);
        if (answer.error)
            mContext.error << "qerefine: " << ToDisplayText(answer.error->text) << '\n';
        if (!answer.connected)
            mContext.exitCode = EExitCode::NotConnected;
        if (answer.error)
            mContext.exitCode = EExitCode::LibraryError;
        std::vector<AnswerJoin> joins;
        for (const amd_id& join : answer.path)
            joins.push_back(*answer.FindJoin(join));
        return joins;
    }

    static std::vector<std::string> Names(const model::Model& model, const Ids& subjects)
    {
        std::vector<std::string> names;
        for (const amd_id& subject : subjects)
            names.push_back(SubjectName(model, subject));
        return names;
    }

    static std::string Join(const model::Model& model, const Ids& subjects)
    {
        std::string text;
        for (const std::string& name : Names(model, subjects))
            text += (text.empty() ? "" : ", ") + ToDisplayText(name);
        return text;
    }

    void WriteText(const model::Model& model, const FactReport& report)
    {
        std::ostream& out = mContext.output;
        out << report.facts.size() << (report.facts.size() == 1 ? " fact\n" : " facts\n");
        for (const FactReport::Fact& fact : report.facts) {
            out << "  " << ToDisplayText(SubjectName(model, fact.subject));
            if (!fact.allDimensions.empty())
                out << ": " << Join(model, fact.allDimensions);
            out << '\n';
        }
        if (report.facts.size() > 1)
            out << "Shared dimensions: "
                << (report.sharedDimensions.empty() ? "none" : Join(model, report.sharedDimensions))
                << '\n';
        for (const FactReport::Problem& problem : report.problems)
            out << "Join " << ToDisplayText(model.Find(problem.join)->name) << ": "
                << ToDisplayText(problem.text) << '\n';
    }

    void WriteJson(const model::Model& model, const FactReport& report)
    {
        Json facts = Json::array();
        for (const FactReport::Fact& fact : report.facts)
            facts.push_back({{"fact", SubjectName(model, fact.subject)},
                             {"ownDimensions", Names(model, fact.ownDimensions)},
                             {"allDimensions", Names(model, fact.allDimensions)}});
        Json problems = Json::array();
        for (const FactReport::Problem& problem : report.problems)
            problems.push_back({{"join", ToText(problem.join)},
                                {"name", model.Find(problem.join)->name},
                                {"text", problem.text}});
        const Json value{{"version", JsonAnswerVersion},
                         {"facts", facts},
                         {"sharedDimensions", Names(model, report.sharedDimensions)},
                         {"problems", problems}};
        mContext.output << ToText(value, 2) << '\n';
    }

    CommandContext& mContext;
    QuestionOptions mOptions;
    std::string mFormat = "text";
};

} // namespace

void AddFactsCommand(CLI::App& app, CommandContext& context)
{
    CLI::App* const command = app.add_subcommand(
        "facts", "Tells facts from dimensions, in the whole model or along a path.");
    command->footer("Example:\n  qerefine facts shop.json Orders Returns Region");
    const auto facts = std::make_shared<FactsCommand>(*command, context);
    command->callback([facts] { facts->Run(); });
}

} // namespace qe::tool
