#include "AQE_JoinCache.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

using testing::ElementsAre;

TEST(JoinCache, MergesTheListsOfARequest)
{
    const amd_id a{0, 100, 1};
    const amd_id b{0, 100, 2};
    const amd_id join{0, 102, 1};
    AQE_JoinCache cache;
    std::vector<amd_id> path{a};
    EXPECT_FALSE(cache.GetJoinPath({b}, {}, {}, path));
    EXPECT_THAT(path, ElementsAre(a));

    cache.CacheJoinPath({b}, {}, {}, {b});
    cache.CacheJoinPath({b}, {a, join}, {a}, {join});
    ASSERT_TRUE(cache.GetJoinPath({a, b}, {join}, {}, path));
    EXPECT_THAT(path, ElementsAre(join));
    EXPECT_FALSE(cache.GetJoinPath({a, b}, {}, {}, path));

    cache.CacheJoinPath({a}, {}, {}, {a});
    cache.CacheJoinPath({join, b, a}, {}, {}, {join, join});
    EXPECT_THAT(cache.GetAllJoinPaths(),
                ElementsAre(ElementsAre(a), ElementsAre(join, join), ElementsAre(b)))
        << "ordered by key; a prefix comes first";
}

TEST(JoinCache, ReplacesWhatItKnowsAndLeavesTheRestAlone)
{
    AQE_JoinCache cache;
    AQE_JoinCache::QEjoinInfo info;
    for (const char* name : {"first", "second"}) {
        info.name = name;
        cache.CacheJoinInfo({0, 102, 1}, info);
    }
    info.name = "before";
    EXPECT_FALSE(cache.GetJoinInfo({0, 102, 2}, info));
    EXPECT_EQ(info.name, "before");
    EXPECT_TRUE(cache.GetJoinInfo({0, 102, 1}, info));
    EXPECT_EQ(info.name, "second");
}

} // namespace
