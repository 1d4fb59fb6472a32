#include "AUT_RefPtr.h"
#include "Tests/Support/CountedAllocation.h"

#include <gtest/gtest.h>
#include <new>

namespace {

using qe::test::CountedAllocation;

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
    const std::size_t before = CountedAllocation::GetLiveCount();
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
    EXPECT_EQ(CountedAllocation::GetLiveCount(), before);
}

TEST(RefPtrTest, NullObjectHasACountOfItsOwn)
{
    const std::size_t before = CountedAllocation::GetLiveCount();
    {
        const AUT_RefPtr<Base> null;
        EXPECT_EQ(CountedAllocation::GetLiveCount(), before + 1);
        const AUT_RefPtr<Base> copy(null);
        EXPECT_EQ(CountedAllocation::GetLiveCount(), before + 1);
    }
    EXPECT_EQ(CountedAllocation::GetLiveCount(), before);
}

TEST(RefPtrTest, ObjectIsDeletedWhenThereIsNoMemoryForItsCount)
{
    int deletions = 0;
    Base* const object = new Derived(deletions);
    CountedAllocation::FailAtRequest(1);
    EXPECT_THROW(AUT_RefPtr<Base>{object}, std::bad_alloc);
    EXPECT_EQ(deletions, 1);
}

} // namespace
