#ifndef TOOLS_QEREFINE_COMMANDCONTEXT_H
#define TOOLS_QEREFINE_COMMANDCONTEXT_H

#include <cstdint>
#include <iosfwd>

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

} // namespace qe::tool

#endif
