#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Engine/Services/SettingsOverride.h"
#include "I18NLocale.h"
#include "IdClass.h"
#include "ORVAssertError.h"
#include "Tests/Source/ProcessSettings.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"

#include <gmock/gmock.h>

#include <array>

namespace {

using qe::test::CountingGateway;
using qe::test::ModelText;
using qe::test::ToldFailure;
using QEjoinInfo = AQE_I_Refiner::QEjoinInfo;
using testing::ElementsAre;
using testing::StartsWith;

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

/// A model behind a gateway that can show what no model holds.
struct Metadata
{
    explicit Metadata(const std::string& text) : model(text), gateway(model.GetGateway()) {}

    /// Returns "target over shortcuts in parents".
    std::string Resolve(const std::string& name)
    {
        std::vector<amd_id> shortcuts;
        std::vector<amd_id> parents;
        const amd_id target =
            AQE_I_Refiner::GetRefQuerySubject(&gateway, model.Id(name), &shortcuts, &parents);
        return model.Name(target) + " over " + model.Names(shortcuts) + " in " +
               model.Names(parents);
    }

    /// Returns "name weight: left min..max right min..max: condition".
    std::string Read(const amd_id& join)
    {
        QEjoinInfo info;
        if (!AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, join, info))
            return "unreadable";
        EXPECT_EQ(info.joinId, join);
        const auto end = [this](const amd_id& subject, const auto& cardinality) {
            return model.Name(subject) + ' ' + std::to_string(cardinality.minimum) + ".." +
                   std::to_string(cardinality.maximum);
        };
        return info.name.ToStdString() + ' ' + std::to_string(info.weight) + ": " +
               end(info.leftQuerySubject, info.leftCardinality) + ' ' +
               end(info.rightQuerySubject, info.rightCardinality) + ": " +
               info.expression.ToStdString();
    }
    std::string Read(const std::string& name) { return Read(model.Id(name)); }

    /// Shows an object with some of what is known of it changed.
    template <typename Change>
    void Alter(const std::string& name, const Change& change)
    {
        qe::model::ObjectRecord record = *model.GetModel()->Find(model.Id(name));
        change(record);
        gateway.Replace(model.Id(name), record);
    }

    ModelText model;
    CountingGateway gateway;
};

TEST(RefQuerySubject, FollowsChainsAndKeepsWhatWasPassed)
{
    Metadata data("folder F; Payer -> Customer; folder G; Buyer -> Payer; Customer - Orders : j");
    data.gateway.Hide(data.model.Id("Customer"));
    EXPECT_EQ(data.Resolve("Buyer"), "Customer over Buyer, Payer in G, F")
        << "the target itself need not be known";
    const std::size_t calls = data.gateway.calls.GetCallCount();
    EXPECT_EQ(data.Resolve("Orders"), "Orders over  in ");
    EXPECT_EQ(data.Resolve("j"), "0:0 over  in ");
    EXPECT_EQ(data.gateway.calls.GetCallCount(), calls);

    const auto payerStandsFor = [&data](const char* name) {
        data.Alter("Payer", [&](auto& record) { record.referenced = data.model.Id(name); });
    };
    payerStandsFor("Buyer");
    EXPECT_EQ(data.Resolve("Buyer"), "0:0 over Buyer, Payer in G, F") << "a cycle";
    payerStandsFor("j");
    EXPECT_EQ(data.Resolve("Buyer"), "0:0 over Buyer, Payer in G, F");
    data.gateway.Replace(data.model.Id("Buyer"), {.id = data.model.Id("Orders")});
    EXPECT_EQ(data.Resolve("Buyer"), "0:0 over  in ") << "the object's own class decides";
}

