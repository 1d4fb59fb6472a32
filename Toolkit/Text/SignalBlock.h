#ifndef TOOLKIT_TEXT_SIGNALBLOCK_H
#define TOOLKIT_TEXT_SIGNALBLOCK_H

#include <csignal>
#include <span>

namespace qe::tool {

/// Keeps signals from this thread, and from the threads that it starts, while it lives. What comes
/// meanwhile takes effect at its end.
class SignalBlock
{
public:
    /// Keeps back all signals.
    SignalBlock()
    {
        sigset_t signals;
        sigfillset(&signals);
        pthread_sigmask(SIG_BLOCK, &signals, &mEarlier);
    }
    explicit SignalBlock(std::span<const int> kept)
    {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : kept)
            sigaddset(&signals, signal);
        pthread_sigmask(SIG_BLOCK, &signals, &mEarlier);
    }
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;
    ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &mEarlier, nullptr); }

    /// Returns the signals that were kept back before.
    [[nodiscard]] const sigset_t& GetEarlier() const { return mEarlier; }

private:
    sigset_t mEarlier{};
};

} // namespace qe::tool

#endif
