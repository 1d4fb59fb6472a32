#ifndef TOOLS_COMMANDS_COMMAND_H
#define TOOLS_COMMANDS_COMMAND_H

#include <cstdint>
#include <iosfwd>

namespace CLI {
class App;
}

namespace qe::tool {

/// What the process tells its caller.
enum class EExitCode : std::uint8_t
{
    Answered = 0,
    /// The subjects cannot be connected, or a check has findings.
    NotConnected = 1,
    WrongUsage = 2,
    UnreadableInput = 3,
    /// The library reported an error, such as a governor's or a selector's.
    LibraryError = 4,
    InternalError = 5,
};

/// What is known of the terminal that the tool stands on.
struct Terminal
{
    enum class EStream : std::uint8_t
    {
        Redirected,
        Terminal,
    };

    EStream input = EStream::Redirected;
    EStream output = EStream::Redirected;
    EStream error = EStream::Redirected;
    /// The width in columns.
    int width = 80;
};

/// What a command works with. The streams outlive the run.
struct CommandContext
{
    std::istream& input;
    /// Data, nothing else.
    std::ostream& output;
    /// Diagnostics and questions to the user.
    std::ostream& error;
    Terminal terminal{};
    /// How the command ended; a command that only answered leaves it alone.
    EExitCode exitCode = EExitCode::Answered;
};

/// Adds one command to the tool: a subcommand with its options and a callback that runs it. The
/// callback writes to the streams of the context and sets its exit code, and may throw InputError,
/// CLI::ValidationError or anything else: RunTool turns it into a diagnostic and an exit code.
///
/// Both arguments outlive the parsing. Commands.cpp calls each once.
using AddCommand = void (*)(CLI::App& app, CommandContext& context);

/// Adds all commands.
void AddCommands(CLI::App& app, CommandContext& context);

} // namespace qe::tool

#endif
