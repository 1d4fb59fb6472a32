#ifndef TOOLS_COMMANDS_QUESTIONOPTIONS_H
#define TOOLS_COMMANDS_QUESTIONOPTIONS_H

#include "Tools/Ask/Question.h"
#include "Tools/Model/ToolModel.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qe::tool {

struct CommandContext;

/// The model and the question on a command line. The object outlives the parsing.
class QuestionOptions
{
public:
    /// Which lists of a question a command offers.
    enum class ELists
    {
        /// Subjects and what restricts the graph.
        Graph,
        /// Also joins that are favoured or required.
        Preferences,
        /// Also joins that are avoided.
        Avoidance,
    };

    explicit QuestionOptions(EOperation operation) { mQuestion.operation = operation; }
    QuestionOptions(const QuestionOptions&) = delete;
    QuestionOptions& operator=(const QuestionOptions&) = delete;

    /// Adds MODEL and how it is read.
    void AddModel(CLI::App& command);
    /// Adds SUBJECT... behind it.
    void AddSubjects(CLI::App& command, int minimum);
    /// Adds --from and --to.
    void AddTwoSets(CLI::App& command);
    void AddLists(CLI::App& command, ELists lists);
    void AddFavouredSubjects(CLI::App& command);
    void AddRanking(CLI::App& command);
    void AddSelector(CLI::App& command);
    void AddGovernors(CLI::App& command);

    /// Applies the settings and opens the model. What reading it left out is told on the error
    /// stream.
    [[nodiscard]] ToolModel OpenModel(CommandContext& context);
    /// Gives the question. Where the user is to choose, that is asked on the context's streams;
    /// throws CLI::ValidationError when nobody sits there.
    [[nodiscard]] Question MakeQuestion(CommandContext& context);
    void SetOperation(EOperation operation) { mQuestion.operation = operation; }

private:
    std::string mModelPath;
    std::string mRoles = "plain";
    std::vector<std::string> mSettings;
    bool mIgnoresFactTables = false;
    std::string mSelector = "keys";
    bool mAnySubject = false;
    Question mQuestion;
};

} // namespace qe::tool

#endif
