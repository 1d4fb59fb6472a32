#include "AQE_I_QuerySubjectShortcutInfo.h"

#include "AQE_Governors.h"
#include "Engine/Services/LogCapture.h"
#include "QERes.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using qe::test::CountingGateway;
using qe::test::ModelText;
using qe::test::ToldFailure;

constexpr int kByTarget = 0;
constexpr int kByParent = 1;

/// The target in P1, two shortcuts in P2, and one in P3 that refers to one of those.
const char* const ThreeFolders = R"(
    folder P1; Orders
    folder P2; Old -> Orders; New -> Orders
    folder P3; Far -> Old
)";
const char* const kThreeShortcuts = "Orders, Old, New, Far";
/// To look up their chains (4 shortcuts) and targets (3 times).
constexpr std::size_t kCallsBeforeGrouping = 7;

/// A request over a model: its shortcut information, and how it answers.
struct Request
{
    Request(const std::string& model, int rule)
        : names(model),
          gateway(names.GetGateway()),
          governors{0, rule},
          info(AQE_I_QuerySubjectShortcutInfo::Create(&gateway, &governors, nullptr))
    {}

    void Build(const std::string& subjects, const std::string& joins = "",
               const std::string& requiredJoins = "")
    {
        info->Initialize(names.Ids(subjects), names.Ids(joins), names.Ids(requiredJoins));
    }

    /// Returns the synthetic joins as "left-right", in their order, after checking their ids.
    [[nodiscard]] std::string Joins()
    {
        std::string text;
        int number = 0;
        for (const auto& join : info->GetShortcutJoins()) {
            EXPECT_EQ(join.joinId, amd_id(100, IdClassShortcutJoin, number++));
            text += text.empty() ? "" : " ";
            text += names.Name(join.leftQuerySubject) + '-' + names.Name(join.rightQuerySubject);
        }
        return text;
    }

    [[nodiscard]] std::string KeyOf(const std::string& name)
    {
        return names.Name(info->GetGroupKey(names.Id(name)));
    }

    [[nodiscard]] std::string Dump()
    {
        std::ostringstream out;
        info->Dump(out);
        return out.str();
    }

    ModelText names;
    CountingGateway gateway;

    AQE_Governors governors;
    std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> info;
};

