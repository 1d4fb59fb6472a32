#include "Tools/qerefine/QuestionOptions.h"

#include "Toolkit/Answers/AnswerText.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Text/DisplayText.h"
#include "Tools/qerefine/Command.h"

#include <charconv>
#include <istream>
#include <ostream>
#include <string>
#include <system_error>
#include <vector>

namespace qe::tool {

namespace {

constexpr const char* kGraphGroup = "Joins and graph";
constexpr const char* kChoiceGroup = "Choice";
constexpr const char* kGovernorGroup = "Governors";

/// Adds an option that takes words, and the numbers that they stand for.
template <typename Target, typename Value>
void AddWordOrNumber(CLI::App& command, const std::string& option, Target& chosen,
                     const Choices<Value>& words, const std::string& description)
{
    command.add_option(option, chosen, description)
        ->transform(CLI::CheckedTransformer(words).description(""))
        ->type_name(ToTypeName(words))
        ->group(kGovernorGroup);
}

/// Shows the ranked alternatives on the error stream and reads the number of one from the input.
/// Asks again until there is one; an empty line or the end of the input takes the best.
std::size_t AskForPath(const CommandContext& context, const Answer& answer)
{
    const std::size_t count = answer.alternatives.size();
    WriteAlternatives(context.error, answer, ListLimit::All());
    std::string line;
    while (true) {
        context.error << "Choose 1 to " << count << " [1]: " << std::flush;
        if (!std::getline(context.input, line) || line.empty())
            return 0;
        std::size_t number = 0;
        const char* const end = line.data() + line.size();
        const auto [stop, failure] = std::from_chars(line.data(), end, number);
        if (failure == std::errc() && stop == end && number >= 1 && number <= count)
            return number - 1;
    }
}

} // namespace

void AddModel(CLI::App& command, QuestionOptions& options)
{
    AddModelPath(command, options.model.path);
    AddModelSettings(command, options.model, "Model");
    AddHistory(command, options.model.histories, "Model");
}

void AddSubjects(CLI::App& command, Question& question, ESubjects subjects)
{
    CLI::Option* const option =
        command.add_option("SUBJECT", question.subjects, "Query subjects and shortcuts")
            ->type_name("");
    if (subjects == ESubjects::Required)
        option->expected(1, -1)->required();
    else
        option->expected(0, -1);
}

void AddTwoSets(CLI::App& command, Question& question)
{
    AddRepeated(command, "--from", question.subjects, "Subject of the first set")
        ->type_name("SUBJECT")
        ->required();
    AddRepeated(command, "--to", question.secondSet, "Subject of the second set")
        ->type_name("SUBJECT")
        ->required();
}

void AddLists(CLI::App& command, Question& question, EQuestionLists lists)
{
    Restriction& restriction = question.restriction;
    const auto add = [&command](const char* option, std::vector<std::string>& names,
                                const char* type, const char* description) {
        AddRepeated(command, option, names, description)->type_name(type)->group(kGraphGroup);
    };
    if (lists != EQuestionLists::Graph) {
        add("--favour", question.favouredJoins, "JOIN", "Make a join cheap");
        add("--require", question.requiredJoins, "JOIN", "Use a join in any case");
    }
    if (lists == EQuestionLists::Avoidance)
        add("--avoid", question.avoidedJoins, "JOIN", "Use a join only where nothing else leads");
    add("--only", restriction.onlySubjects, "SUBJECT", "Pass over these subjects only");
    add("--without", restriction.withoutSubjects, "SUBJECT", "Never pass over a subject");
    add("--only-join", restriction.onlyJoins, "JOIN", "Use these joins only");
    add("--without-join", restriction.withoutJoins, "JOIN", "Never use a join");
}

void AddFavouredSubjects(CLI::App& command, Question& question)
{
    AddRepeated(command, "--favour-subject", question.favouredSubjects,
                "Make the joins of a subject cheaper")
        ->type_name("SUBJECT")
        ->group(kGraphGroup);
}

void AddRanking(CLI::App& command, Question& question)
{
    command
        .add_flag_callback(
            "--no-fact-tables", [&question] { question.ranking.useFactTableCount = false; },
            "Do not rank equally cheap paths by their number of fact tables")
        ->group(kChoiceGroup);
    command
        .add_flag("--straightest", question.ranking.useStraightestPath,
                  "Rank paths that branch less before others that are as good")
        ->group(kChoiceGroup);
}

void AddSelector(CLI::App& command, Question& question)
{
    SelectorChoice& selector = question.selector;
    AddChoice(
        command, "--selector", selector.kind,
        Choices<ESelector>(kSelectorWords.begin(), kSelectorWords.end()),
        "Who chooses: of the cheapest paths the one that keys speak for, the best-ranked one, "
        "the first with a main object, or the user")
        ->group(kChoiceGroup);
    command
        .add_flag("--explain-history", selector.explainsHistory,
                  "List the past queries that spoke for the path and against it")
        ->group(kChoiceGroup);
    command
        .add_flag("--check-optional", selector.checkOptional,
                  "A main object has no optional ends, and none is passed")
        ->group(kChoiceGroup);
    command
        .add_flag_callback(
            "--any-main-object", [&selector] { selector.subjectsAreCandidates = false; },
            "The main object may be any query subject of the path")
        ->group(kChoiceGroup);
}

void AddGovernors(CLI::App& command, Question& question)
{
    AddWordOrNumber(command, "--cross-product", question.governors.crossProduct,
                    Choices<std::int32_t>{{"allow", 0}, {"warn", 1}, {"deny", 2}},
                    "What happens when subjects cannot be connected");
    AddWordOrNumber(command, "--grouping", question.governors.grouping,
                    Choices<std::int32_t>{{"target", 0}, {"container", 1}},
                    "Group shortcuts by what they stand for or by where they are kept");
    AddWordOrNumber(command, "--command-type", question.commandType,
                    Choices<AQE_RequestContext::ECommandType>(kCommandTypeWords.begin(),
                                                              kCommandTypeWords.end()),
                    "What the request is for; \"describe\" never fails for a cross product");
}

ToolModel OpenModel(const QuestionOptions& options, const CommandContext& context)
{
    ApplySettings(options.model.settings);
    return OpenModelWithNotes(options.model, context);
}

Question MakeQuestion(const QuestionOptions& options, const CommandContext& context)
{
    Question question = options.question;
    question.settings = options.model.settings;
    if (question.selector.kind != ESelector::Ask)
        return question;
    if (context.terminal.input != Terminal::EStream::Terminal)
        throw CLI::ValidationError("--selector", "\"ask\" needs a terminal to ask on");
    question.selector.choose = [&context](const Answer& soFar) {
        return AskForPath(context, soFar);
    };
    return question;
}

EExitCode ReportOutcome(const Answer& answer, const CommandContext& context)
{
    if (!answer.error)
        return answer.connected ? EExitCode::Done : EExitCode::NegativeResult;
    context.error << "qerefine: " << ToDisplayText(answer.error->text) << '\n';
    return answer.error->kind == AnswerError::EKind::Reported ? EExitCode::LibraryError
                                                              : EExitCode::InternalError;
}

} // namespace qe::tool
