#ifndef TOOLS_COMMANDS_SHOWCOMMAND_H
#define TOOLS_COMMANDS_SHOWCOMMAND_H

namespace CLI {
class App;
}

namespace qe::tool {

struct CommandContext;

/// Adds `qerefine show`.
void AddShowCommand(CLI::App& app, CommandContext& context);

} // namespace qe::tool

#endif
