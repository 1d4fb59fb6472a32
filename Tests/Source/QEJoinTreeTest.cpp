#include "QEJoinTree.h"

#include "AQE_Governors.h"
#include "AQE_I_Authentication.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "AQE_JoinCache.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"
#include "HBNException.h"
#include "ORVAssertError.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/JoinGraphModel.h"

#include <gmock/gmock.h>

#include <memory>
#include <sstream>

namespace {

using qe::SettingsOverride;
using qe::test::CountingGateway;
using qe::test::JoinGraphModel;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Ids = std::vector<amd_id>;
using Texts = std::vector<std::string>;

enum class EGrowth
{
    CheapestTrees,
    Pairwise,
    Library,
};

/// A request as the tests put it: names with blanks between them.
struct Question
{
    std::string subjects;
    std::string favouredJoins{};
    std::string requiredJoins{};
    std::string avoidedJoins{};
    std::string favouredSubjects{};
};

std::unique_ptr<AQE_JoinTree> Grow(JoinGraphModel& model, const Question& question, EGrowth growth,
                                   AQE_Governors* governors = nullptr,
                                   AQE_I_QuerySubjectShortcutInfo* shortcutInfo = nullptr)
{
    const SettingsOverride newAlgo("General Options", "NewAlgo",
                                   growth == EGrowth::CheapestTrees ? 1 : 0);
    const Ids avoided = model[question.avoidedJoins];
    if (growth == EGrowth::Library)
        return std::make_unique<AQE_JoinTree>(
            &model.GetGateway(), model[question.subjects], model[question.favouredJoins],
            model[question.requiredJoins], model.Subjects(), model.Joins(), governors,
            &model.context, &avoided, shortcutInfo);
    return std::make_unique<AQE_JoinTree>(
        &model.GetGateway(), model[question.subjects], model[question.favouredJoins],
        model[question.requiredJoins], model.Subjects(), model.Joins(), governors, &model.context,
        &avoided, shortcutInfo, false, model[question.favouredSubjects]);
}

Texts PathsOf(const JoinGraphModel& model, const AQE_JoinTree& tree)
{
    std::vector<Ids> paths;
    tree.GetJoinPaths(paths);
    return model.Texts(paths);
}

Texts Paths(const std::string& text, const Question& question, EGrowth growth)
{
    JoinGraphModel model(text);
    return PathsOf(model, *Grow(model, question, growth));
}

std::string TreeJoins(const JoinGraphModel& model, const AQE_JoinTree& tree)
{
    Ids joins;
    tree.GetTreeJoins(joins);
    return model.Text(joins);
}

TEST(PairwiseGrowth, MergesTheCheapestPathAndAmongEqualsThatOfTheEarlierPair)
{
    // Each pair of subjects is two steps apart, over a node of its own.
    const std::string ring = "A-X:1 X-B:1 A-Y:1 Y-C:1 B-Z:1 Z-C:1";
    EXPECT_THAT(Paths(ring, {"A B C"}, EGrowth::Pairwise), ElementsAre("A-X X-B A-Y Y-C"));
    EXPECT_THAT(Paths(ring, {"B C A"}, EGrowth::Pairwise), ElementsAre("A-X X-B B-Z Z-C"));
    EXPECT_THAT(Paths("A-X:1 X-B:2 A-Y:1 Y-C:1 B-Z:1 Z-C:1", {"A B C"}, EGrowth::Pairwise),
                ElementsAre("A-Y Y-C B-Z Z-C"));
}

TEST(PairwiseGrowth, JoinsNewNodesInsteadOfGoingAllTheWay)
{
    // C is nearest to M, the node in the middle of A and B, but from A and B it is nearer not to
    // pass over M; N is reached only by starting from M.
    EXPECT_THAT(Paths("A-M:4 M-B:4 M-N:3 N-C:3 A-C:9 B-C:9", {"A B C"}, EGrowth::Pairwise).front(),
                "A-M M-B M-N N-C");
}

TEST(PairwiseGrowth, ClosesTheTreeWithEveryJoinAmongItsSubjects)
{
    JoinGraphModel model("A-B:1 B-C:1 C-D:1 A-C:5 x=A-B:9 A-A:1 D-E:1");
    const qe::LogCapture log(7);
    const auto tree = Grow(model, {"A B C"}, EGrowth::Pairwise);
    EXPECT_EQ(TreeJoins(model, *tree), "A-B B-C A-C x A-A") << "D was not reached";
    EXPECT_THAT(PathsOf(model, *tree),
                ElementsAre("A-B B-C", "A-B A-C", "B-C A-C", "B-C x", "A-C x"))
        << "spanning trees of A, B and C in order of weight";
    EXPECT_EQ(tree->GetPathWeight(model["B-C x"]), 10);
    EXPECT_FALSE(tree->IsConnected()) << "tells of the cheapest-trees search only";

    int takenTwice = 0;
    for (const auto& entry : log.GetEntries())
        takenTwice += entry.text == "AA adding join left=100:1 right=100:3";
    EXPECT_EQ(takenTwice, 2);
}

TEST(PairwiseGrowth, StopsUnconnectedAndGivesWhatItHas)
{
    JoinGraphModel model("A-B:1 B-C:2 D-E:3");
    const auto tree = Grow(model, {"A B D E"}, EGrowth::Pairwise);
    EXPECT_THAT(PathsOf(model, *tree), ElementsAre("A-B D-E"));
    EXPECT_THAT(PathsOf(model, *Grow(model, {"A D"}, EGrowth::Pairwise)), IsEmpty());
}

TEST(PairwiseGrowth, ToleratesUnknownSubjects)
{
    JoinGraphModel model("A-B:1 B-C:1");
    const SettingsOverride newAlgo("General Options", "NewAlgo", 0);
    for (const char* nodes : {"A B", "B C"}) {
        const AQE_JoinTree tree(&model.GetGateway(), model["A C"], {}, {}, model[nodes],
                                model.Joins(), nullptr, &model.context, nullptr, nullptr, false,
                                {});
        EXPECT_THAT(PathsOf(model, tree), IsEmpty()) << "C or A is no candidate node";
    }
    const AQE_JoinTree tree(&model.GetGateway(), model["A C"], {}, model["B-C"], model["A B"],
                            model.Joins(), nullptr, &model.context, nullptr, nullptr, false, {});
    EXPECT_THAT(PathsOf(model, tree), ElementsAre("A-B B-C")) << "a required join brings C along";
}

TEST(JoinTree, TakesRequiredJoinsThatConnectEverythingAsTheyAre)
{
    const std::string text = "A-B:5 B-C:6 A-C:1";
    for (const EGrowth growth : {EGrowth::CheapestTrees, EGrowth::Pairwise}) {
        JoinGraphModel model(text);
        const auto tree = Grow(model, {"A C", "", "A-B B-C", "A-B"}, growth);
        EXPECT_THAT(PathsOf(model, *tree), ElementsAre("A-B B-C"));
        EXPECT_FALSE(tree->IsConnected());
        if (growth == EGrowth::Pairwise)
            EXPECT_EQ(tree->GetPathWeight(model["A-B B-C"]), 4) << "the tree keeps its own weight";
        else
            EXPECT_EQ(tree->GetPathWeight(model["A-B B-C"]), 8890) << "the full graph's weights";
    }
    JoinGraphModel single(text);
    EXPECT_THAT(PathsOf(single, *Grow(single, {"A"}, EGrowth::CheapestTrees)), IsEmpty());
    JoinGraphModel chain("A-B:5 B-C:6");
    for (const EGrowth growth : {EGrowth::CheapestTrees, EGrowth::Pairwise, EGrowth::Library})
        EXPECT_THAT(PathsOf(chain, *Grow(chain, {"A", "", "B-C"}, growth)), ElementsAre("A-B B-C"))
            << "a single subject, and what it must have";
}

TEST(JoinTree, IsBuiltWithoutCandidateJoinsButNotWithoutNodes)
{
    JoinGraphModel model("A-B B-C");
    const Ids required = model["A-B"];
    const auto grow = [&](std::string_view nodes, bool isLibrary) {
        const qe::RefinerServices services{.gateway = &model.GetGateway()};
        const Ids subjects = model["A B"];
        const Ids candidates = model[nodes];
        const qe::JoinTreeRequest request{
            .subjects = subjects,
            .requiredJoins = required,
            .nodes = candidates,
            .joins = qe::kNoIds,
            .use = isLibrary ? qe::JoinTreeRequest::EUse::ConnectOverShortcuts
                             : qe::JoinTreeRequest::EUse::Connect};
        return TreeJoins(model, AQE_JoinTree(services, request));
    };
    for (const bool isLibrary : {false, true}) {
        EXPECT_EQ(grow("A B", isLibrary), "A-B");
        EXPECT_EQ(grow("", isLibrary), "");
    }

    const struct
    {
        const char* first;
        const char* second;
        const char* nodes;
        const char* joins;
        int weight;
    } rows[] = {
        {"A", "B", "A B", "A-B", 17}, {"A", "A", "A B", "A-B", 8888}, {"", "B", "A B", "A-B", 5},
        {"A", "", "A B", "A-B", 5},   {"A", "B", "", "A-B", 5},       {"A", "B", "A B", "", 5},
    };
    for (const auto& row : rows) {
        std::vector<Ids> paths{required};
        std::vector<AQE_JoinTree::EndPair> pairs(1);
        int weight = 5;
        const AQE_JoinTree tree(&model.GetGateway(), model[row.first], {}, model[row.second], {},
                                {}, {}, model[row.nodes], model[row.joins], paths, weight, pairs,
                                nullptr, nullptr, nullptr);
        EXPECT_EQ(weight, row.weight);
        EXPECT_EQ(paths.size(), row.weight == 17 ? 2U : 1U) << "appended";
        EXPECT_EQ(pairs.size(), row.weight == 8888 ? 0U : 1U) << "replaced";
    }
}

TEST(JoinTree, AnswersWithDefinedValuesWhenNothingWasBuilt)
{
    JoinGraphModel model("A-B");
    std::ostringstream trace;
    const AQE_JoinTree trees[] = {
        {&model.GetGateway(), {}, {}, model.Subjects(), model.Joins(), nullptr, nullptr},
        {&model.GetGateway(), model["A B"], {}, {}, model.Joins(), trace, nullptr, nullptr}};
    for (const AQE_JoinTree& tree : trees) {
        std::vector<Ids> paths;
        Ids joins;
        tree.GetJoinPaths(paths);
        tree.GetTreeJoins(joins);
        EXPECT_THAT(paths, IsEmpty());
        EXPECT_THAT(joins, IsEmpty());
        EXPECT_EQ(tree.GetPathWeight(model["A-B"]), 0);
        EXPECT_FALSE(tree.IsConnected());
    }
    const AQE_JoinTree plain(&model.GetGateway(), model["A B"], {}, model.Subjects(), model.Joins(),
                             nullptr, nullptr);
    EXPECT_THAT(PathsOf(model, plain), ElementsAre("A-B"));
}

TEST(JoinTree, ConnectivityOnlyGivesOneTreeOfTheGraphAsItIs)
{
    JoinGraphModel model("A-B:1 B-C:1 A-C:5");
    const AQE_JoinTree tree(&model.GetGateway(), model["A C"], model["A-C"], {}, model.Subjects(),
                            model.Joins(), nullptr, &model.context, nullptr, nullptr, true, {});
    Ids joins = model["A-C"];
    tree.GetConnectingJoins(joins);
    EXPECT_EQ(model.Text(joins), "A-B B-C");
}

TEST(LibraryGrowth, PassesOverShortcutJoinsAndWeighsByNode)
{
    JoinGraphModel model("t>A A-B t-C");
    AQE_Governors governors;
    const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcutInfo(
        AQE_I_QuerySubjectShortcutInfo::Create(&model.GetGateway(), &governors, &model.context));
    const qe::LogCapture log(7);
    const auto tree = Grow(model, {"B C"}, EGrowth::Library, nullptr, shortcutInfo.get());
    EXPECT_EQ(TreeJoins(model, *tree), "A-B t-C 700001:0");
    const auto entries = log.GetEntries();
    ASSERT_EQ(entries.size(), 5U);
    EXPECT_EQ(entries[3].text, "Q GetShortestPathTree num nodes/query subjects: 4");
    EXPECT_EQ(entries[4].text, "Q GetShortestPathTree num edges/joins: 3");
    EXPECT_EQ(tree->GetPathWeight(model["A-B t-C"]), 0);

    // The pairwise algorithm finds the same way but cannot read the synthetic join.
    const auto pairwise = Grow(model, {"B C"}, EGrowth::Pairwise, nullptr, shortcutInfo.get());
    EXPECT_EQ(TreeJoins(model, *pairwise), "A-B t-C");
    const auto cheapest = Grow(model, {"B C"}, EGrowth::CheapestTrees, nullptr, shortcutInfo.get());
    EXPECT_THAT(PathsOf(model, *cheapest), ElementsAre("A-B 700001:0 t-C"));
}

TEST(PairwiseGrowth, CannotCloseAtAJoinThatItCannotRead)
{
    JoinGraphModel model("t>A A-B");
    AQE_Governors governors;
    const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcutInfo(
        AQE_I_QuerySubjectShortcutInfo::Create(&model.GetGateway(), &governors, &model.context));
    try {
        Grow(model, {"A B"}, EGrowth::Pairwise, nullptr, shortcutInfo.get());
        ADD_FAILURE() << "the synthetic join at A has no ends that could be read";
    } catch (const ORVAssertError& error) {
        EXPECT_EQ(error.GetAssertedText(),
                  "ORV_ASSERT(right == mMinimumSpanningTreeEntities [i] || left == "
                  "mMinimumSpanningTreeEntities [i]);");
        EXPECT_EQ(error.GetLocation().file, "Source/QEJoinTree");
        EXPECT_EQ(error.GetLocation().line, 1305);
    }
}

class User : public AQE_I_Authentication
{
public:
    std::vector<I18NString> GetUserClasses() const override { return {"Analyst"}; }
};

/// A is apart from B and C, which are connected; with three subjects two pairs have no path.
std::string Govern(EGrowth growth, const AQE_Governors* governors,
                   AQE_RequestContext::ECommandType command)
{
    JoinGraphModel model("A-X B-C");
    CountingGateway gateway(model.GetGateway());
    for (const amd_id& subject : model.Subjects()) {
        qe::model::ObjectRecord record = *model.GetModel()->Find(subject);
        record.displayName = "the " + record.name;
        gateway.Replace(record);
    }
    AQE_RequestContext context(command);
    User user;
    context.SetAuthentication(&user);
    AQE_Governors copy = governors == nullptr ? AQE_Governors() : *governors;
    const Ids subjects = growth == EGrowth::Library ? model["A B"] : model["A B C"];
    const SettingsOverride newAlgo("General Options", "NewAlgo",
                                   growth == EGrowth::CheapestTrees ? 1 : 0);
    AQE_Governors* const given = governors == nullptr ? nullptr : &copy;
    const qe::LogCapture log(1);
    std::ostringstream seen;
    try {
        if (growth == EGrowth::Library)
            AQE_JoinTree(&gateway, subjects, {}, {}, model.Subjects(), model.Joins(), given,
                         &context, nullptr, nullptr);
        else
            AQE_JoinTree(&gateway, subjects, {}, {}, model.Subjects(), model.Joins(), given,
                         &context, nullptr, nullptr, false, {});
    } catch (const HBNException& error) {
        const auto& message = error.GetMessages().at(0);
        // The search writes its own notices there, too.
        EXPECT_EQ(log.GetEntries().back().message, message.GetNumber());
        seen << "error " << error.GetSeverity() << " " << error.GetCode() << " " << std::hex
             << message.GetNumber() << std::dec << " " << error.GetLocation().file << ":"
             << error.GetLocation().line << " " << error.GetComponent();
        for (const auto& parameter : message.GetParameters())
            seen << " <" << parameter.GetText() << ">";
    }
    for (const auto& warning : context.GetUserMessages())
        seen << "warning " << static_cast<int>(warning.severity) << " "
             << static_cast<int>(warning.type) << " " << std::hex << warning.message.GetNumber()
             << std::dec << " <" << warning.message.GetParameters().at(0).GetText() << ">;";
    return seen.str();
}

TEST(CrossProductGovernor, DecidesByItsValueTheWayOfGrowingAndTheCommand)
{
    const std::string warning = "warning -2 4 a9e29a41 <Analyst>;";
    const std::string error = "error 1 101 a9ee8a4d Source/QEJoinTree:";
    const std::string pairNames = " QE <A, B> <Analyst>";
    const std::string names = " QE <the A, the B> <Analyst>";
    const std::string allNames = " QE <the A, the B, the C> <Analyst>";
    struct Row
    {
        EGrowth growth;
        std::string whenZero;
        std::string whenOne;
        std::string whenTwo;
        std::string whenOther;
    };
    const Row rows[] = {
        {EGrowth::Pairwise, "", warning + warning, error + "1088" + pairNames, ""},
        {EGrowth::Library, "", warning, error + "935" + names, ""},
        {EGrowth::CheapestTrees, warning, warning, error + "547" + allNames, warning},
    };
    for (const Row& row : rows) {
        const auto govern = [&](int value, AQE_RequestContext::ECommandType command) {
            const AQE_Governors governors{value, 0};
            return Govern(row.growth, &governors, command);
        };
        const auto query = AQE_RequestContext::CommandTypeQuery;
        EXPECT_EQ(Govern(row.growth, nullptr, query), "");
        EXPECT_EQ(govern(0, query), row.whenZero);
        EXPECT_EQ(govern(1, query), row.whenOne);
        EXPECT_EQ(govern(2, query), row.whenTwo);
        EXPECT_EQ(govern(7, query), row.whenOther);
        const auto harmless = static_cast<AQE_RequestContext::ECommandType>(3);
        EXPECT_EQ(govern(1, harmless), row.whenOne);
        EXPECT_EQ(govern(2, harmless), "");

        const SettingsOverride off("QueryEngine", "DoNotApplyCrossProductGovernor", 1);
        const bool isSwitchedOff = row.growth == EGrowth::CheapestTrees;
        EXPECT_EQ(govern(1, query), isSwitchedOff ? "" : row.whenOne);
        EXPECT_EQ(govern(2, query), isSwitchedOff ? "" : row.whenTwo);
    }
}

TEST(CrossProductGovernor, CountsThePositionOfSubjectsWithoutObject)
{
    JoinGraphModel model("A-X B-C");
    AQE_Governors governors{2, 0};
    const amd_id unknown{0, 100, 99};
    try {
        const AQE_JoinTree tree(&model.GetGateway(), {unknown, model["B"].front()}, {}, {},
                                model.Subjects(), model.Joins(), &governors, nullptr, nullptr,
                                nullptr, false, {});
        ADD_FAILURE();
    } catch (const HBNException& error) {
        EXPECT_EQ(error.GetMessages().at(0).GetParameters().at(0).GetText(), ", B");
        EXPECT_EQ(error.GetMessages().at(0).GetParameters().at(1).GetText(), "");
    }
}

} // namespace
