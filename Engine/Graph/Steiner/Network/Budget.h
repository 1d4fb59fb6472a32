#ifndef ENGINE_GRAPH_STEINER_NETWORK_BUDGET_H
#define ENGINE_GRAPH_STEINER_NETWORK_BUDGET_H

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace qe::graph {

/// The wall time and working memory, in bytes, that one search may spend. Every loop whose length
/// the input can blow up asks IsExhausted() once a round; the clock itself is read only now and
/// then.
class Budget
{
public:
    Budget(std::chrono::milliseconds time, std::size_t memory);

    /// Returns whether time or memory has run out; once true it stays true.
    [[nodiscard]] bool IsExhausted();

    /// Returns whether more than `share` (0 to 1) of the time is gone.
    [[nodiscard]] bool IsSpent(double share) const;

    /// Records that a structure of the search has grown or shrunk by `bytes`.
    void Charge(std::size_t bytes) { mUsed += bytes; }
    void Release(std::size_t bytes) { mUsed -= bytes; }

private:
    using Clock = std::chrono::steady_clock;

    Clock::time_point mStart;
    std::chrono::milliseconds mTime;
    std::size_t mMemory;
    std::size_t mUsed = 0;
    std::uint32_t mCalls = 0;
    bool mIsExhausted = false;
};

} // namespace qe::graph

#endif