TEST(FilterInfo, FillsWhatItCanBeforeItFails)
{
    Metadata data("filter F on [a].[b].[c] > 1; query filter G on x = 2; A - B : j");
    AQE_I_Refiner::QEFilterInfo info;
    const auto read = [&](const amd_id& id) {
        return AQE_I_Refiner::GetFilterInfo(&data.gateway, id, info, I18NLocale());
    };
    const amd_id filter = data.model.Id("F");
    const amd_id specFilter = data.model.Id("G");
    ASSERT_TRUE(read(filter));
    EXPECT_EQ(info.filterId, filter);
    EXPECT_EQ(info.name, "F");
    EXPECT_EQ(info.expression, "[a].[b].[c] > 1");
    ASSERT_TRUE(read(specFilter));
    EXPECT_EQ(info.expression, "x = 2");

    EXPECT_FALSE(read(data.model.Id("j")));
    EXPECT_EQ(info.filterId, specFilter);
    data.gateway.Replace(filter, {.id = specFilter, .name = "odd", .displayName = "odd"});
    EXPECT_FALSE(read(filter));
    EXPECT_EQ(info.filterId, filter);
    EXPECT_EQ(info.name, "G");
}

TEST(JoinInfo, ReadsEveryKindOfJoin)
{
    Metadata data(R"(
        Buyer -> Customer
        Orders >o- Buyer : r on a = b
        Orders >o= Customer : second on c = d
        Orders >o~ Customer : query on e = f
    )");
    for (const char* join : {"r", "second"})
        data.Alter(join, [](auto& record) { record.rightCardinality = {1, 77}; });
    EXPECT_EQ(data.Read("r"), "r 17: Orders 10..12 Buyer 1..77: a = b") << "ends are not resolved";
    EXPECT_EQ(data.Read("second"), "second 2: Orders 10..12 Customer 1..0: c = d");
    data.Alter("query", [](auto& record) {
        record.left = {};
        record.rightCardinality = {11, 99};
    });
    EXPECT_EQ(data.Read("query"), "query 17: 0:0 10..12 Customer 11..0: e = f")
        << "ends of a query's own join are not checked";
}

TEST(JoinInfo, ReportsUnreadableJoinsByFalse)
{
    Metadata data("Buyer -> Customer; Orders >- Buyer : j on a = b");
    const amd_id buyer = data.model.Id("Buyer");
    const amd_id join = data.model.Id("j");
    data.gateway.Replace({.id = buyer, .referenced = buyer});
    data.gateway.Replace({0, IdClassSpecJoin, 5}, *data.model.GetModel()->Find(join));
    QEjoinInfo info;
    info.expression = "before";
    EXPECT_FALSE(AQE_I_Refiner::GetJoinInfo(&data.gateway, nullptr, join, info));
    EXPECT_EQ(info.joinId, join) << "everything but the condition is filled";
    EXPECT_EQ(info.expression, "before");

    QEjoinInfo untouched;
    for (const amd_id& id : {amd_id{0, IdClassShortcutJoin, 0}, data.model.Id("Orders"),
                             amd_id{0, IdClassRelationship, 9}, amd_id{0, IdClassSpecJoin, 5},
                             amd_id{0, IdClassRelationshipShortcut, 9}})
        EXPECT_FALSE(AQE_I_Refiner::GetJoinInfo(&data.gateway, nullptr, id, untouched))
            << ToText(id);
    EXPECT_EQ(untouched.joinId, amd_id());
    EXPECT_FALSE(AQE_I_Refiner::GetJoinInfo(nullptr, nullptr, join, untouched));
}

TEST(JoinInfo, IsReadOncePerRequestAndTheCacheComesFirst)
{
    Metadata data("Orders >- Customer : j on a = b");
    const amd_id join = data.model.Id("j");
    const amd_id orders = data.model.Id("Orders");
    AQE_RequestContext context;
    QEjoinInfo info;
    const auto read = [&](const amd_id& id) {
        return AQE_I_Refiner::GetJoinInfo(&data.gateway, &context, id, info);
    };
    ASSERT_TRUE(read(join));
    ASSERT_TRUE(read(join));
    EXPECT_EQ(data.gateway.calls.GetCallCount(), 2U) << "without a cache every call reads";

    context.SetJoinCache(std::make_unique<AQE_JoinCache>());
    ASSERT_TRUE(read(join));
    info = {};
    info.joinId = join;
    ASSERT_TRUE(read(info.joinId));
    EXPECT_EQ(data.gateway.calls.GetCallCount(), 3U);
    EXPECT_EQ(info.expression, "a = b");

    EXPECT_FALSE(read(orders));
    QEjoinInfo strange;
    strange.name = "strange";
    context.GetJoinCache()->CacheJoinInfo(orders, strange);
    ASSERT_TRUE(read(orders));
    EXPECT_EQ(info.name, "strange") << "what is stored is given, whatever its class";
}