TEST(ShortcutInfo, JoinsTheMembersOfEachGroup)
{
    struct Row
    {
        const char* what;
        const char* model;
        const char* subjects;
        const char* joins;
        std::string byTarget;
        std::string byContainer;
    };
    const Row rows[] = {
        {"chains", ThreeFolders, "Orders, Old, New, Far", "",
         "Orders-Old Orders-New Orders-Far Old-New Old-Far New-Far",
         "Orders-New Orders-Far New-Far"},
        {"a chain brings in what it passes", ThreeFolders, "Far", "",
         "Orders-Old Orders-Far Old-Far", "Orders-Old Orders-Far Old-Far"},
        {"no shortcuts", ThreeFolders, "Orders", "", "", ""},
        {"one parent", "T; S -> T; R -> T", "S, R", "", "T-S T-R S-R", ""},
        {"another kind", "folder A; T; folder B; S ->2 T", "S", "", "", "T-S"},
        {"two targets", "folder A; T; U; folder B; X -> U; Y -> T; Z -> U", "X, Y, Z", "",
         "T-Y U-X U-Z X-Z", "T-Y U-X"},
        {"a join to the target moves the shortcut to it",
         "folder B; T; folder A; S -> T; T >- S; folder C; R -> T", "S, R", "T-S", "T-S T-R S-R",
         "T-R"},
        {"and so does one that names the shortcut first",
         "folder B; T; folder A; S -> T; S >- T; folder C; R -> T", "S, R", "S-T", "T-S T-R S-R",
         "T-R"},
        {"joins within the folder of the target do not make that the one to move to",
         "folder P; T; S -> T; R -> T; T >- S; R >- T; folder C; Y -> T; folder D; X -> T; X >- Y",
         "S, R, X, Y", "T-S, R-T, X-Y", "T-S T-R T-Y T-X S-R S-Y S-X R-Y R-X Y-X", "T-X"},
        {"the target is the key wherever it lies",
         "folder A; U; folder B; T; folder A; S -> T; folder C; R -> T", "R, S", "", "T-S T-R S-R",
         "T-S T-R S-R"},
        {"a join across folders moves a shortcut to the least one",
         "folder A; T; folder C; S -> T; folder B; R -> T; Z -> T; S >- R", "Z, S, R", "S-R",
         "T-S T-R T-Z S-R S-Z R-Z", "T-R T-Z R-Z"},
        {"a join within a folder moves nothing, nor does its folder count",
         "folder A; T; folder B; S -> T; R -> T; S >- R; folder C; Y -> T; folder D; X -> T; X >- "
         "Y",
         "S, R, X, Y", "S-R, X-Y", "T-S T-R T-Y T-X S-R S-Y S-X R-Y R-X Y-X", "T-R T-X R-X"},
        {"a join between references to two targets moves nothing",
         "folder A; T; U; folder B; R -> U; Q -> T; folder C; S -> T; S >- R", "S, R, Q", "S-R",
         "T-Q T-S Q-S U-R", "T-Q T-S Q-S U-R"},
        {"joins to shortcuts that nobody asked for move nothing",
         "folder A; T; folder B; S -> T; folder C; R -> S; R >- S", "R", "R-S", "T-S T-R S-R",
         "T-S T-R S-R"},
        // The join moves D1 beside B1; Apart, of another kind, stands for B under the second rule.
        {"everything at once",
         R"(folder A; T
            folder B; B1 -> T; Apart ->2 T
            folder C; C1 -> B1
            folder D; D1 -> C1; B1 >- D1; U -> V)",
         "D1, Apart, C1, B1", "B1-D1", "T-B1 T-D1 T-C1 B1-D1 B1-C1 D1-C1", "T-Apart T-C1 Apart-C1"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Request byTarget(row.model, kByTarget);
        byTarget.Build(row.subjects, row.joins);
        EXPECT_EQ(byTarget.Joins(), row.byTarget);
        for (const int rule : {kByParent, 2, -1}) {
            Request byContainer(row.model, rule);
            byContainer.Build(row.subjects, "", row.joins);
            EXPECT_EQ(byContainer.Joins(), row.byContainer);
        }
    }
}

TEST(ShortcutInfo, KnowsTheGroupOfEachShortcutOnceBuilt)
{
    Request request(ThreeFolders, kByParent);
    EXPECT_EQ(request.KeyOf("New"), "New");
    request.Build("Orders, Old, New, Far");
    const std::string joins = request.Joins();
    EXPECT_EQ(request.KeyOf("New"), "Orders");
    EXPECT_EQ(request.KeyOf("Far"), "Orders");
    EXPECT_EQ(request.KeyOf("Old"), "Old");
    EXPECT_EQ(request.KeyOf("Orders"), "Orders");
    EXPECT_EQ(request.KeyOf("Old"), "Old");
    const amd_id behindAll{1 << 30, IdClassShortcut, 1};
    EXPECT_EQ(request.info->GetGroupKey(behindAll), behindAll);
    request.Build("Far");
    EXPECT_EQ(request.Joins(), joins);
}

