#ifndef TOOLKIT_BATCH_PROGRESSBAR_H
#define TOOLKIT_BATCH_PROGRESSBAR_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iosfwd>

namespace qe::tool {

/// Shows on one line of a terminal how far a batch is, a few times a second.
class ProgressBar
{
public:
    /// Refers to the stream. A size of 0 is not known: then only requests are counted.
    ProgressBar(std::ostream& terminal, int width, std::uint64_t size);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    /// Clears the line.
    ~ProgressBar();

    void Show(std::uint64_t done, std::size_t requests);

private:
    std::ostream& mTerminal;
    std::uint64_t mWidth;
    std::uint64_t mSize;
    std::chrono::steady_clock::time_point mNext{};
};

} // namespace qe::tool

#endif
