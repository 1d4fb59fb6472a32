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

ProgressBar::ProgressBar(std::ostream& terminal, int width, std::uint64_t size)
    : mTerminal(terminal), mWidth(static_cast<std::uint64_t>(std::max(width, 0))), mSize(size)
{}

ProgressBar::~ProgressBar()
{
    mTerminal << "\r\x1b[K" << std::flush;
}

void ProgressBar::Show(std::uint64_t done, std::size_t requests)
{
    const auto now = std::chrono::steady_clock::now();
    if (now < mNext)
        return;
    mNext = now + kInterval;
    std::string text;
    if (mSize > 0) {
        done = std::min(done, mSize);
        if (mWidth > kTextWidth) {
            const std::uint64_t room = std::min(mWidth - kTextWidth, kLongestBar);
            const std::uint64_t full = room * done / mSize;
            text += '[' + std::string(full, '#') + std::string(room - full, '.') + "] ";
        }
        text += std::to_string(100 * done / mSize) + " % ";
    }
    mTerminal << '\r' << text << requests << " requests\x1b[K" << std::flush;
}

} // namespace qe::tool
