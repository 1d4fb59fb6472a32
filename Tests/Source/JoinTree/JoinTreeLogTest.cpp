#include "QEJoinTree.h"

#include "AQE_Governors.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"
#include "Tests/Support/JoinGraphModel.h"

#include <gmock/gmock.h>

#include <memory>
#include <regex>

namespace {

using qe::SettingsOverride;
using qe::test::JoinGraphModel;
using testing::ElementsAre;
using Ids = std::vector<amd_id>;
using Texts = std::vector<std::string>;

/// Returns what the pairwise growth logs, with "@" for addresses.
Texts LogOf(JoinGraphModel& model, const Ids& subjects,
            AQE_I_QuerySubjectShortcutInfo* shortcutInfo = nullptr)
{
    const SettingsOverride newAlgo("General Options", "NewAlgo", 0);
    const qe::LogCapture log(7);
    const AQE_JoinTree tree(&model.GetGateway(), subjects, {}, {}, model.Subjects(), model.Joins(),
                            nullptr, &model.context, nullptr, shortcutInfo, false, {});
    Texts lines;
    for (const auto& entry : log.GetEntries()) {
        EXPECT_EQ(entry.level, 7);
        lines.push_back(
            std::regex_replace(entry.text.ToStdString(), std::regex("0x[0-9a-f]{3,}"), "@"));
    }
    return lines;
}

TEST(JoinTreeLog, TellsOfSubjectsThatStayApart)
{
    JoinGraphModel model("A-B:1 C-D:1");
    EXPECT_THAT(
        LogOf(model, model["A B C"]),
        ElementsAre(
            "number of entities: 3", "entity id=100:1 A", "entity id=100:2 B", "entity id=100:3 C",
            "weight:1 joins:\n    id=102:1 left=100:1 right=100:2 (A, B)", "added distance: @ ",
            "weight:-1", "weight:-1", "number of shortest distances: 1", "processing distance: @ 1",
            "processing distance: 0x0 NULL", "num shortest distances remaining: 0"));
}

TEST(JoinTreeLog, ShowsPathsWhatRemainsAndTheClosing)
{
    JoinGraphModel model("A-B:1 B-C:1");
    const std::string ab = "id=102:1 left=100:1 right=100:2 (A, B)";
    const std::string bc = "id=102:2 left=100:2 right=100:3 (B, C)";
    EXPECT_THAT(LogOf(model, model["A B C"]),
                ElementsAre("number of entities: 3", "entity id=100:1 A", "entity id=100:2 B",
                            "entity id=100:3 C", "weight:1 joins:\n    " + ab, "added distance: @ ",
                            "weight:2 joins:\n    " + ab + "\n    " + bc, "added distance: @ ",
                            "weight:1 joins:\n    " + bc, "added distance: @ ",
                            "number of shortest distances: 3", "processing distance: @ 1",
                            "processing distance: @ 1", "num shortest distances remaining: 1",
                            "distance @ w=2 fromIndex=0 toIndex=2", "AA for id: 100:2 num joins:2",
                            "AA adding join left=100:1 right=100:2",
                            "AA adding join left=100:2 right=100:3", "AA for id: 100:1 num joins:1",
                            "AA adding join left=100:1 right=100:2", "AA for id: 100:3 num joins:1",
                            "AA adding join left=100:2 right=100:3"));
}

TEST(JoinTreeLog, CountsWhatRemainsOncePerEntityThatReachedANode)
{
    JoinGraphModel model("a-x:1 b-x:1 c-y:1 d-y:1 e-z:1 f-z:1 x-y:1 z-y:1");
    EXPECT_THAT(LogOf(model, model["a b c d e f"]),
                testing::Contains("num shortest distances remaining: 28"));
}

TEST(JoinTreeLog, HasNoNamesForWhatCannotBeRead)
{
    // Synthetic joins have no ends that could be read, and the empty id is no object.
    JoinGraphModel shortcuts("t>A A-B t-C");
    AQE_Governors governors;
    const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcutInfo(
        AQE_I_QuerySubjectShortcutInfo::Create(&shortcuts.GetGateway(), &governors, nullptr));
    Ids subjects = shortcuts["B C"];
    subjects.emplace_back();
    EXPECT_THAT(LogOf(shortcuts, subjects, shortcutInfo.get()),
                testing::IsSupersetOf(Texts{"entity id=0:0 ",
                                            "weight:36 joins:\n"
                                            "    id=102:1 left=100:1 right=100:2 (A, B)\n"
                                            "    id=700001:0 left=0:0 right=0:0 (sss, sss)\n"
                                            "    id=102:2 left=109:1 right=100:3 (t, C)"}));
}

} // namespace
