#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "I18NLocale.h"
#include "IdClass.h"
#include "ORVAssertError.h"
#include "Tests/Support/FakeGateway.h"

#include <gmock/gmock.h>

namespace {

using qe::test::FakeGateway;
using qe::test::RelationshipFacts;
using QEjoinInfo = AQE_I_Refiner::QEjoinInfo;
using testing::ElementsAre;
using testing::IsEmpty;
using CardinalityRange = BMT_I_Association::CardinalityRange;

constexpr amd_id kOrders{0, IdClassQuerySubject, 1};
constexpr amd_id kCustomer{0, IdClassQuerySubject, 2};
constexpr amd_id kBuyer{0, IdClassShortcut, 1};
constexpr amd_id kPayer{0, IdClassShortcut, 2};
constexpr amd_id kSales{0, IdClassShortcut, 3};
constexpr amd_id kNamespace{0, 98, 1};
constexpr amd_id kJoin{0, IdClassRelationship, 1};
constexpr amd_id kJoinShortcut{0, IdClassRelationshipShortcut, 1};

TEST(Ids, OrderValidityAndText)
{
    EXPECT_TRUE((amd_id{0, 100, 5}.IsValid()));
    EXPECT_FALSE((amd_id{7, 100, 0}.IsValid()));
    EXPECT_FALSE((amd_id{7, 0, 5}.IsValid()));
    EXPECT_LT((amd_id{0, 101, 0}), (amd_id{1, 100, 5}));
    EXPECT_LT((amd_id{0, -1, 9}), (amd_id{0, 100, 1}));
    EXPECT_LT((amd_id{-1, 100, 1}), (amd_id{0, 100, 1}));
    EXPECT_EQ(ToText({9, 100, -3}), "100:-3");
}

struct Resolution
{
    amd_id result;
    std::vector<amd_id> shortcuts;
    std::vector<amd_id> parents;
};

Resolution Resolve(FakeGateway& gateway, const amd_id& id)
{
    Resolution resolution;
    resolution.result =
        AQE_I_Refiner::GetRefQuerySubject(&gateway, id, &resolution.shortcuts, &resolution.parents);
    return resolution;
}

TEST(RefQuerySubject, FollowsChainsAndKeepsWhatWasPassed)
{
    FakeGateway gateway;
    gateway.AddShortcut(kBuyer, kPayer);
    gateway.AddShortcut(kPayer, kCustomer);
    gateway.SetParent(kBuyer, {0, 99, 1});
    gateway.SetParent(kPayer, {0, 99, 2});

    const Resolution chain = Resolve(gateway, kBuyer);
    EXPECT_EQ(chain.result, kCustomer) << "the target itself need not be known";
    EXPECT_THAT(chain.shortcuts, ElementsAre(kBuyer, kPayer));
    EXPECT_THAT(chain.parents, ElementsAre(amd_id{0, 99, 1}, amd_id{0, 99, 2}));

    const int callsBefore = gateway.GetObjectCalls();
    EXPECT_EQ(Resolve(gateway, kOrders).result, kOrders);
    EXPECT_EQ(Resolve(gateway, kJoin).result, amd_id());
    EXPECT_EQ(gateway.GetObjectCalls(), callsBefore);

    gateway.AddShortcut(kPayer, kBuyer);
    const Resolution circle = Resolve(gateway, kBuyer);
    EXPECT_EQ(circle.result, amd_id());
    EXPECT_THAT(circle.shortcuts, ElementsAre(kBuyer, kPayer));

    gateway.AddShortcut(kPayer, kJoin);
    EXPECT_EQ(Resolve(gateway, kBuyer).result, amd_id());
    gateway.AddPlain(kCustomer);
    gateway.Alias(kSales, kCustomer);
    EXPECT_EQ(Resolve(gateway, kSales).result, amd_id()) << "the object's own class decides";
    EXPECT_THAT(Resolve(gateway, kSales).shortcuts, IsEmpty());
}

TEST(FilterInfo, FillsWhatItCanBeforeItFails)
{
    FakeGateway gateway;
    const amd_id filter{0, IdClassFilter, 1};
    const amd_id specFilter{0, IdClassSpecFilter, 1};
    gateway.AddFilter(filter, "[a].[b].[c] > 1");
    gateway.AddSpecFilter(specFilter, "x = 2");
    gateway.Alias({0, IdClassFilter, 2}, specFilter);

    AQE_I_Refiner::QEFilterInfo info;
    ASSERT_TRUE(AQE_I_Refiner::GetFilterInfo(&gateway, filter, info, I18NLocale()));
    EXPECT_EQ(info.filterId, filter);
    EXPECT_EQ(info.name, "114:1");
    EXPECT_EQ(info.expression, "[a].[b].[c] > 1");
    ASSERT_TRUE(AQE_I_Refiner::GetFilterInfo(&gateway, specFilter, info, I18NLocale()));
    EXPECT_EQ(info.expression, "x = 2");

    EXPECT_FALSE(AQE_I_Refiner::GetFilterInfo(&gateway, kJoin, info, I18NLocale()));
    EXPECT_EQ(info.filterId, specFilter);
    EXPECT_FALSE(AQE_I_Refiner::GetFilterInfo(&gateway, {0, IdClassFilter, 2}, info, I18NLocale()));
    EXPECT_EQ(info.filterId, (amd_id{0, IdClassFilter, 2}));
    EXPECT_EQ(info.name, "300020:1");
}

TEST(JoinInfo, ReadsEveryKindOfJoin)
{
    FakeGateway gateway;
    gateway.AddShortcut(kBuyer, kCustomer);
    gateway.AddRelationship(kJoin, {kOrders, kBuyer, "a = b", {10, 12}, {1, 77}});
    QEjoinInfo info;
    ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, kJoin, info));
    EXPECT_EQ(info.weight, 17);
    EXPECT_EQ(info.joinId, kJoin);
    EXPECT_EQ(info.name, "102:1");
    EXPECT_EQ(info.leftQuerySubject, kOrders);
    EXPECT_EQ(info.rightQuerySubject, kBuyer) << "ends are not resolved";
    EXPECT_EQ(info.expression, "a = b");
    EXPECT_EQ(info.leftCardinality, (CardinalityRange{10, 12}));
    EXPECT_EQ(info.rightCardinality, (CardinalityRange{1, 77}));

    const amd_id cheap{0, IdClassRelationship136, 1};
    gateway.AddRelationship(cheap, {kOrders, kCustomer, "c = d", {10, 12}, {1, 77}});
    ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, cheap, info));
    EXPECT_EQ(info.weight, 2);
    EXPECT_EQ(info.leftCardinality, (CardinalityRange{10, 12}));
    EXPECT_EQ(info.rightCardinality, (CardinalityRange{1, 0}));

    const amd_id spec{0, IdClassSpecJoin, 1};
    using Spec = AQE_I_QuerySpecJoin;
    gateway.AddSpecJoin(spec, {}, kCustomer, "e = f",
                        {Spec::QuerySpecCardinalityZero, Spec::QuerySpecCardinalityMany},
                        {Spec::QuerySpecCardinalityOne, static_cast<Spec::ECardinality>(99)});
    ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, spec, info))
        << "ends of a query's own join are not checked";
    EXPECT_EQ(info.weight, 17);
    EXPECT_EQ(info.leftQuerySubject, amd_id());
    EXPECT_EQ(info.leftCardinality, (CardinalityRange{10, 12}));
    EXPECT_EQ(info.rightCardinality, (CardinalityRange{11, 0}));
}

