#ifndef TOOLS_QEREFINE_PATHPROMPT_H
#define TOOLS_QEREFINE_PATHPROMPT_H

#include <cstddef>

namespace qe::tool {

struct Answer;
struct CommandContext;

/// Shows the ranked alternatives on the error stream and reads the number of one from the input.
/// Asks again until there is one; an empty line or the end of the input takes the best.
[[nodiscard]] std::size_t AskForPath(CommandContext& context, const Answer& answer);

} // namespace qe::tool

#endif
