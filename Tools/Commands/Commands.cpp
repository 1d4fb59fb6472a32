#include "Tools/Commands/CheckCommand.h"
#include "Tools/Commands/Command.h"

#include <array>

namespace qe::tool {

namespace {

/// In the order of the help.
constexpr std::array kCommands{
    AddCheckCommand,
};

} // namespace

void AddCommands(CLI::App& app, CommandContext& context)
{
    for (const AddCommand add : kCommands)
        add(app, context);
}

} // namespace qe::tool
