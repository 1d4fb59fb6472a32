#include "Tests/Support/CountedAllocation.h"

#include <cstdlib>
#include <new>

namespace qe::test {

namespace {

struct State
{
    std::size_t liveCount = 0;
    std::size_t failIn = 0;
    bool hasFailed = false;
};

State state;

void* Allocate(std::size_t size) noexcept
{
    if (state.failIn != 0 && --state.failIn == 0) {
        state.hasFailed = true;
        return nullptr;
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    state.liveCount += block != nullptr;
    return block;
}

void Release(void* block) noexcept
{
    state.liveCount -= block != nullptr;
    std::free(block);
}

} // namespace

std::size_t CountedAllocation::GetLiveCount()
{
    return state.liveCount;
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
