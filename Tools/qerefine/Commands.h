#ifndef TOOLS_QEREFINE_COMMANDS_H
#define TOOLS_QEREFINE_COMMANDS_H

#include <array>

namespace qe::tool {

struct CommandLine;

// One question to the refiner.
void AddPathCommand(const CommandLine& line);
void AddBestCommand(const CommandLine& line);
void AddSubjectsCommand(const CommandLine& line);
void AddBetweenCommand(const CommandLine& line);
void AddTreeCommand(const CommandLine& line);

// What the library makes of a model.
void AddFactsCommand(const CommandLine& line);
void AddShortcutsCommand(const CommandLine& line);
void AddCheckCommand(const CommandLine& line);
void AddShowCommand(const CommandLine& line);

// Files of requests.
void AddBatchCommand(const CommandLine& line);
void AddEvaluateCommand(const CommandLine& line);

// Models from elsewhere.
void AddImportCommand(const CommandLine& line);

/// All commands, in the order of the help.
inline constexpr std::array kCommands{
    AddPathCommand,  AddBestCommand,     AddSubjectsCommand,  AddBetweenCommand,
    AddTreeCommand,  AddFactsCommand,    AddShortcutsCommand, AddBatchCommand,
    AddCheckCommand, AddEvaluateCommand, AddImportCommand,    AddShowCommand,
};

} // namespace qe::tool

#endif
