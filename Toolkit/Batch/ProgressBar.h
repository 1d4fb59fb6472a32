#ifndef TOOLKIT_BATCH_PROGRESSBAR_H
#define TOOLKIT_BATCH_PROGRESSBAR_H

#include "Toolkit/Text/Progress.h"

#include <chrono>
#include <cstdint>
#include <iosfwd>

namespace qe::tool {

/// Shows on one line of a terminal how far some work is, a few times a second.
class ProgressBar
{
public:
    /// Refers to the stream. Shows nothing before the delay is over.
    ProgressBar(std::ostream& terminal, int width, std::chrono::milliseconds delay = {});
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    /// Clears the line, if anything was shown.
    ~ProgressBar();

    void Show(const Progress& progress);

private:
    std::ostream& mTerminal;
    std::uint64_t mWidth;
    bool mIsShown = false;
    std::chrono::steady_clock::time_point mNext;
};

} // namespace qe::tool

#endif
