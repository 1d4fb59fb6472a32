#ifndef TOOLS_COMMANDS_EVALUATECOMMAND_H
#define TOOLS_COMMANDS_EVALUATECOMMAND_H

namespace CLI {
class App;
}

namespace qe::tool {

struct CommandContext;

/// Adds `evaluate`: requests with the joins that people wrote.
void AddEvaluateCommand(CLI::App& app, CommandContext& context);

} // namespace qe::tool

#endif