TEST(JoinInfo, ReportsUnreadableJoinsByFalse)
{
    FakeGateway gateway;
    gateway.AddShortcut(kBuyer, kBuyer);
    gateway.AddRelationship(kJoin, {kOrders, kBuyer, "a = b"});
    gateway.Alias({0, IdClassSpecJoin, 5}, kJoin);
    QEjoinInfo info;
    info.expression = "before";
    EXPECT_FALSE(AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, kJoin, info));
    EXPECT_EQ(info.joinId, kJoin) << "everything but the condition is filled";
    EXPECT_EQ(info.expression, "before");

    QEjoinInfo untouched;
    for (const amd_id& id :
         {amd_id{0, IdClassShortcutJoin, 0}, kOrders, amd_id{0, IdClassRelationship, 9},
          amd_id{0, IdClassSpecJoin, 5}, amd_id{0, IdClassRelationshipShortcut, 9}})
        EXPECT_FALSE(AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, id, untouched)) << ToText(id);
    EXPECT_EQ(untouched.joinId, amd_id());
    EXPECT_FALSE(AQE_I_Refiner::GetJoinInfo(nullptr, nullptr, kJoin, untouched));
}

TEST(JoinInfo, IsReadOncePerRequestAndTheCacheComesFirst)
{
    FakeGateway gateway;
    gateway.AddRelationship(kJoin, {kOrders, kCustomer, "a = b"});
    AQE_RequestContext context;
    QEjoinInfo info;
    ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, &context, kJoin, info));
    ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, &context, kJoin, info));
    EXPECT_EQ(gateway.GetObjectCalls(), 2) << "without a cache every call reads";

    context.SetJoinCache(std::make_unique<AQE_JoinCache>());
    ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, &context, kJoin, info));
    QEjoinInfo again;
    again.joinId = kJoin;
    ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, &context, again.joinId, again));
    EXPECT_EQ(gateway.GetObjectCalls(), 3);
    EXPECT_EQ(again.expression, "a = b");

    EXPECT_FALSE(AQE_I_Refiner::GetJoinInfo(&gateway, &context, kOrders, info));
    QEjoinInfo strange;
    strange.name = "strange";
    context.GetJoinCache()->CacheJoinInfo(kOrders, strange);
    ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, &context, kOrders, info));
    EXPECT_EQ(info.name, "strange") << "what is stored is given, whatever its class";
}

