#ifndef TOOLS_COMMANDS_REPORTCOMMANDS_H
#define TOOLS_COMMANDS_REPORTCOMMANDS_H

#include "Tools/Commands/Command.h"

namespace qe::tool {

/// The commands that tell what the library makes of a model.
void AddFactsCommand(CLI::App& app, CommandContext& context);
void AddShortcutsCommand(CLI::App& app, CommandContext& context);

} // namespace qe::tool

#endif
