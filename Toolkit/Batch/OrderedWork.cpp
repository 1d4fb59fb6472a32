#include "Toolkit/Batch/OrderedWork.h"

#include "Toolkit/Batch/Interrupt.h"
#include "Toolkit/Text/SignalBlock.h"

#include <algorithm>
#include <utility>

namespace qe::tool {

OrderedWork::OrderedWork(std::size_t threads, std::size_t window, Work work, Sink sink)
    : mWindow(std::max<std::size_t>(window, 1)), mWork(std::move(work)), mSink(std::move(sink))
{
    // Interrupts are to reach the thread that waits for input.
    const SignalBlock block(kInterrupts);
    try {
        for (std::size_t i = 0; i < std::max<std::size_t>(threads, 1); ++i)
            mThreads.emplace_back([this] { RunWorker(); });
    } catch (...) {
        Stop();
        throw;
    }
}

OrderedWork::~OrderedWork()
{
    Stop();
}

void OrderedWork::Add(RequestLine line)
{
    std::unique_lock lock(mMutex);
    mRoomIsThere.wait(lock, [this] { return mSlots.size() < mWindow || mFailure; });
    ThrowFailure();
    mSlots.emplace_back().line = std::move(line);
    mWorkIsThere.notify_one();
}

void OrderedWork::Finish()
{
    std::unique_lock lock(mMutex);
    mRoomIsThere.wait(lock, [this] { return mSlots.empty() || mFailure; });
    ThrowFailure();
}

void OrderedWork::RunWorker()
{
    std::unique_lock lock(mMutex);
    while (true) {
        mWorkIsThere.wait(lock, [this] { return mIsStopped || mBegun < mSlots.size(); });
        if (mIsStopped)
            return;
        Slot& slot = mSlots[mBegun++];
        try {
            WorkOn(slot, lock);
            HandOver(lock);
        } catch (...) {
            Fail(std::current_exception());
            return;
        }
    }
}

void OrderedWork::WorkOn(Slot& slot, std::unique_lock<std::mutex>& lock)
{
    lock.unlock();
    // The lock is taken again whatever happens: the caller records failures under it.
    struct Relock
    {
        std::unique_lock<std::mutex>& lock;
        ~Relock() { lock.lock(); }
    };
    {
        const Relock relock{lock};
        slot.result = mWork(slot.line);
    }
    slot.isDone = true;
}

void OrderedWork::HandOver(std::unique_lock<std::mutex>& lock)
{
    if (mIsHandingOver)
        return;
    mIsHandingOver = true;
    while (!mIsStopped && !mSlots.empty() && mSlots.front().isDone) {
        const WorkResult result = std::move(mSlots.front().result);
        lock.unlock();
        try {
            mSink(result);
        } catch (...) {
            lock.lock();
            throw;
        }
        lock.lock();
        mSlots.pop_front();
        --mBegun;
        // The reader fills half a window at a time; waking it for each line costs as much as a
        // small request where it shares the processors with the workers.
        if (mSlots.size() <= mWindow / 2)
            mRoomIsThere.notify_all();
    }
    mIsHandingOver = false;
}

void OrderedWork::Fail(std::exception_ptr failure)
{
    if (!mFailure)
        mFailure = std::move(failure);
    mIsStopped = true;
    mRoomIsThere.notify_all();
    mWorkIsThere.notify_all();
}

void OrderedWork::Stop()
{
    {
        const std::lock_guard lock(mMutex);
        mIsStopped = true;
    }
    mWorkIsThere.notify_all();
    for (std::thread& thread : mThreads)
        thread.join();
    mThreads.clear();
}

void OrderedWork::ThrowFailure() const
{
    if (mFailure)
        std::rethrow_exception(mFailure);
}

} // namespace qe::tool
