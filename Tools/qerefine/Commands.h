#ifndef TOOLS_QEREFINE_COMMANDS_H
#define TOOLS_QEREFINE_COMMANDS_H

namespace CLI {
class App;
}

namespace qe::tool {

struct CommandContext;

/// Adds all commands. Each of the functions below adds one: a subcommand with its options and a
/// callback that runs it. The callback writes to the streams of the context and sets its exit
/// code, and may throw InputError, CLI::ValidationError or anything else: RunTool turns it into a
/// diagnostic and an exit code.
///
/// Both arguments outlive the parsing.
void AddCommands(CLI::App& app, CommandContext& context);

// One question to the refiner.
void AddPathCommand(CLI::App& app, CommandContext& context);
void AddBestCommand(CLI::App& app, CommandContext& context);
void AddSubjectsCommand(CLI::App& app, CommandContext& context);
void AddBetweenCommand(CLI::App& app, CommandContext& context);
void AddTreeCommand(CLI::App& app, CommandContext& context);

// What the library makes of a model.
void AddFactsCommand(CLI::App& app, CommandContext& context);
void AddShortcutsCommand(CLI::App& app, CommandContext& context);
void AddCheckCommand(CLI::App& app, CommandContext& context);
void AddShowCommand(CLI::App& app, CommandContext& context);

// Files of requests.
void AddBatchCommand(CLI::App& app, CommandContext& context);
void AddEvaluateCommand(CLI::App& app, CommandContext& context);

// Models from elsewhere.
void AddImportCommand(CLI::App& app, CommandContext& context);

} // namespace qe::tool

#endif
