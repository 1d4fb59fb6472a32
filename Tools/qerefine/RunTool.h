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

} // namespace qe::tool

#endif
