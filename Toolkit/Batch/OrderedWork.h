#ifndef TOOLKIT_BATCH_ORDEREDWORK_H
#define TOOLKIT_BATCH_ORDEREDWORK_H

#include "Toolkit/Ask/Risks.h"
#include "Toolkit/Batch/LineReader.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace qe::tool {

/// What became of one request.
struct WorkResult
{
    enum class EOutcome : std::uint8_t
    {
        Answered,
        NotConnected,
        Failed,
    };

    /// The line that answers it, without its end.
    std::string text{};
    EOutcome outcome = EOutcome::Answered;
    /// What the answer risks.
    std::vector<ERisk> risks{};
    std::chrono::nanoseconds latency{};
    /// RequestLine::bytes of the request.
    std::uint64_t bytes = 0;
};

/// Works on lines with several threads and hands over the results in the order of the lines. It
/// holds a window of lines and results, no more, however slow one of them is.
class OrderedWork
{
public:
    /// Is called on the threads, several at a time.
    using Work = std::function<WorkResult(const RequestLine& line)>;
    /// Is called on the threads, one call at a time, in the order of the lines.
    using Sink = std::function<void(const WorkResult& result)>;

    OrderedWork(std::size_t threads, std::size_t window, Work work, Sink sink);
    OrderedWork(const OrderedWork&) = delete;
    OrderedWork& operator=(const OrderedWork&) = delete;
    /// Leaves what was not begun.
    ~OrderedWork();

    /// Waits for room in the window. Throws what `work` or `sink` threw, if they did.
    void Add(RequestLine line);
    /// Waits until every result was handed over. Throws what `work` or `sink` threw.
    void Finish();

private:
    struct Slot
    {
        RequestLine line{};
        WorkResult result{};
        bool isDone = false;
    };

    void RunWorker();
    void WorkOn(Slot& slot, std::unique_lock<std::mutex>& lock);
    void HandOver(std::unique_lock<std::mutex>& lock);
    void Fail(std::exception_ptr failure);
    void Stop();
    void ThrowFailure() const;

    std::size_t mWindow;
    Work mWork;
    Sink mSink;
    std::mutex mMutex;
    std::condition_variable mWorkIsThere;
    std::condition_variable mRoomIsThere;
    /// The window, in the order of the lines; references stay valid as it moves on.
    std::deque<Slot> mSlots;
    std::size_t mBegun = 0;
    bool mIsHandingOver = false;
    bool mIsStopped = false;
    std::exception_ptr mFailure;
    std::vector<std::thread> mThreads;
};

} // namespace qe::tool

#endif
