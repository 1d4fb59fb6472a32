#ifndef ENGINE_GRAPH_STEINER_NETWORK_BUDGET_H
#define ENGINE_GRAPH_STEINER_NETWORK_BUDGET_H

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace qe::graph {

/// What a search is to find.
enum class EAnswer
{
    AllTrees, ///< All minimum Steiner trees, counted, as many as wanted listed.
    OneTree,  ///< One of them, whichever is found first; they are not counted.
};

/// What one search may list and spend.
struct SteinerLimits
{
    EAnswer answer = EAnswer::AllTrees;
    /// Trees beyond this many are counted, not listed.
    std::size_t maximumTrees = 1000;
    /// Steps of work: search, counting and listing together. Those of the linear algorithms that
    /// look at the whole graph before the search are not counted.
    std::uint64_t effort = 1'000'000'000;
    /// Bytes of working memory, with the trees that are listed.
    std::size_t memory = std::size_t{1} << 30;
    /// A guard, in wall time, of hosts that would rather have answers that differ from run to run
    /// than wait; 0 for none.
    std::chrono::milliseconds time{0};
};

/// A limit that ended a search or a list.
enum class ELimit
{
    None,
    Trees,
    Effort,
    Memory,
    Time,
    Terminals, ///< The exact search takes no more terminals at once; no setting changes that.
};

/// What one search may spend, and what it has spent. Every loop whose length the input can blow up
/// records its steps and asks whether they are used up once a round.
///
/// A step is one half-edge, label or piece of a tree that is looked at. Steps are counted, never
/// timed, so that the same search comes to the same end on every machine; what the clock says
/// counts only when the host sets a time as a guard.
class Budget
{
public:
    explicit Budget(const SteinerLimits& limits);

    [[nodiscard]] EAnswer GetAnswer() const { return mLimits.answer; }

    /// Records steps that were taken.
    void Spend(std::uint64_t steps) { mSteps += steps; }
    [[nodiscard]] std::uint64_t GetSteps() const { return mSteps; }

    /// Records that a structure of the search has grown or shrunk by `bytes`.
    void Charge(std::size_t bytes) { mBytes += bytes; }
    void Release(std::size_t bytes) { mBytes -= bytes; }

    /// Returns whether the search has to end; once true it stays true. A share of the steps is
    /// kept back for what has to follow.
    [[nodiscard]] bool IsExhausted();

    /// Returns whether the steps that were kept back are nearly used up as well, or memory or time
    /// has run out: then what improves or lists trees ends too. Unlike IsExhausted, it can become
    /// false again when memory is released.
    [[nodiscard]] bool IsOverdrawn();

    /// Returns whether a search may take so many more steps and bytes.
    [[nodiscard]] bool CanAfford(std::uint64_t steps, std::size_t bytes) const
    {
        return mSteps + steps < mSearchSteps && mBytes + bytes < mLimits.memory;
    }

    /// Returns the limit that was hit first, ELimit::None when none was.
    [[nodiscard]] ELimit GetLimitHit() const { return mLimitHit; }
    /// Records a limit that is no matter of spending.
    void Hit(ELimit limit) { mLimitHit = mLimitHit == ELimit::None ? limit : mLimitHit; }

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool IsAnyHit(std::uint64_t mostSteps);
    [[nodiscard]] bool IsTimeOver();

    Clock::time_point mStart;
    SteinerLimits mLimits;
    std::uint64_t mSearchSteps;
    std::uint64_t mSteps = 0;
    std::uint64_t mNextClockReading = 0;
    std::size_t mBytes = 0;
    ELimit mLimitHit = ELimit::None;
    bool mIsTimeOver = false;
    bool mIsExhausted = false;
};

} // namespace qe::graph

#endif
