#include "Tests/Support/CountedAllocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace qe::test {

namespace {

struct State
{
    std::atomic<std::size_t> liveCount = 0;
    std::atomic<std::size_t> requestCount = 0;
    /// The failure comes with the request that finds 1 here.
    std::atomic<std::size_t> failIn = 0;
    std::atomic<bool> hasFailed = false;
};

State state;

/// Returns whether this request is to fail.
bool IsToFail() noexcept
{
    std::size_t left = state.failIn;
    while (left != 0) {
        if (!state.failIn.compare_exchange_weak(left, left - 1))
            continue;
        if (left == 1)
            state.hasFailed = true;
        return left == 1;
    }
    return false;
}

void* Allocate(std::size_t size) noexcept
{
    ++state.requestCount;
    if (IsToFail())
        return nullptr;
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block != nullptr)
        ++state.liveCount;
    return block;
}

void Release(void* block) noexcept
{
    if (block != nullptr)
        --state.liveCount;
    std::free(block);
}

} // namespace

std::size_t CountedAllocation::GetLiveCount()
{
    return state.liveCount;
}

std::size_t CountedAllocation::GetRequestCount()
{
    return state.requestCount;
}

void CountedAllocation::FailAtRequest(std::size_t n)
{
    state.failIn = n;
    if (n != 0)
        state.hasFailed = false;
}

bool CountedAllocation::HasFailed()
{
    return state.hasFailed;
}

} // namespace qe::test

// The forms for arrays call these.

void* operator new(std::size_t size)
{
    void* const block = qe::test::Allocate(size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return qe::test::Allocate(size);
}

void operator delete(void* block) noexcept
{
    qe::test::Release(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    qe::test::Release(block);
}
