#include "Toolkit/Batch/ProgressBar.h"

#include <algorithm>
#include <ostream>
#include <string>

namespace qe::tool {

namespace {

constexpr std::chrono::milliseconds kInterval(100);
constexpr std::uint64_t kLongestBar = 50;
/// What stands beside the bar.
constexpr std::uint64_t kTextWidth = 30;

} // namespace

ProgressBar::ProgressBar(std::ostream& terminal, int width, std::chrono::milliseconds delay)
    : mTerminal(terminal),
      mWidth(static_cast<std::uint64_t>(std::max(width, 0))),
      mNext(std::chrono::steady_clock::now() + delay)
{}

ProgressBar::~ProgressBar()
{
    if (mIsShown)
        mTerminal << "\r\x1b[K" << std::flush;
}

void ProgressBar::Show(const Progress& progress)
{
    const auto now = std::chrono::steady_clock::now();
    if (now < mNext)
        return;
    mNext = now + kInterval;
    std::string text;
    if (progress.size > 0) {
        const std::uint64_t done = std::min(progress.done, progress.size);
        if (mWidth > kTextWidth) {
            const std::uint64_t room = std::min(mWidth - kTextWidth, kLongestBar);
            const std::uint64_t full = room * done / progress.size;
            text += '[' + std::string(full, '#') + std::string(room - full, '.') + "] ";
        }
        text += std::to_string(100 * done / progress.size) + " % ";
    }
    mTerminal << '\r' << text << progress.count << ' ' << progress.unit << "\x1b[K" << std::flush;
    mIsShown = true;
}

} // namespace qe::tool
