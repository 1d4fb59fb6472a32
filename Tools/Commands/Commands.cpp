#include "Tools/Commands/BatchCommand.h"
#include "Tools/Commands/CheckCommand.h"
#include "Tools/Commands/Command.h"
#include "Tools/Commands/EvaluateCommand.h"

#include <array>

namespace qe::tool {

namespace {

/// In the order of the help.
constexpr std::array kCommands{AddBatchCommand, AddCheckCommand, AddEvaluateCommand};

} // namespace

void AddCommands(CLI::App& app, CommandContext& context)
{
    for (const AddCommand add : kCommands)
        add(app, context);
}

} // namespace qe::tool
