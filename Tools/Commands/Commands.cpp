#include "Tools/Commands/BatchCommand.h"
#include "Tools/Commands/Command.h"
#include "Tools/Commands/EvaluateCommand.h"

namespace qe::tool {

void AddCommands(CLI::App& app, CommandContext& context)
{
    AddBatchCommand(app, context);
    AddEvaluateCommand(app, context);
}

} // namespace qe::tool
