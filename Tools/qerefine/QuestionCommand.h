#ifndef TOOLS_QEREFINE_QUESTIONCOMMAND_H
#define TOOLS_QEREFINE_QUESTIONCOMMAND_H

#include "Tools/qerefine/CommandContext.h"
#include "Tools/qerefine/QuestionOptions.h"

#include <memory>

namespace qe::tool {

/// A command that opens the model of the command line and puts a question to it.
class QuestionCommand
{
public:
    /// How the command stands in the help.
    struct Description
    {
        const char* name;
        const char* text;
        const char* example;
    };

    /// Adds the subcommand with MODEL and how it is read. The other options are the caller's.
    QuestionCommand(CLI::App& app, CommandContext& context, EOperation operation,
                    const Description& description);
    QuestionCommand(const QuestionCommand&) = delete;
    QuestionCommand& operator=(const QuestionCommand&) = delete;
    virtual ~QuestionCommand() = default;

    /// Lets the subcommand keep the command and run it.
    static void Attach(const std::shared_ptr<QuestionCommand>& command);

    [[nodiscard]] CLI::App& GetSubcommand() { return mSubcommand; }
    [[nodiscard]] QuestionOptions& GetOptions() { return mOptions; }

protected:
    [[nodiscard]] CommandContext& GetContext() { return mContext; }

private:
    void Run();
    /// Writes the answer. An InputError that it throws is about names on the command line, not in
    /// a file.
    virtual void Respond(const ToolModel& model) = 0;

    CLI::App& mSubcommand;
    CommandContext& mContext;
    QuestionOptions mOptions;
};

} // namespace qe::tool

#endif
