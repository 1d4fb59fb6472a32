#ifndef TOOLS_COMMANDS_CHECKCOMMAND_H
#define TOOLS_COMMANDS_CHECKCOMMAND_H

namespace CLI {
class App;
}

namespace qe::tool {

struct CommandContext;

/// Adds `qerefine check`.
void AddCheckCommand(CLI::App& app, CommandContext& context);

} // namespace qe::tool

#endif
