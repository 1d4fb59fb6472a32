#include "Toolkit/Batch/Interrupt.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <unistd.h>

namespace qe::tool {

namespace {

// A signal's handler reaches nothing but what is static.
std::atomic<std::atomic<bool>*> theFlag = nullptr;
std::atomic<int> theEmptyInput = -1;

static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

extern "C" void HandleInterrupt(int)
{
    const int error = errno;
    if (std::atomic<bool>* const flag = theFlag.load())
        flag->store(true);
    // A thread that waits for input goes on waiting after a signal unless the input ends.
    dup2(theEmptyInput.load(), STDIN_FILENO);
    errno = error;
}

} // namespace

Interrupt::Interrupt() : mEmptyInput(open("/dev/null", O_RDONLY | O_CLOEXEC))
{
    theEmptyInput = mEmptyInput;
    theFlag = &mFlag;
    struct sigaction action = {};
    action.sa_handler = HandleInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (std::size_t i = 0; i < kInterrupts.size(); ++i)
        sigaction(kInterrupts[i], &action, &mEarlier[i]);
}

Interrupt::~Interrupt()
{
    for (std::size_t i = 0; i < kInterrupts.size(); ++i)
        sigaction(kInterrupts[i], &mEarlier[i], nullptr);
    theFlag = nullptr;
    theEmptyInput = -1;
    close(mEmptyInput);
}

} // namespace qe::tool
