#include "Tools/Commands/Command.h"

namespace qe::tool {

void AddCommands(CLI::App& app, CommandContext& context)
{
    static_cast<void>(app);
    static_cast<void>(context);
}

} // namespace qe::tool
