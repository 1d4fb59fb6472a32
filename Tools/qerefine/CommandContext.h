#ifndef TOOLS_QEREFINE_COMMANDCONTEXT_H
#define TOOLS_QEREFINE_COMMANDCONTEXT_H

#include <cstdint>
#include <iosfwd>

namespace qe::tool {

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
};

} // namespace qe::tool

#endif
