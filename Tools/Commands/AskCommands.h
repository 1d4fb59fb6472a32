#ifndef TOOLS_COMMANDS_ASKCOMMANDS_H
#define TOOLS_COMMANDS_ASKCOMMANDS_H

#include "Tools/Commands/Command.h"

namespace qe::tool {

/// The commands that put one question to the refiner.
void AddPathCommand(CLI::App& app, CommandContext& context);
void AddBestCommand(CLI::App& app, CommandContext& context);
void AddSubjectsCommand(CLI::App& app, CommandContext& context);
void AddBetweenCommand(CLI::App& app, CommandContext& context);
void AddTreeCommand(CLI::App& app, CommandContext& context);

} // namespace qe::tool

#endif
