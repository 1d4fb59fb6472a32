#ifndef TOOLS_QEREFINE_ARGUMENTS_H
#define TOOLS_QEREFINE_ARGUMENTS_H

#include "Toolkit/Text/InputFile.h"

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qe::tool {

/// Returns the arguments as the parser is to get them: names in brackets are marked, for it would
/// take them for lists, and "--roles" gets its value where that is left out.
[[nodiscard]] std::vector<std::string> PrepareArguments(std::vector<std::string> arguments);

/// Returns the command that the words name, as far as they do.
[[nodiscard]] const CLI::App& FindCommand(const CLI::App& app,
                                          const std::vector<std::string>& words);

/// Returns the names of the commands below.
[[nodiscard]] std::vector<std::string> ListCommands(const CLI::App& app);

/// Lets all options of the commands, which are added already, take the marks away again.
void RemoveMarks(CLI::App& app);

/// Returns the first command or option among the arguments that there is not, with the nearest that
/// there are; nothing when it is not that what is wrong.
[[nodiscard]] std::optional<InputProblem>
FindUnknownArgument(const CLI::App& app, const std::vector<std::string>& arguments);

} // namespace qe::tool

#endif
