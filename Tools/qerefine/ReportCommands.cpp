// The commands that report what the library makes of a model: its facts, and its shortcuts.

#include "Tools/qerefine/Command.h"

#include "Toolkit/Answers/ReportOutput.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/Reports.h"
#include "Toolkit/Text/JsonText.h"
#include "Tools/qerefine/QuestionOptions.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <vector>

namespace qe::tool {

namespace {

struct Options
{
    QuestionOptions asked{};
    EReportFormat format = EReportFormat::PlainText;
    EFactLines lines = EFactLines::Grouped;
};

struct FactResult
{
    ToolModel model{};
    /// Nothing without subjects.
    std::optional<Answer> answer{};
    FactReport report{};
};

struct ShortcutResult
{
    ToolModel model{};
    ShortcutReport report{};
};

void AddFormat(CLI::App& command, Options& options)
{
    AddReportFormat(command, options.format, "The form of the answer")->group("Output");
}

void AddFactOptions(CLI::App& command, Options& options)
{
    Question& question = options.asked.question;
    question.operation = EOperation::Path;
    AddModel(command, options.asked);
    AddSubjects(command, question, ESubjects::Optional);
    AddLists(command, question, EQuestionLists::Preferences);
    AddFormat(command, options);
    command
        .add_flag_callback(
            "--all", [&options] { options.lines = EFactLines::Each; },
            "Give every fact and every refused join a line of its own")
        ->group("Output");
}

FactResult RunFacts(const Options& options, const CommandContext& context)
{
    FactResult result{.model = OpenModel(options.asked, context)};
    const Question question = MakeQuestion(options.asked, context);
    if (question.subjects.empty()) {
        result.report = FindFacts(ReadJoins(result.model));
        return result;
    }
    result.answer = BlameArguments([&] { return Ask(result.model, question); });
    result.report = FindPathFacts(*result.answer);
    return result;
}

EExitCode ReportFacts(const Options& options, const FactResult& result,
                      const CommandContext& context)
{
    const EExitCode code = result.answer ? ReportOutcome(*result.answer, context) : EExitCode::Done;
    const model::Model& model = *result.model.model;
    if (options.format == EReportFormat::JsonText)
        context.output << ToJsonText(ToJson(result.report, model)) << '\n';
    else
        WriteText(context.output, result.report, model, options.lines);
    return code;
}

void AddShortcutOptions(CLI::App& command, Options& options)
{
    Question& question = options.asked.question;
    question.operation = EOperation::JoinedSubjects;
    AddModel(command, options.asked);
    AddLists(command, question, EQuestionLists::Graph);
    AddGovernors(command, question);
    AddFormat(command, options);
}

ShortcutResult RunShortcuts(const Options& options, const CommandContext& context)
{
    ShortcutResult result{.model = OpenModel(options.asked, context)};
    result.report = BlameArguments(
        [&] { return FindShortcuts(result.model, MakeQuestion(options.asked, context)); });
    return result;
}

EExitCode ReportShortcuts(const Options& options, const ShortcutResult& result,
                          const CommandContext& context)
{
    const model::Model& model = *result.model.model;
    if (options.format == EReportFormat::JsonText)
        context.output << ToJsonText(ToJson(result.report, model)) << '\n';
    else
        WriteText(context.output, result.report, model);
    return EExitCode::Done;
}

} // namespace

void AddFactsCommand(const CommandLine& line)
{
    const CommandHelp help{.name = "facts",
                           .summary =
                               "Tells facts from dimensions, in the whole model or along a path.",
                           .example = "qerefine facts shop.json Orders Returns Region"};
    AddCommand(line, Command<Options, FactResult>{.help = help,
                                                  .addOptions = AddFactOptions,
                                                  .run = RunFacts,
                                                  .report = ReportFacts});
}

void AddShortcutsCommand(const CommandLine& line)
{
    const CommandHelp help{.name = "shortcuts",
                           .summary =
                               "Tells which shortcuts count as one, and the joins between them.",
                           .example = "qerefine shortcuts shop.json --grouping container"};
    AddCommand(line, Command<Options, ShortcutResult>{.help = help,
                                                      .addOptions = AddShortcutOptions,
                                                      .run = RunShortcuts,
                                                      .report = ReportShortcuts});
}

} // namespace qe::tool