/// Orders is joined to Customer; Buyer and Payer stand for Customer, Sales stands for Orders.
class RelationshipShortcuts : public testing::Test
{
protected:
    RelationshipShortcuts()
    {
        for (const auto& [id, name] : {std::pair{kNamespace, "N"}, std::pair{kOrders, "Orders"},
                                       std::pair{kCustomer, "Customer"}}) {
            gateway.AddPlain(id);
            gateway.SetName(id, name);
        }
        AddShortcut(kBuyer, kCustomer, "Buyer");
        AddShortcut(kPayer, kCustomer, "Payer");
        AddShortcut(kSales, kOrders, "Sales");
        for (const amd_id& id : {kOrders, kCustomer, kBuyer, kPayer, kSales})
            gateway.SetQualifier(id, kNamespace);
        AddItem("Orders", kOrders);
        AddItem("Customer", kCustomer);
        AddItem("Buyer", kBuyer);
    }

    void AddShortcut(const amd_id& id, const amd_id& target, const std::string& name)
    {
        gateway.AddShortcut(id, target);
        gateway.SetName(id, name);
    }

    void AddItem(const std::string& subjectName, const amd_id& subject)
    {
        gateway.AddReference({"N", subjectName, "Id"}, {0, IdClassQueryItem, 1}, subject);
    }

    QEjoinInfo Read(const RelationshipFacts& relationship, const amd_id& left, const amd_id& right)
    {
        gateway.AddRelationship(kJoin, relationship);
        gateway.AddRelationshipShortcut(kJoinShortcut, kJoin, left, right);
        QEjoinInfo info;
        EXPECT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, kJoinShortcut, info));
        return info;
    }

    FakeGateway gateway;
};

TEST_F(RelationshipShortcuts, SwapReversedEndsButNeverCardinalities)
{
    const RelationshipFacts facts{
        kOrders, kCustomer, "[N].[Orders].[Id] = [N].[Customer].[Id]", {10, 12}, {11, 11}};
    const QEjoinInfo info = Read(facts, kBuyer, kSales);
    EXPECT_EQ(info.joinId, kJoinShortcut);
    EXPECT_EQ(info.name, "110:1");
    EXPECT_EQ(info.weight, 17);
    EXPECT_EQ(info.leftQuerySubject, kSales);
    EXPECT_EQ(info.rightQuerySubject, kBuyer);
    EXPECT_EQ(info.leftCardinality, (CardinalityRange{10, 12}));
    EXPECT_EQ(info.rightCardinality, (CardinalityRange{11, 11}));
    EXPECT_EQ(info.expression, "[N].[Sales].[Id] = [N].[Buyer].[Id]");
}

