#ifndef TOOLKIT_DRAW_CHILDPROCESS_H
#define TOOLKIT_DRAW_CHILDPROCESS_H

#include "Toolkit/Text/EndingSignals.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace qe::tool {

/// What a child process reads and writes instead of the standard streams of this one.
struct ChildStreams
{
    std::FILE* input = nullptr;
    std::FILE* output = nullptr;
    std::FILE* errors = nullptr;
};

/// A program that runs beside this process. It ends, with all processes that it has started, when
/// the object does. Where signals are caught, it also ends when one ends this process, and there is
/// one object at a time.
class ChildProcess
{
public:
    /// Starts the program that is found by the name of the first argument; no shell takes part.
    /// Throws std::system_error when that cannot be done.
    ChildProcess(std::vector<std::string> arguments, const ChildStreams& streams,
                 EEndingSignals signals = EEndingSignals::Caught);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    /// Waits for the end of the program, at most for the given time; `tick` is called a few times a
    /// second. Returns whether it ended well; nothing when the time was over first.
    [[nodiscard]] std::optional<bool> Wait(std::chrono::milliseconds limit,
                                           const std::function<void()>& tick = {});

private:
    static constexpr std::array kEndingSignals{SIGINT, SIGTERM, SIGHUP};

    void Start(std::vector<std::string>& arguments, const ChildStreams& streams);
    void CatchSignals();
    void RestoreSignals();

    EEndingSignals mSignals;
    pid_t mProcess = 0;
    std::array<struct sigaction, kEndingSignals.size()> mEarlier{};
};

} // namespace qe::tool

#endif
