#ifndef TOOLKIT_BATCH_INTERRUPT_H
#define TOOLKIT_BATCH_INTERRUPT_H

#include <array>
#include <atomic>
#include <csignal>

namespace qe::tool {

/// The signals that ask a process to end.
inline constexpr std::array kInterrupts{SIGINT, SIGTERM};

/// Turns the first interrupt into a flag while it lives; the second of its kind ends the process as
/// usual. A thread that waits for standard input then sees its end. One object at a time.
class Interrupt
{
public:
    Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;
    ~Interrupt();

    [[nodiscard]] const std::atomic<bool>& GetFlag() const { return mFlag; }

private:
    std::atomic<bool> mFlag = false;
    /// An input that is at its end.
    int mEmptyInput;
    std::array<struct sigaction, kInterrupts.size()> mEarlier{};
};

} // namespace qe::tool

#endif
