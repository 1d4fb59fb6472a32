#ifndef TOOLS_QEREFINE_QUESTIONOPTIONS_H
#define TOOLS_QEREFINE_QUESTIONOPTIONS_H

#include "Toolkit/Ask/Question.h"
#include "Tools/qerefine/Command.h"
#include "Tools/qerefine/CommandOptions.h"

namespace CLI {
class App;
}

namespace qe::tool {

struct Answer;
struct CommandContext;

/// A model and a question about it, on the command line.
struct QuestionOptions
{
    ModelOptions model{};
    Question question{};
};

/// Which lists of a question a command offers.
enum class EQuestionLists : std::uint8_t
{
    /// What restricts the graph.
    Graph,
    /// Also joins that are favoured or required.
    Preferences,
    /// Also joins that are avoided.
    Avoidance,
};

/// Whether a command can do without subjects.
enum class ESubjects : std::uint8_t
{
    Optional,
    Required,
};

/// Adds MODEL and how it is read.
void AddModel(CLI::App& command, QuestionOptions& options);
/// Adds SUBJECT... behind it.
void AddSubjects(CLI::App& command, Question& question, ESubjects subjects);
/// Adds --from and --to.
void AddTwoSets(CLI::App& command, Question& question);
void AddLists(CLI::App& command, Question& question, EQuestionLists lists);
void AddFavouredSubjects(CLI::App& command, Question& question);
void AddRanking(CLI::App& command, Question& question);
void AddSelector(CLI::App& command, Question& question);
void AddGovernors(CLI::App& command, Question& question);

/// Sets the settings for the process and opens the model, with its notes on the error stream.
/// Throws InputError.
[[nodiscard]] ToolModel OpenModel(const QuestionOptions& options, const CommandContext& context);

/// Returns the question as it is asked. Where the user is to choose, that is asked on the
/// context's streams, which outlive the question; throws CLI::ValidationError when no terminal is
/// there.
[[nodiscard]] Question MakeQuestion(const QuestionOptions& options, const CommandContext& context);

/// Writes the library's error to the error stream, if there is one, and returns how a command with
/// this answer ends.
[[nodiscard]] EExitCode ReportOutcome(const Answer& answer, const CommandContext& context);

} // namespace qe::tool

#endif
