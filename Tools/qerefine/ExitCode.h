#ifndef TOOLS_QEREFINE_EXITCODE_H
#define TOOLS_QEREFINE_EXITCODE_H

#include <array>
#include <cstdint>
#include <string_view>

namespace qe::tool {

/// How the tool ended, for the process that called it. The numbers are fixed: scripts test them.
enum class EExitCode : std::uint8_t
{
    Done = 0,
    /// The work is done, and what came of it is negative.
    NegativeResult = 1,
    WrongUsage = 2,
    CannotReadOrWrite = 3,
    /// An error that the library means for its users.
    LibraryError = 4,
    InternalError = 5,
};

/// What an exit code means, as the manual page and the documentation word it.
struct ExitCodeMeaning
{
    EExitCode code;
    std::string_view text;
};

inline constexpr std::array kExitCodes{
    ExitCodeMeaning{EExitCode::Done, "done: answered, written, or checked without findings"},
    ExitCodeMeaning{EExitCode::NegativeResult,
                    "done, with a negative result: the subjects cannot be connected, a check has "
                    "findings, or a batch was interrupted or had requests that failed"},
    ExitCodeMeaning{EExitCode::WrongUsage,
                    "wrong use of the command line, also names that the model does not know"},
    ExitCodeMeaning{EExitCode::CannotReadOrWrite,
                    "the model or another input cannot be read, or the result cannot be written, "
                    "such as a path that has no SQL"},
    ExitCodeMeaning{EExitCode::LibraryError,
                    "the library reported an error, such as a governor's or a selector's"},
    ExitCodeMeaning{EExitCode::InternalError, "internal error"},
};

} // namespace qe::tool

#endif
