#include "AQE_JoinCache.h"

#include <gmock/gmock.h>

#include <string>
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

AQE_JoinCache::QEjoinInfo MakeInfo(int number)
{
    const std::string text = "a text too long for a short string, number " + std::to_string(number);
    return {.weight = number,
            .joinId = {number, 102, number},
            .name = number % 3 == 0 ? I18NString() : I18NString(text),
            .leftQuerySubject = {number, 100, 1},
            .rightQuerySubject = {number, 100, 2},
            .expression = I18NString(text + std::string(1, '\0') + " = 1"),
            .leftCardinality = {number, 1},
            .rightCardinality = {2, number}};
}

TEST(JoinCache, KeepsWholeJoinsInWhateverOrderTheyComeAndAreReplaced)
{
    AQE_JoinCache cache;
    for (const int number : {1, 2, 5, 3, 9, 4, 5, 3, 9, 5}) {
        auto info = MakeInfo(number + 100);
        cache.CacheJoinInfo({0, 102, number}, info);
        info = MakeInfo(number);
        cache.CacheJoinInfo({0, 102, number}, info);
    }
    for (const int number : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}) {
        auto info = MakeInfo(-1);
        const bool isKept = cache.GetJoinInfo({0, 102, number}, info);
        EXPECT_EQ(isKept, number != 0 && (number < 6 || number == 9)) << number;
        const auto wanted = MakeInfo(isKept ? number : -1);
        EXPECT_EQ(info.weight, wanted.weight) << number;
        EXPECT_EQ(info.joinId, wanted.joinId);
        EXPECT_EQ(info.name, wanted.name);
        EXPECT_EQ(info.leftQuerySubject, wanted.leftQuerySubject);
        EXPECT_EQ(info.rightQuerySubject, wanted.rightQuerySubject);
        EXPECT_EQ(info.expression, wanted.expression);
        EXPECT_EQ(info.leftCardinality, wanted.leftCardinality);
        EXPECT_EQ(info.rightCardinality, wanted.rightCardinality);
    }
}

} // namespace
