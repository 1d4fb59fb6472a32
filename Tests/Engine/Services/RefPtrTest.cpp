#include "AUT_RefPtr.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <utility>
#include <vector>

namespace {

long liveAllocations = 0;
/// Counts down to the allocation that fails; negative: none does.
long allocationsLeft = -1;

} // namespace

void* operator new(std::size_t size)
{
    if (allocationsLeft >= 0 && allocationsLeft-- == 0)
        throw std::bad_alloc();
    void* const memory = std::malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    ++liveAllocations;
    return memory;
}

void operator delete(void* memory) noexcept
{
    if (memory != nullptr)
        --liveAllocations;
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    operator delete(memory);
}

namespace {

struct Base
{
    virtual ~Base() = default;
};

struct Derived : Base
{
    explicit Derived(int& deletions) : mDeletions(deletions) {}
    ~Derived() override { ++mDeletions; }
    int& mDeletions;
};

TEST(RefPtrTest, LastHolderDeletesThroughTheVirtualDestructor)
{
    int deletions = 0;
    const long before = liveAllocations;
    {
        AUT_RefPtr<Base> first(new Derived(deletions));
        AUT_RefPtr<Base> second;
        {
            const AUT_RefPtr<Base> third(first);
            second = third;
            const AUT_RefPtr<Base>& alias = second;
            second = alias;
            EXPECT_EQ(second.Get(), first.Get());
        }
        first = AUT_RefPtr<Base>();
        EXPECT_EQ(deletions, 0);
        EXPECT_TRUE(second);
        second = first;
        EXPECT_EQ(deletions, 1);
        EXPECT_FALSE(second);
    }
    EXPECT_EQ(deletions, 1);
    EXPECT_EQ(liveAllocations, before);
}

TEST(RefPtrTest, NullObjectHasACountOfItsOwn)
{
    const long before = liveAllocations;
    {
        const AUT_RefPtr<Base> null;
        EXPECT_EQ(liveAllocations, before + 1);
        const AUT_RefPtr<Base> copy(null);
        EXPECT_EQ(liveAllocations, before + 1);
    }
    EXPECT_EQ(liveAllocations, before);
}

TEST(RefPtrTest, ObjectIsDeletedWhenThereIsNoMemoryForItsCount)
{
    int deletions = 0;
    Base* const object = new Derived(deletions);
    allocationsLeft = 0;
    EXPECT_THROW(AUT_RefPtr<Base>{object}, std::bad_alloc);
    allocationsLeft = -1;
    EXPECT_EQ(deletions, 1);
}

} // namespace
