#include "Engine/Graph/Steiner/Network/Budget.h"

#include "Engine/Graph/Steiner/Network/SearchTuning.h"

namespace qe::graph {

namespace {

/// About a millisecond of work.
constexpr std::uint64_t kStepsPerClockReading = 100'000;

} // namespace

Budget::Budget(const SteinerLimits& limits)
    : mStart(Clock::now()),
      mLimits(limits),
      mSearchSteps(limits.effort - limits.effort / tuning::kShareOfLastTree)
{}

bool Budget::IsExhausted()
{
    mIsExhausted = mIsExhausted || IsAnyHit(mSearchSteps);
    return mIsExhausted;
}

bool Budget::IsOverdrawn()
{
    return IsAnyHit(mLimits.effort);
}

bool Budget::IsAnyHit(std::uint64_t mostSteps)
{
    ELimit hit = ELimit::None;
    if (mSteps >= mostSteps)
        hit = ELimit::Effort;
    else if (mBytes > mLimits.memory)
        hit = ELimit::Memory;
    else if (IsTimeOver())
        hit = ELimit::Time;
    if (mLimitHit == ELimit::None)
        mLimitHit = hit;
    return hit != ELimit::None;
}

bool Budget::IsTimeOver()
{
    if (mLimits.time == std::chrono::milliseconds::zero() || mIsTimeOver)
        return mIsTimeOver;
    if (mSteps < mNextClockReading)
        return false;
    mNextClockReading = mSteps + kStepsPerClockReading;
    mIsTimeOver = Clock::now() - mStart >= mLimits.time;
    return mIsTimeOver;
}

} // namespace qe::graph
