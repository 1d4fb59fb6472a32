#ifndef TOOLKIT_BATCH_INTERRUPT_H
#define TOOLKIT_BATCH_INTERRUPT_H

#include <atomic>
#include <csignal>

namespace qe::tool {

/// Turns the first interrupt (SIGINT) into a flag while it lives; the second ends the process as
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
    struct sigaction mEarlier
    {};
};

/// Keeps interrupts from the threads that are started while it lives, so that they reach the
/// thread that waits for input.
class InterruptBlock
{
public:
    InterruptBlock();
    InterruptBlock(const InterruptBlock&) = delete;
    InterruptBlock& operator=(const InterruptBlock&) = delete;
    ~InterruptBlock();

private:
    sigset_t mEarlier{};
};

} // namespace qe::tool

#endif
