#ifndef TOOLS_COMMANDS_IMPORTCOMMAND_H
#define TOOLS_COMMANDS_IMPORTCOMMAND_H

#include "Tools/Commands/Command.h"

namespace qe::tool {

/// Adds "import" with its two sources: an SQLite database, and files of DDL.
void AddImportCommand(CLI::App& app, CommandContext& context);

} // namespace qe::tool

#endif
