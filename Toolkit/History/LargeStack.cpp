#include "Toolkit/History/LargeStack.h"

#include <cstddef>
#include <exception>
#include <pthread.h>
#include <stdexcept>

namespace qe::tool {

namespace {

/// Only what is used of it takes memory.
constexpr std::size_t kStackSize = std::size_t{1} << 30;

struct Job
{
    const std::function<void()>& work;
    std::exception_ptr failure{};
};

void* Run(void* argument)
{
    Job& job = *static_cast<Job*>(argument);
    try {
        job.work();
    } catch (...) {
        job.failure = std::current_exception();
    }
    return nullptr;
}

} // namespace

void RunOnLargeStack(const std::function<void()>& work)
{
    Job job{work};
    pthread_attr_t attributes;
    pthread_t thread{};
    pthread_attr_init(&attributes);
    const bool isRunning = pthread_attr_setstacksize(&attributes, kStackSize) == 0 &&
                           pthread_create(&thread, &attributes, Run, &job) == 0;
    pthread_attr_destroy(&attributes);
    if (!isRunning)
        throw std::runtime_error("No thread can be started to read SQL");
    pthread_join(thread, nullptr);
    if (job.failure)
        std::rethrow_exception(job.failure);
}

} // namespace qe::tool
