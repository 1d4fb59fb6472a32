#ifndef TESTS_SUPPORT_COUNTEDALLOCATION_H
#define TESTS_SUPPORT_COUNTEDALLOCATION_H

#include <cstddef>

namespace qe::test {

/// Replaces operator new and delete of the whole program that links it. Counts the blocks that are
/// in use, and can let one request for memory fail. Safe to use from any thread.
class CountedAllocation
{
public:
    /// Returns how many blocks are in use.
    [[nodiscard]] static std::size_t GetLiveCount();

    /// Returns how many requests for memory there were.
    [[nodiscard]] static std::size_t GetRequestCount();

    /// Lets the n-th request for memory from now fail with std::bad_alloc, counted from 1; 0:
    /// none.
    static void FailAtRequest(std::size_t n);

    /// Returns whether the failure that was asked for has come.
    [[nodiscard]] static bool HasFailed();
};

} // namespace qe::test

#endif
