#include "Toolkit/Draw/ChildProcess.h"

#include "Toolkit/Text/SignalBlock.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace qe::tool {

namespace {

constexpr std::chrono::milliseconds kFirstPause(1);
constexpr std::chrono::milliseconds kLongestPause(50);

// A signal's handler reaches nothing but what is static.
std::atomic<pid_t> theChild = 0;

static_assert(std::atomic<pid_t>::is_always_lock_free);

/// The signal is the only one of its kind that is handled; it comes again once this returns.
extern "C" void EndWithChild(int signal)
{
    const int error = errno;
    if (const pid_t child = theChild.load(); child > 0)
        kill(-child, SIGKILL);
    raise(signal);
    errno = error;
}

/// What is different in the child. It leads a group of processes of its own.
class SpawnSettings
{
public:
    SpawnSettings(const ChildStreams& streams, const sigset_t& blocked)
    {
        posix_spawn_file_actions_init(&mActions);
        posix_spawnattr_init(&mAttributes);
        Connect(streams.input, STDIN_FILENO);
        Connect(streams.output, STDOUT_FILENO);
        Connect(streams.errors, STDERR_FILENO);
        sigset_t defaults;
        sigemptyset(&defaults);
        for (const int signal : {SIGPIPE, SIGXFSZ})
            sigaddset(&defaults, signal);
        posix_spawnattr_setsigdefault(&mAttributes, &defaults);
        posix_spawnattr_setsigmask(&mAttributes, &blocked);
        posix_spawnattr_setpgroup(&mAttributes, 0);
        posix_spawnattr_setflags(&mAttributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF |
                                                   POSIX_SPAWN_SETSIGMASK);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings()
    {
        posix_spawnattr_destroy(&mAttributes);
        posix_spawn_file_actions_destroy(&mActions);
    }

    [[nodiscard]] pid_t Start(std::vector<std::string>& arguments) const
    {
        std::vector<char*> pointers;
        pointers.reserve(arguments.size() + 1);
        for (std::string& argument : arguments)
            pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        pid_t child = 0;
        const int failure = posix_spawnp(&child, pointers.front(), &mActions, &mAttributes,
                                         pointers.data(), environ);
        if (failure != 0)
            throw std::system_error(failure, std::generic_category());
        return child;
    }

private:
    void Connect(std::FILE* file, int descriptor)
    {
        posix_spawn_file_actions_adddup2(&mActions, fileno(file), descriptor);
    }

    posix_spawn_file_actions_t mActions{};
    posix_spawnattr_t mAttributes{};
};

} // namespace

ChildProcess::ChildProcess(std::vector<std::string> arguments, const ChildStreams& streams,
                           EEndingSignals signals)
    : mSignals(signals)
{
    if (mSignals == EEndingSignals::LeftToHost) {
        Start(arguments, streams);
        return;
    }
    CatchSignals();
    try {
        Start(arguments, streams);
    } catch (...) {
        RestoreSignals();
        throw;
    }
}

void ChildProcess::Start(std::vector<std::string>& arguments, const ChildStreams& streams)
{
    // A signal that comes while the child starts waits until it can be told of it.
    const SignalBlock block;
    mProcess = SpawnSettings(streams, block.GetEarlier()).Start(arguments);
    if (mSignals == EEndingSignals::Caught)
        theChild = mProcess;
}

ChildProcess::~ChildProcess()
{
    if (mProcess > 0) {
        kill(-mProcess, SIGKILL);
        while (waitpid(mProcess, nullptr, 0) < 0 && errno == EINTR) {}
    }
    if (mSignals == EEndingSignals::LeftToHost)
        return;
    theChild = 0;
    RestoreSignals();
}

std::optional<bool> ChildProcess::Wait(std::chrono::milliseconds limit,
                                       const std::function<void()>& tick)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + limit;
    std::chrono::milliseconds pause = kFirstPause;
    while (true) {
        int status = 0;
        const pid_t ended = waitpid(mProcess, &status, WNOHANG);
        if (ended != 0 && !(ended < 0 && errno == EINTR)) {
            if (mSignals == EEndingSignals::Caught)
                theChild = 0;
            mProcess = 0;
            return ended > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
        }
        if (Clock::now() >= end)
            return std::nullopt;
        if (tick)
            tick();
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, kLongestPause);
    }
}

void ChildProcess::CatchSignals()
{
    struct sigaction action = {};
    action.sa_handler = EndWithChild;
    sigemptyset(&action.sa_mask);
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (std::size_t i = 0; i < kEndingSignals.size(); ++i) {
        sigaction(kEndingSignals[i], nullptr, &mEarlier[i]);
        // What the caller of this process had ignored stays so.
        if (mEarlier[i].sa_handler != SIG_IGN)
            sigaction(kEndingSignals[i], &action, nullptr);
    }
}

void ChildProcess::RestoreSignals()
{
    for (std::size_t i = 0; i < kEndingSignals.size(); ++i)
        sigaction(kEndingSignals[i], &mEarlier[i], nullptr);
}

} // namespace qe::tool
