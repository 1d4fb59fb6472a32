#include "Tools/qerefine/QuestionCommand.h"

#include "Toolkit/Text/InputError.h"
#include "Tools/qerefine/Diagnostics.h"

#include <CLI/CLI.hpp>
#include <string>

namespace qe::tool {

QuestionCommand::QuestionCommand(CLI::App& app, CommandContext& context, EOperation operation,
                                 const Description& description)
    : mSubcommand(*app.add_subcommand(description.name, description.text)),
      mContext(context),
      mOptions(mSubcommand, operation)
{
    mSubcommand.footer(std::string("Example:\n  ") + description.example);
    mOptions.AddModel();
}

void QuestionCommand::Attach(const std::shared_ptr<QuestionCommand>& command)
{
    command->mSubcommand.callback([command] { command->Run(); });
}

void QuestionCommand::Run()
{
    const ToolModel model = mOptions.OpenModel(mContext);
    try {
        Respond(model);
    } catch (const InputError& error) {
        WriteProblems(mContext.error, error);
        mContext.exitCode = EExitCode::WrongUsage;
    }
}

} // namespace qe::tool
