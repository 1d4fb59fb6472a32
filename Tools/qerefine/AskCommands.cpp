// The commands that put one question to the refiner and write its answer.

#include "Tools/qerefine/Command.h"

#include "Toolkit/Answers/RiskText.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/StartSubject.h"
#include "Toolkit/Format.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Text/DisplayText.h"
#include "Tools/qerefine/QuestionOptions.h"
#include "Tools/qerefine/RiskOptions.h"
#include "Tools/qerefine/SaveOptions.h"

#include <algorithm>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace qe::tool {

namespace {

constexpr const char* kOutputGroup = "Output";

struct AskOptions
{
    QuestionOptions asked{};
    /// One of GetFormats.
    const Format* format = &GetFormats().front();
    FormatOptions output{};
    /// The subject that SQL begins with; may be empty.
    std::string start{};
    SaveOptions save{};
    RiskOptions risks{};
};

struct AskResult
{
    ToolModel model{};
    Question question{};
    Answer answer{};
    FormatOptions output{};
    std::optional<SavedModel> saved{};
};

void AddAnswerOptions(CLI::App& command, AskOptions& options)
{
    Choices<const Format*> formats;
    for (const Format& format : GetFormats())
        formats.emplace_back(format.name, &format);
    AddChoice(command, "--format", options.format, formats, "The form of the answer")
        ->group(kOutputGroup);
    AddLimit(command, "--alternatives", options.output.alternatives,
             "How many alternatives are shown")
        ->type_name("NUMBER")
        ->group(kOutputGroup);
    SqlOptions& sql = options.output.sql;
    command
        .add_flag_callback(
            "--select", [&sql] { sql.select = SqlOptions::ESelect::FirstItems; },
            "sql: a whole SELECT of the subjects' first items")
        ->group(kOutputGroup);
    command
        .add_flag_callback(
            "--inner", [&sql] { sql.outerJoins = SqlOptions::EOuterJoins::Never; },
            "sql: inner joins only")
        ->group(kOutputGroup);
    command
        .add_flag_callback(
            "--skip-passed-tables",
            [&sql] { sql.passedTables = SqlOptions::EPassedTables::Skipped; },
            "sql: leave out tables that the path only passes, and join their neighbours directly")
        ->group(kOutputGroup);
    Choices<const SqlDialect*> dialects;
    for (const SqlDialect& dialect : GetSqlDialects())
        dialects.emplace_back(dialect.word, &dialect);
    AddChoice(
        command, "--dialect", sql.dialect, dialects,
        "sql: the dialect; without it that of the model, else what SQLite and PostgreSQL read")
        ->group(kOutputGroup);
    command.add_option("--start", options.start, "sql: begin with this subject, and keep its rows")
        ->type_name("SUBJECT")
        ->group(kOutputGroup);
    AddRiskOptions(command, options.risks, kOutputGroup);
}

/// Throws CLI::ValidationError for options that would be without effect.
void CheckSqlOptions(const AskOptions& options)
{
    if (options.format->name == "sql" || options.format->name == "html")
        return;
    const SqlOptions& sql = options.output.sql;
    const auto reject = [](const char* option) {
        throw CLI::ValidationError(option, "needs --format sql or html, which hold SQL");
    };
    if (sql.select == SqlOptions::ESelect::FirstItems)
        reject("--select");
    if (sql.outerJoins == SqlOptions::EOuterJoins::Never)
        reject("--inner");
    if (sql.dialect != nullptr)
        reject("--dialect");
    if (!options.start.empty())
        reject("--start");
}

AskResult Run(const AskOptions& options, const CommandContext& context)
{
    CheckSqlOptions(options);
    BlameArguments([&] { RequireForm(options.asked.question, *options.format); });
    CheckSaveOptions(options.save, options.asked.model);
    const NoticeContext notices(options.risks, context);
    AskResult result{.model = OpenModel(options.asked, notices.Get()), .output = options.output};
    if (result.model.isModelFile)
        result.output.modelFile = options.asked.model.path.string();
    result.question = MakeQuestion(options.asked, context);
    if (options.format->listsPastQueries)
        result.question.selector.explainsHistory = true;
    result.answer = BlameArguments([&] { return Ask(result.model, result.question); });
    if (!options.start.empty())
        result.output.sql.start = BlameArguments([&] {
            return FindStart(*result.model.model, result.answer, "--start", options.start);
        });
    if (options.save.scope && result.answer.connected)
        result.saved = PrepareSave(options.asked.model, {.model = result.model,
                                                         .question = result.question,
                                                         .answer = result.answer,
                                                         .scope = *options.save.scope,
                                                         .reason = options.save.reason});
    return result;
}

/// Writes to the error stream what a form for programs does not hold.
void WriteRemarks(std::ostream& error, const Answer& answer)
{
    if (!answer.connected && !answer.error)
        error << "qerefine: the subjects cannot be connected\n";
    for (const AnswerMessage& warning : answer.warnings)
        error << "warning: " << ToDisplayText(warning.text) << '\n';
    for (const std::string& notice : answer.notices)
        error << "notice: " << ToDisplayText(notice) << '\n';
}

void WriteRiskWarnings(std::ostream& error, const Answer& answer, const Risks& risks)
{
    for (const RiskRemark& remark : ListRemarks(answer, risks))
        error << "warning: " << ToText(remark.risk) << ": " << ToDisplayText(remark.text)
              << (remark.advice.empty() ? "" : " ") << ToDisplayText(remark.advice) << '\n';
}

EExitCode Report(const AskOptions& options, const AskResult& result, const CommandContext& context)
{
    const EExitCode code = ReportOutcome(result.answer, context);
    const Risks risks = FindRisks(result.question, result.answer, result.output.sql);
    const NoticeContext notices(options.risks, context);
    if (options.format->name != "text")
        WriteRemarks(notices.Get().error, result.answer);
    if (!options.format->showsRisks)
        WriteRiskWarnings(notices.Get().error, result.answer, risks);
    // A failed request has no path, so there is nothing to join.
    if (!result.answer.error || options.format->name != "sql")
        options.format->write(context.output, {.model = result.model,
                                               .question = result.question,
                                               .answer = result.answer,
                                               .options = result.output});
    if (result.saved)
        Save(*result.saved, context);
    const std::vector<ERisk> found = ListRisks(result.answer, risks);
    return JudgeRisks(options.risks, code, [&found](ERisk risk) {
        return std::find(found.begin(), found.end(), risk) != found.end();
    });
}

/// Adds a command, which differs from the others in its operation and its options.
void Add(const CommandLine& line, const CommandHelp& help,
         void (*addOptions)(CLI::App& command, AskOptions& options))
{
    AddCommand(line, Command<AskOptions, AskResult>{
                         .help = help, .addOptions = addOptions, .run = Run, .report = Report});
}

} // namespace