/// Buyer and Payer stand for Customer, Sales stands for Orders. References leave the folder out.
constexpr const char* kShortcuts = R"(
    namespace N
    folder F
    Orders(Id), Customer(Id)
    Sales -> Orders; Payer -> Customer; Buyer -> Customer
)";

TEST(RelationshipShortcuts, SwapReversedEndsButNeverCardinalities)
{
    Metadata data(std::string(kShortcuts) + R"(
        Orders >o- Customer : j on [N].[Orders].[Id] = [N].[Customer].[Id]
        s -> j : Buyer, Sales
    )");
    EXPECT_EQ(data.Read("s"),
              "s 17: Sales 10..12 Buyer 11..11: [N].[Sales].[Id] = [N].[Buyer].[Id]");
    // Ends that lie crosswise on one side only stay where they are.
    data.Alter("s", [&](auto& record) { record.right = data.model.Id("Payer"); });
    EXPECT_THAT(data.Read("s"), StartsWith("s 17: Buyer 10..12 Payer 11..11: "));
    data.Alter("s", [&](auto& record) {
        record.left = data.model.Id("Orders");
        record.right = data.model.Id("Sales");
    });
    EXPECT_THAT(data.Read("s"), StartsWith("s 17: Orders 10..12 Sales 11..11: "));
}

/// Fails to give one object.
class BrokenGateway : public CountingGateway
{
public:
    BrokenGateway(qe::model::ModelGateway& next, const amd_id& broken)
        : CountingGateway(next), mBroken(broken)
    {}
    amdi_object* GetObject(const amd_id& id) override
    {
        if (id == mBroken)
            throw ToldFailure();
        return CountingGateway::GetObject(id);
    }

private:
    amd_id mBroken;
};

TEST(RelationshipShortcuts, ResolveBothEndsWhateverTheFirstOneIs)
{
    // The condition has too few references to be rewritten, which would look the ends up again.
    const ModelText model(std::string(kShortcuts) + R"(
        Orders >- Customer : j on [N].[Orders].[Id] = 1
        s -> j : Sales, Buyer
    )");
    for (const char* end : {"Sales", "Buyer"}) {
        BrokenGateway gateway(model.GetGateway(), model.Id(end));
        QEjoinInfo info;
        EXPECT_THROW(
            static_cast<void>(AQE_I_Refiner::GetJoinInfo(&gateway, nullptr, model.Id("s"), info)),
            ToldFailure)
            << end;
    }
}

