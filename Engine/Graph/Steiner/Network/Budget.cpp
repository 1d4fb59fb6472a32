#include "Engine/Graph/Steiner/Network/Budget.h"

namespace qe::graph {

namespace {

constexpr std::uint32_t kCallsPerClockReading = 64;

} // namespace

Budget::Budget(std::chrono::milliseconds time, std::size_t memory)
    : mStart(Clock::now()), mTime(time), mMemory(memory)
{}

bool Budget::IsExhausted()
{
    if (mIsExhausted)
        return true;
    if (mUsed > mMemory)
        mIsExhausted = true;
    else if (++mCalls % kCallsPerClockReading == 0)
        mIsExhausted = Clock::now() - mStart >= mTime;
    return mIsExhausted;
}

bool Budget::IsSpent(double share) const
{
    const std::chrono::duration<double> spent = Clock::now() - mStart;
    return spent >= std::chrono::duration<double>(mTime) * share;
}

} // namespace qe::graph
