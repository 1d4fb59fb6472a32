#ifndef TOOLKIT_TEXT_ENDINGSIGNALS_H
#define TOOLKIT_TEXT_ENDINGSIGNALS_H

#include <cstdint>

namespace qe::tool {

/// Who handles the signals that end this process while it waits for a program that it started.
enum class EEndingSignals : std::uint8_t
{
    /// They are caught, and end that program first. One thread at a time can wait so.
    Caught,
    /// The host of this code, which may have handlers of its own and wait on several threads.
    LeftToHost,
};

} // namespace qe::tool

#endif
