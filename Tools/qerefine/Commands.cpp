#include "Tools/qerefine/Commands.h"

namespace qe::tool {

// The order is that of the help.
void AddCommands(CLI::App& app, CommandContext& context)
{
    AddPathCommand(app, context);
    AddBestCommand(app, context);
    AddSubjectsCommand(app, context);
    AddBetweenCommand(app, context);
    AddTreeCommand(app, context);
    AddFactsCommand(app, context);
    AddShortcutsCommand(app, context);
    AddBatchCommand(app, context);
    AddCheckCommand(app, context);
    AddEvaluateCommand(app, context);
    AddImportCommand(app, context);
    AddShowCommand(app, context);
}

} // namespace qe::tool