TEST(RelationshipShortcuts, RewriteOnlyWhatIsNotSettled)
{
    const struct
    {
        const char* what;
        const char* ends;
        const char* condition;
        const char* shortcutEnds;
        const char* expected;
        const char* hidden = "";
    } cases[] = {
        {"one side changed", "Orders >- Customer", "[N].[Orders].[Id]=[N].[Customer].[Id]",
         "Orders, Buyer", "[N].[Orders].[Id] = [N].[Buyer].[Id]"},
        {"new end named already", "Orders >- Customer", "[N].[Orders].[Id]=[N].[Buyer].[Id]",
         "Orders, Buyer", "[N].[Orders].[Id]=[N].[Buyer].[Id]"},
        {"new left end named already", "Orders >- Customer", "[N].[Customer].[Id]=[N].[Sales].[Id]",
         "Sales, Buyer", "[N].[Buyer].[Id] = [N].[Sales].[Id]"},
        {"new right end named already", "Orders >- Customer", "[N].[Buyer].[Id]=[N].[Orders].[Id]",
         "Sales, Buyer", "[N].[Buyer].[Id] = [N].[Sales].[Id]"},
        {"ends unchanged", "Orders >- Customer", "[N].[Orders].[Id]=[N].[Customer].[Id]",
         "Orders, Customer", "[N].[Orders].[Id]=[N].[Customer].[Id]"},
        {"both ends one object", "Orders >- Customer", "not even ( an expression", "Buyer, Buyer",
         "not even ( an expression"},
        {"self-join split at half", "Customer >- Customer",
         "[N].[Customer].[Id]=[N].[Customer].[Id]", "Buyer, Payer",
         "[N].[Buyer].[Id] = [N].[Payer].[Id]"},
        {"odd count: the smaller half is the left one", "Customer >- Customer",
         "[N].[Customer].[Id]=[N].[Customer].[Id]+[N].[Customer].[Id]", "Buyer, Payer",
         "[N].[Buyer].[Id] = [N].[Payer].[Id] + [N].[Payer].[Id]"},
        {"only items count as references", "Customer >- Customer",
         "[N].[Flag] and [N].[Customer].[Id]=[N].[Customer].[Id]", "Buyer, Payer",
         "[N].[Flag] AND [N].[Buyer].[Id] = [N].[Payer].[Id]"},
        {"one reference, both ends changed", "Orders >- Customer", "[N].[Orders].[Id]=1",
         "Sales, Buyer", "[N].[Orders].[Id]=1"},
        {"halves in the other order", "Orders >- Customer", "[N].[Customer].[Id]=[N].[Orders].[Id]",
         "Sales, Payer", "[N].[Customer].[Id] = [N].[Orders].[Id]"},
        {"markup goes, comparison stays", "Orders >- Customer",
         "<refobj>[N].[Orders].[Id]</refobj> <= <refobj>[N].[Customer].[Id]</refobj>",
         "Sales, Customer", "[N].[Sales].[Id] <= [N].[Customer].[Id]"},
        {"a new end without namespace", "Orders >- Customer",
         "[N].[Orders].[Id]=[N].[Customer].[Id]", "Orders, Homeless",
         "[N].[Orders].[Id] = [Homeless].[Id]"},
        {"a new end without object", "Orders >- Customer", "[N].[Orders].[Id]=[N].[Customer].[Id]",
         "Orders, Buyer", "[N].[Orders].[Id] = [N].[Customer].[Id]", "Buyer"},
        {"an old end without namespace", "Free >- Customer", "[Free].[Id]=[N].[Customer].[Id]",
         "FreeToo, Customer", "[N].[FreeToo].[Id] = [N].[Customer].[Id]"},
        {"self-join without namespaces", "Free >- Free", "[Free].[Id]=[Free].[Parent]",
         "FreeToo, Role", "[N].[FreeToo].[Id] = [Role].[Parent]"},
    };
    for (const auto& test : cases) {
        Metadata data("namespace; Free(Id, Parent); Role -> Free; " + std::string(kShortcuts) +
                      "; FreeToo -> Free; namespace; " + "Homeless -> Customer; namespace N; " +
                      test.ends + " : j on " + test.condition + "; s -> j : " + test.shortcutEnds);
        for (const amd_id& id : data.model.Ids(test.hidden))
            data.gateway.Hide(id);
        const std::string join = data.Read("s");
        EXPECT_EQ(join.substr(join.rfind(": ") + 2), test.expected) << test.what;
    }
}

TEST(RelationshipShortcuts, KeepReferencesWhoseNewQualifierIsNotKnown)
{
    Metadata data(std::string(kShortcuts) + R"(
        Orders >- Customer : j on [N].[Orders].[Id] = [N].[Customer].[Id]
        s -> j : Orders, Buyer
    )");
    data.gateway.Hide(data.model.Id("N"));
    EXPECT_EQ(data.Read("s"),
              "s 17: Orders 11..12 Buyer 11..11: [N].[Orders].[Id] = [N].[Customer].[Id]");
}