void AddPathCommand(const CommandLine& line)
{
    const CommandHelp help{
        .name = "path",
        .summary = "Finds the joins that connect the subjects, and the alternatives.",
        .example = "qerefine path shop.json Orders Region --favour Orders-Customer --format sql"};
    Add(line, help, [](CLI::App& command, AskOptions& options) {
        Question& question = options.asked.question;
        question.operation = EOperation::Path;
        AddModel(command, options.asked);
        AddSubjects(command, question, ESubjects::Required);
        AddLists(command, question, EQuestionLists::Avoidance);
        AddFavouredSubjects(command, question);
        AddRanking(command, question);
        AddSelector(command, question);
        AddSaveOptions(command, options.save);
        AddGovernors(command, question);
        AddAnswerOptions(command, options);
    });
}

void AddBestCommand(const CommandLine& line)
{
    const CommandHelp help{.name = "best",
                           .summary = "Finds all best paths that connect the subjects.",
                           .example = "qerefine best shop.json Orders Region --avoid \"Ship To\""};
    Add(line, help, [](CLI::App& command, AskOptions& options) {
        Question& question = options.asked.question;
        question.operation = EOperation::BestPaths;
        AddModel(command, options.asked);
        AddSubjects(command, question, ESubjects::Required);
        AddLists(command, question, EQuestionLists::Avoidance);
        AddFavouredSubjects(command, question);
        AddGovernors(command, question);
        AddAnswerOptions(command, options);
    });
}

void AddSubjectsCommand(const CommandLine& line)
{
    const CommandHelp help{.name = "subjects",
                           .summary =
                               "Finds the subjects that the joins between the given ones touch.",
                           .example = "qerefine subjects shop.json Orders Region"};
    Add(line, help, [](CLI::App& command, AskOptions& options) {
        Question& question = options.asked.question;
        question.operation = EOperation::JoinedSubjects;
        AddModel(command, options.asked);
        AddSubjects(command, question, ESubjects::Required);
        AddLists(command, question, EQuestionLists::Graph);
        AddGovernors(command, question);
        AddAnswerOptions(command, options);
    });
}

void AddBetweenCommand(const CommandLine& line)
{
    const CommandHelp help{
        .name = "between",
        .summary = "Finds a cheapest path from one set of subjects to another, or all.",
        .example = "qerefine between shop.json --from Orders --from Returns --to Region --all"};
    Add(line, help, [](CLI::App& command, AskOptions& options) {
        Question& question = options.asked.question;
        question.operation = EOperation::PathBetween;
        AddModel(command, options.asked);
        AddTwoSets(command, question);
        command.add_flag_callback(
            "--all", [&question] { question.operation = EOperation::BestPathsBetween; },
            "Give all best paths");
        AddLists(command, question, EQuestionLists::Avoidance);
        AddRanking(command, question);
        AddSelector(command, question);
        AddGovernors(command, question);
        AddAnswerOptions(command, options);
    });
}

void AddTreeCommand(const CommandLine& line)
{
    const CommandHelp help{
        .name = "tree",
        .summary = "Finds the joins of a tree of cheapest paths that also passes over shortcuts.",
        .example = "qerefine tree shop.json Orders \"Bill To\" Region"};
    Add(line, help, [](CLI::App& command, AskOptions& options) {
        Question& question = options.asked.question;
        question.operation = EOperation::TreeJoins;
        AddModel(command, options.asked);
        AddSubjects(command, question, ESubjects::Required);
        AddLists(command, question, EQuestionLists::Avoidance);
        AddGovernors(command, question);
        AddAnswerOptions(command, options);
    });
}

} // namespace qe::tool
