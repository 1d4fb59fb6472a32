#ifndef TOOLS_QEREFINE_RUNTOOL_H
#define TOOLS_QEREFINE_RUNTOOL_H

#include "Tools/qerefine/Command.h"

#include <string>
#include <vector>

namespace qe::tool {

/// Runs the tool with the arguments behind the program's name. Nothing is thrown: every failure
/// becomes a diagnostic on the error stream and an exit code.
[[nodiscard]] EExitCode RunTool(const std::vector<std::string>& arguments,
                                const CommandContext& context);

/// Takes the place of the handler of std::terminate in a process of its own. Some of what takes
/// things down asks for memory itself and may not fail; where there is none, this says so on
/// standard error and ends the process with the exit code of an internal error.
[[noreturn]] void EndWithoutMemory();

} // namespace qe::tool

#endif