TEST(RelationshipShortcuts, FollowChainsThatEndAtARelationship)
{
    Metadata data(R"(
        Orders - Customer : r on a = b; Orders = Customer : second
        inner -> r : Orders, Customer; outer -> inner : Customer, Orders
    )");
    EXPECT_EQ(data.Read("outer"), "outer 17: Orders 11..11 Customer 11..11: a = b");
    data.Alter("outer", [](auto& record) { record.left = record.right = {}; });
    EXPECT_EQ(data.Read("outer"), "outer 17: 0:0 11..11 0:0 11..11: a = b")
        << "ends of a relationship shortcut are not checked";
    data.Alter("inner", [&](auto& record) { record.referenced = data.model.Id("second"); });
    EXPECT_EQ(data.Read("outer"), "unreadable");
    data.gateway.Hide(data.model.Id("inner"));
    EXPECT_EQ(data.Read("outer"), "unreadable");
}

/// Returns the weights of all edge types in the mode of the process.
std::array<int, 6> EdgeWeights()
{
    std::array<int, 6> weights{};
    for (std::size_t type = 0; type < weights.size(); ++type)
        weights[type] =
            AQE_I_Refiner::GetEdgeWeightForType(static_cast<AQE_I_Refiner::EEdgeType>(type));
    return weights;
}

void ExpectUnknownType(int type, int line)
{
    try {
        (void)AQE_I_Refiner::GetEdgeWeightForType(static_cast<AQE_I_Refiner::EEdgeType>(type));
        ADD_FAILURE() << type;
    } catch (const ORVAssertError& error) {
        EXPECT_STREQ(error.what(), ("Assertion failed, error code 0: ORV_ASSERT(false); "
                                    "(Source/QEI_Refiner:" +
                                    std::to_string(line) + ", ORV_THROW)")
                                       .c_str());
    }
}

TEST(EdgeWeights, AreThoseOfTheUsualMode)
{
    EXPECT_EQ(AQE_I_Refiner::GetFFJoinsMode(), 3);
    EXPECT_THAT(EdgeWeights(), ElementsAre(2, 2, 7, 3, 17, 8888));
    ExpectUnknownType(-1, 582);
    ExpectUnknownType(6, 582);
}

TEST(EdgeWeights, FollowTheModeThatWasReadFirst)
{
    if (qe::test::RunsWithOtherCases())
        GTEST_SKIP() << qe::test::kNeedsOwnProcess;
    const qe::SettingsOverride mode("General Options", "FFJoins", 0);
    EXPECT_THAT(EdgeWeights(), ElementsAre(1, 1, 5, 2, 11, 8888));
    qe::SettingsOverride::Set("General Options", "FFJoins", 3);
    EXPECT_EQ(AQE_I_Refiner::GetFFJoinsMode(), 0);
    ExpectUnknownType(6, 609);
}

TEST(EdgeWeights, AreNotAskedForWhenThereIsNothingToWeigh)
{
    if (qe::test::RunsWithOtherCases())
        GTEST_SKIP() << qe::test::kNeedsOwnProcess;
    const qe::SettingsOverride mode("General Options", "FFJoins", 0);
    Metadata metadata("A(Key)");
    const std::vector<amd_id> subjects{metadata.model.Id("A")};
    const auto refiner =
        AQE_I_Refiner::Create(&metadata.gateway, nullptr, nullptr, nullptr, false, false);
    std::vector<amd_id> joins;
    static_cast<void>(refiner->GetJoinTreeJoins(&metadata.gateway, subjects, {}, {}, subjects, {},
                                                nullptr, nullptr, nullptr, joins));
    EXPECT_TRUE(joins.empty());
    qe::SettingsOverride::Set("General Options", "FFJoins", 3);
    EXPECT_EQ(AQE_I_Refiner::GetFFJoinsMode(), 3);
}

} // namespace
