#ifndef TOOLS_COMMANDS_BATCHCOMMAND_H
#define TOOLS_COMMANDS_BATCHCOMMAND_H

namespace CLI {
class App;
}

namespace qe::tool {

struct CommandContext;

/// Adds `batch`: many requests to one model.
void AddBatchCommand(CLI::App& app, CommandContext& context);

} // namespace qe::tool

#endif