TEST_F(RelationshipShortcuts, RewriteOnlyWhatIsNotSettled)
{
    struct Case
    {
        const char* what;
        amd_id relationshipLeft;
        amd_id relationshipRight;
        std::string condition;
        amd_id left;
        amd_id right;
        std::string expected;
    };
    const Case cases[] = {
        {"one side changed", kOrders, kCustomer, "[N].[Orders].[Id]=[N].[Customer].[Id]", kOrders,
         kBuyer, "[N].[Orders].[Id] = [N].[Buyer].[Id]"},
        {"new end named already", kOrders, kCustomer, "[N].[Orders].[Id]=[N].[Buyer].[Id]", kOrders,
         kBuyer, "[N].[Orders].[Id]=[N].[Buyer].[Id]"},
        {"ends unchanged", kOrders, kCustomer, "[N].[Orders].[Id]=[N].[Customer].[Id]", kOrders,
         kCustomer, "[N].[Orders].[Id]=[N].[Customer].[Id]"},
        {"both ends one object", kOrders, kCustomer, "not even ( an expression", kBuyer, kBuyer,
         "not even ( an expression"},
        {"self-join split at half", kCustomer, kCustomer, "[N].[Customer].[Id]=[N].[Customer].[Id]",
         kBuyer, kPayer, "[N].[Buyer].[Id] = [N].[Payer].[Id]"},
        {"odd count: the smaller half is the left one", kCustomer, kCustomer,
         "[N].[Customer].[Id]=[N].[Customer].[Id]+[N].[Customer].[Id]", kBuyer, kPayer,
         "[N].[Buyer].[Id] = [N].[Payer].[Id] + [N].[Payer].[Id]"},
        {"one reference, both ends changed", kOrders, kCustomer, "[N].[Orders].[Id]=1", kSales,
         kBuyer, "[N].[Orders].[Id]=1"},
        {"halves in the other order", kOrders, kCustomer, "[N].[Customer].[Id]=[N].[Orders].[Id]",
         kSales, kPayer, "[N].[Customer].[Id] = [N].[Orders].[Id]"},
        {"markup goes, comparison stays", kOrders, kCustomer,
         "<refobj>[N].[Orders].[Id]</refobj> <= <refobj>[N].[Customer].[Id]</refobj>", kSales,
         kCustomer, "[N].[Sales].[Id] <= [N].[Customer].[Id]"},
    };
    for (const Case& test : cases) {
        const QEjoinInfo info = Read(
            {test.relationshipLeft, test.relationshipRight, test.condition}, test.left, test.right);
        EXPECT_EQ(info.expression, I18NString(test.expected)) << test.what;
    }
}

TEST_F(RelationshipShortcuts, KeepReferencesWhenTheQualifierIsUnknown)
{
    gateway.SetQualifier(kBuyer, {});
    const QEjoinInfo info =
        Read({kOrders, kCustomer, "[N].[Orders].[Id]=[N].[Customer].[Id]"}, kOrders, kBuyer);
    EXPECT_EQ(info.expression, "[N].[Orders].[Id] = [N].[Customer].[Id]");
}

TEST_F(RelationshipShortcuts, FollowChainsThatEndAtARelationship)
{
    const amd_id outer{0, IdClassRelationshipShortcut, 2};
    gateway.AddRelationship(kJoin, {kOrders, kCustomer, "a = b"});
    gateway.AddRelationshipShortcut(kJoinShortcut, kJoin, kOrders, kCustomer);
    gateway.AddRelationshipShortcut(outer, kJoinShortcut, kCustomer, kOrders);
    QEjoinInfo info;
    ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, outer, info));
    EXPECT_EQ(info.leftQuerySubject, kOrders);
    EXPECT_EQ(info.name, "110:2");
    gateway.AddRelationshipShortcut(outer, kJoinShortcut, {}, {});
    EXPECT_TRUE(AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, outer, info))
        << "ends of a relationship shortcut are not checked";

    const amd_id cheap{0, IdClassRelationship136, 1};
    gateway.AddRelationship(cheap, {kOrders, kCustomer, "a = b"});
    gateway.AddRelationshipShortcut(kJoinShortcut, cheap, kOrders, kCustomer);
    EXPECT_FALSE(AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, outer, info));
}

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

TEST(EdgeWeights, ReportUnknownTypes)
{
    EXPECT_EQ(AQE_I_Refiner::GetFFJoinsMode(), 3);
    EXPECT_EQ(AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeOneEndInSet), 7);
    for (const int type : {-1, 6}) {
        try {
            (void)AQE_I_Refiner::GetEdgeWeightForType(static_cast<AQE_I_Refiner::EEdgeType>(type));
            ADD_FAILURE() << type;
        } catch (const ORVAssertError& error) {
            EXPECT_EQ(error.GetAssertedText(), "ORV_ASSERT(false);");
            EXPECT_EQ(error.GetErrorCode(), 0);
            EXPECT_EQ(error.GetLocation().file, "Source/QEI_Refiner");
            EXPECT_EQ(error.GetLocation().line, 582);
            EXPECT_EQ(error.GetComponent(), "");
            EXPECT_EQ(error.GetMacroName(), "ORV_THROW");
        }
    }
}

} // namespace