TEST(ShortcutInfo, GivesInformationAboutItsOwnJoins)
{
    Request request(ThreeFolders, kByTarget);
    AQE_I_Refiner::QEjoinInfo info;
    EXPECT_FALSE(request.info->GetJoinInfo({100, IdClassShortcutJoin, 0}, info));
    request.Build("New");
    info.name = "before";
    for (const amd_id& id : {amd_id(100, IdClassRelationship, 0), amd_id(100, 700001, 1),
                             amd_id(100, 700001, -1), request.names.Id("Orders")}) {
        EXPECT_FALSE(request.info->GetJoinInfo(id, info)) << ToText(id);
        EXPECT_EQ(info.name, "before");
    }
    EXPECT_FALSE(request.info->GetJoinInfo({5, 700001, 0}, info));
    EXPECT_EQ(info.joinId, amd_id(100, 700001, 0));
    info.joinId.domain = 5;
    EXPECT_FALSE(request.info->GetJoinInfo(info.joinId, info));

    EXPECT_TRUE(request.info->GetJoinInfo({100, 700001, 0}, info));
    EXPECT_EQ(info.weight, AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeShortcut));
    EXPECT_EQ(info.name + info.expression, "");
    const BMT_I_Association::CardinalityRange one{11, 11};
    EXPECT_TRUE(info.leftCardinality == one && info.rightCardinality == one);
}

TEST(ShortcutInfo, LeavesOutShortcutsThatLeadNowhere)
{
    Request request(ThreeFolders, kByTarget);
    request.gateway.Replace({.id = request.names.Id("Old"), .referenced = request.names.Id("Far")});
    request.Build("Old, Far");
    EXPECT_EQ(request.Joins(), "");

    Request orphan(ThreeFolders, kByTarget);
    orphan.gateway.Hide(orphan.names.Id("Orders"));
    orphan.Build("Old, New");
    EXPECT_EQ(orphan.Joins(), "");
}

TEST(ShortcutInfo, GroupsByIdWhatVanishesBeforeItIsGrouped)
{
    const struct
    {
        int rule;
        std::string joins;
    } rows[] = {{kByTarget, ""}, {kByParent, "Orders-Old Orders-Far Old-Far"}};
    for (const auto& [rule, joins] : rows) {
        Request request(ThreeFolders, rule);
        request.gateway.LoseAllAfter(kCallsBeforeGrouping);
        request.Build(kThreeShortcuts);
        EXPECT_EQ(request.Joins(), joins);
    }
}

TEST(ShortcutInfo, MovesShortcutsToATargetWhoseIdIsBehindTheirs)
{
    Request request("folder B; T; folder A; S -> T; T >- S; folder C; R -> T", kByParent);
    const ModelText& names = request.names;
    const amd_id target(names.Id("T").domain + 1, IdClassQuerySubject, 1);
    request.gateway.Replace({.id = target, .name = "T", .parent = names.Id("B")});
    for (const auto& [name, folder] : {std::pair("S", "A"), std::pair("R", "C")}) {
        request.gateway.Replace(
            {.id = names.Id(name), .name = name, .parent = names.Id(folder), .referenced = target});
    }
    request.gateway.Replace({.id = names.Id("T-S"), .left = target, .right = names.Id("S")});
    request.Build("S, R", "T-S");
    const auto& joins = request.info->GetShortcutJoins();
    ASSERT_EQ(joins.size(), 1U);
    EXPECT_EQ(joins[0].leftQuerySubject, names.Id("R"));
    EXPECT_EQ(joins[0].rightQuerySubject, target);
}

TEST(ShortcutInfo, LeavesJoinedReferencesWhereTheyAreWhenTheTargetLiesNowhere)
{
    constexpr const char* kModel = "folder P1; T; folder P2; A -> T; B -> T; T - A : ta";
    Request request(kModel, kByParent);
    request.Build("A, B", "ta");
    EXPECT_EQ(request.Joins(), "T-B") << "A counts as lying with T";

    Request nowhere(kModel, kByParent);
    nowhere.gateway.Replace({.id = nowhere.names.Id("T"), .name = "T"});
    nowhere.Build("A, B", "ta");
    EXPECT_EQ(nowhere.Joins(), "T-A") << "both stay together, and the first name counts";
}

TEST(ShortcutInfo, PrefersTheLeastIdAmongEqualNames)
{
    Request request("folder A; T; folder B; S -> T; R -> T", kByParent);
    request.gateway.Replace({.id = request.names.Id("R"),
                             .name = "S",
                             .parent = request.names.Id("B"),
                             .referenced = request.names.Id("T")});
    request.Build("S, R");
    EXPECT_EQ(request.Joins(), "T-S");
}

