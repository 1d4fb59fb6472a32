#ifndef TOOLS_QEREFINE_QUESTIONOPTIONS_H
#define TOOLS_QEREFINE_QUESTIONOPTIONS_H

#include "Toolkit/Ask/Question.h"
#include "Toolkit/Model/ToolModel.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qe::tool {

struct CommandContext;

/// The model and the question on the line of one command. The object outlives the parsing.
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

    QuestionOptions(CLI::App& command, EOperation operation) : mCommand(command)
    {
        mQuestion.operation = operation;
    }
    QuestionOptions(const QuestionOptions&) = delete;
    QuestionOptions& operator=(const QuestionOptions&) = delete;

    /// Adds MODEL and how it is read.
    void AddModel();
    /// Adds SUBJECT... behind it.
    void AddSubjects(int minimum);
    /// Adds --from and --to.
    void AddTwoSets();
    void AddLists(ELists lists);
    void AddFavouredSubjects();
    void AddRanking();
    void AddSelector();
    void AddGovernors();
    /// Adds --format with the forms of a report.
    void AddReportFormat();

    /// Applies the settings and opens the model. What reading it left out is told on the error
    /// stream.
    [[nodiscard]] ToolModel OpenModel(CommandContext& context);
    /// Gives the question. Where the user is to choose, that is asked on the context's streams;
    /// throws CLI::ValidationError when nobody sits there.
    [[nodiscard]] Question MakeQuestion(CommandContext& context);
    void SetOperation(EOperation operation) { mQuestion.operation = operation; }
    /// Tells whether the report is for programs.
    [[nodiscard]] bool AsksForJson() const { return mReportFormat == "json"; }

private:
    CLI::App& mCommand;
    std::string mModelPath;
    std::string mRoles = "plain";
    std::vector<std::string> mSettings;
    bool mIgnoresFactTables = false;
    std::string mSelector = "keys";
    bool mAnySubject = false;
    std::string mReportFormat = "text";
    Question mQuestion;
};

} // namespace qe::tool

#endif