TEST(ShortcutInfo, DumpsAndLogsItsGroups)
{
    const qe::LogCapture log(11);
    Request empty(ThreeFolders, kByTarget);
    empty.Build("Orders");
    Request request(ThreeFolders, kByParent);
    request.Build("Orders, Old, New, Far");
    const std::string dump = "QuerySubjectShortcutInfo::Dump\n"
                             "Shortcut groups:\n"
                             "Orders(100:1) <-- New(109:2);Far(109:3);\n"
                             "Joins for the shortcuts:\n"
                             "Orders(100:1) <1:1--1:1> New(109:2)\n"
                             "Orders(100:1) <1:1--1:1> Far(109:3)\n"
                             "New(109:2) <1:1--1:1> Far(109:3)\n";
    const std::size_t callsWithLog = request.gateway.calls.GetCallCount();
    EXPECT_EQ(request.Dump(), dump);

    const std::vector<qe::LogEntry> entries = log.GetEntries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].text, "QuerySubjectShortcutInfo::Dump\nShortcut groups:\n"
                               "Joins for the shortcuts:\n");
    EXPECT_EQ(entries[1].text, dump);
    EXPECT_EQ(entries[1].name, QERes::getString(340));
    EXPECT_EQ(entries[1].title, "Join Information for the Shortcuts");
    EXPECT_EQ(entries[1].level, 11);
    EXPECT_EQ(entries[1].component, 0xA9E143D7U);
    EXPECT_EQ(entries[1].message, 0xA9E60195U);

    const qe::LogCapture quiet(10);
    Request unlogged(ThreeFolders, kByParent);
    unlogged.Build("Orders, Old, New, Far");
    EXPECT_THAT(quiet.GetEntries(), testing::IsEmpty());
    EXPECT_LT(unlogged.gateway.calls.GetCallCount(), callsWithLog);

    request.gateway.Hide(request.names.Id("Orders"));
    EXPECT_THAT(request.Dump(), testing::HasSubstr("\n(100:1) <-- New(109:2)"));
}

TEST(ShortcutInfo, StopsForGoodWhenTheGatewayFailsWhileGrouping)
{
    const qe::LogCapture log(11);
    Request whole(ThreeFolders, kByTarget);
    whole.Build(kThreeShortcuts);
    const std::string wanted = whole.Joins();
    const std::size_t calls = whole.gateway.calls.GetCallCount();
    ASSERT_GT(calls, kCallsBeforeGrouping);
    for (std::size_t call = 1; call <= calls; ++call) {
        SCOPED_TRACE(call);
        Request request(ThreeFolders, kByTarget);
        request.gateway.calls.FailAtCall(call);
        EXPECT_THROW(request.Build(kThreeShortcuts), ToldFailure);
        const std::string left = request.Joins();
        request.Build(kThreeShortcuts);
        EXPECT_EQ(request.Joins(), call <= kCallsBeforeGrouping ? wanted : left);
        EXPECT_EQ(request.KeyOf("New"), request.Joins().empty() ? "New" : "Orders");
    }
}

TEST(ShortcutInfo, KnowsTheGroupsThatWereMadeBeforeTheGatewayFailed)
{
    // Groups come in the order of their targets, against that of the shortcuts.
    const char* const model = "folder P1; A; B; C\n"
                              "folder P2; Third -> C; Second -> B; First -> A";
    const std::string subjects = "First, Second, Third";
    const qe::LogCapture quiet(10);
    Request whole(model, kByTarget);
    whole.Build(subjects);
    Request request(model, kByTarget);
    request.gateway.calls.FailAtCall(whole.gateway.calls.GetCallCount());
    EXPECT_THROW(request.Build(subjects), ToldFailure);
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(request.KeyOf("First"), "A");
        EXPECT_EQ(request.KeyOf("Second"), "B");
        EXPECT_EQ(request.KeyOf("Third"), "Third");
    }
    EXPECT_EQ(whole.KeyOf("Third"), "C");
}

} // namespace
