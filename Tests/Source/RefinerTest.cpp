#include "Refiner.h"

#include "AQE_Governors.h"
#include "AQE_I_PathSelector.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"
#include "HBNException.h"
#include "Tests/Source/ProcessSettings.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"
#include "Tests/Support/RecordingSelector.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>

namespace {

using qe::SettingsOverride;
using qe::test::CountingGateway;
using qe::test::ModelText;
using qe::test::RecordingSelector;
using testing::ElementsAre;
using testing::IsEmpty;
using Ids = std::vector<amd_id>;
using Texts = std::vector<std::string>;

// Six ways to connect Orders, Region and Date with three joins each: over the customer or the
// store, with the customer joined twice, and with the date at either end.
constexpr const char* kSales = R"(
    folder Sales
    Orders >- Customer : oc; Orders >-< Customer : occ; Orders >- Store : os
    Customer >- Region : cr; Orders >- Date : od; Customer >- Date : cd
    folder Sales/Archive
    Store >- Region : sr
)";

/// A refiner over a model, with a join cache and a selector that notes what it is shown.
struct Request
{
    explicit Request(std::string_view text, bool facts = false, bool straight = false,
                     AQE_Governors* governors = nullptr)
        : model(text), gateway(model.GetGateway())
    {
        context.SetJoinCache(std::make_unique<AQE_JoinCache>());
        refiner = AQE_I_Refiner::Create(&gateway, &selector, governors, &context, facts, straight);
    }

    std::string JoinPath(std::string_view subjects, std::string_view favoured = "",
                         std::string_view required = "")
    {
        Ids path;
        refiner->ComputeJoinPath(model.Ids(subjects), model.Ids(favoured), model.Ids(required),
                                 model.Subjects(), model.Joins(), {}, path);
        return model.Names(path);
    }

    bool BestPaths(std::string_view subjects, Texts& texts, std::string_view avoided = "")
    {
        std::vector<Ids> paths;
        const bool result =
            refiner->ComputeBestJoinPaths(model.Ids(subjects), {}, {}, model.Subjects(),
                                          model.Joins(), paths, model.Ids(avoided), {});
        for (const Ids& path : paths)
            texts.push_back(model.Names(path));
        return result;
    }

    std::string JoinedSubjects(std::string_view subjects)
    {
        Ids joined;
        refiner->GetJoinedQuerySubjects(model.Ids(subjects), model.Subjects(), model.Joins(),
                                        joined);
        return model.Names(joined);
    }

    /// Returns "path / weight / ends".
    std::string Between(std::string_view first, std::string_view second,
                        std::string_view avoided = "", std::string_view furtherAvoided = "")
    {
        const amd_id before{1, 2, 3};
        Ids path{before};
        Ids ends{before};
        int weight = 0;
        refiner->ComputeJoinPathBetween(model.Ids(first), model.Ids(avoided), model.Ids(second),
                                        model.Ids(furtherAvoided), {}, {}, model.Subjects(),
                                        model.Joins(), path, weight, ends);
        EXPECT_EQ(ends.at(0), before) << "appended";
        ends.erase(ends.begin());
        return model.Names(path) + " / " + std::to_string(weight) + " / " + model.Names(ends);
    }

    Texts BestBetween(std::string_view first, std::string_view second)
    {
        const AQE_Refiner::EndPair before{{1, 2, 3}, {4, 5, 6}};
        std::vector<Ids> paths{{{1, 2, 3}}};
        std::vector<AQE_Refiner::EndPair> ends{before};
        int weight = 0;
        refiner->ComputeBestJoinPathsBetween(model.Ids(first), {}, model.Ids(second), {}, {}, {},
                                             model.Subjects(), model.Joins(), paths, weight, ends);
        EXPECT_EQ(ends.at(0), before) << "appended";
        ends.erase(ends.begin());
        Texts texts{std::to_string(weight)};
        for (std::size_t index = 0; index < paths.size(); ++index)
            texts.push_back(model.Names(paths[index]) + " / " +
                            model.Names({ends.at(index).first, ends.at(index).second}));
        EXPECT_EQ(ends.size(), paths.size());
        return texts;
    }

    ModelText model;
    CountingGateway gateway;
    AQE_RequestContext context;
    RecordingSelector selector;
    AUT_RefPtr<AQE_I_Refiner> refiner;
};

/// The settings of the process and the switches of the refiner that are on, and the candidates as
/// the selector sees them.
class RankedRequests : public testing::TestWithParam<const char*>
{};

// Letters for the paths, in the order of their signatures. The two algorithms list the joins of one
// of them in another order.
const std::map<char, std::string> kPaths{
    {'a', "oc, cr, cd"}, {'b', "occ, cr, cd"}, {'c', "od, cd, cr"}, {'C', "cr, od, cd"},
    {'d', "oc, cr, od"}, {'e', "occ, cr, od"}, {'f', "os, od, sr"},
};

TEST_P(RankedRequests, AreShownToTheSelectorInRankOrder)
{
    if (qe::test::RunsWithOtherCases())
        GTEST_SKIP() << qe::test::kNeedsOwnProcess;
    const std::string row = GetParam();
    const auto isOn = [&row](const char* name) { return row.find(name) != std::string::npos; };
    const std::string order = row.substr(row.rfind(' ') + 1);
    const bool isByFolder = isOn("folder");
    const SettingsOverride newAlgo("General Options", "NewAlgo", isOn("NewAlgo") ? 1 : 0);
    const SettingsOverride byFolder("General Options", "AdjustWeightByFolder", isByFolder);
    Request request(kSales, isOn("facts"), isOn("straight"));
    const std::string chosen = request.JoinPath("Orders, Region, Date");

    Texts expected;
    for (const char letter : order) {
        // Only the join of the archive lies away from what it joins.
        const int weight = isByFolder ? 51000 + (letter == 'f' ? 2 : 0) : 51;
        const bool isLighter = isByFolder && isOn("NewAlgo") && letter != 'f';
        expected.push_back(kPaths.at(letter) + ": " + (isLighter ? "1 " : "0 ") +
                           std::to_string(weight));
    }
    EXPECT_EQ(request.selector.GetShown(request.model), expected);
    EXPECT_EQ(chosen, kPaths.at(order.front()));
}

// The pairwise algorithm never reaches the store.
INSTANTIATE_TEST_SUITE_P(AllSettings, RankedRequests,
                         testing::Values("NewAlgo abcdef", "NewAlgo straight cdefab",
                                         "NewAlgo facts adfcbe", "NewAlgo facts straight dfaceb",
                                         "NewAlgo folder abcdef", "NewAlgo folder straight cdeabf",
                                         "NewAlgo folder facts adcbef",
                                         "NewAlgo folder facts straight dacebf", "abCde",
                                         "straight Cdeab", "facts adCbe", "facts straight daCeb",
                                         "folder abCde", "folder facts straight daCeb"));

TEST(JoinPath, ExemptsFavouredAndRequiredJoinsFromTheFolderDistance)
{
    if (qe::test::RunsWithOtherCases())
        GTEST_SKIP() << qe::test::kNeedsOwnProcess;
    const SettingsOverride byFolder("General Options", "AdjustWeightByFolder", 1);
    const char* const model = R"(
        folder F
        A, B
        folder F/G
        A >- B : ab
        A >- B : twin
        A >~ B : query
    )";
    Request request(model);
    request.JoinPath("A, B");
    EXPECT_EQ(request.selector.GetShown(request.model),
              (Texts{"query: 1 17000", "ab: 0 17002", "twin: 0 17002"}));
    Request favouring(model);
    favouring.JoinPath("A, B", "ab, twin");
    EXPECT_EQ(favouring.selector.GetShown(favouring.model), (Texts{"ab: 0 2000", "twin: 0 2000"}));
    Request requiring(std::string(model) + "; B >- C : bc; B >- C : second");
    requiring.JoinPath("A, C", "", "ab");
    EXPECT_EQ(requiring.selector.GetShown(requiring.model),
              (Texts{"ab, bc: 0 19001", "ab, second: 0 19001"}));
}

TEST(JoinPath, CountsNoFoldersAfterTheSettingFailedToAnswer)
{
    if (qe::test::RunsWithOtherCases())
        GTEST_SKIP() << qe::test::kNeedsOwnProcess;
    int reads = 0;
    qe::SettingsOverride::SetProvider(
        [&](const I18NString&, const I18NString& key) -> std::optional<int> {
            if (key == "AdjustWeightByFolder" && ++reads > 0)
                throw std::runtime_error("no settings");
            return std::nullopt;
        });
    Request request(kSales);
    EXPECT_THROW(request.JoinPath("Orders, Region"), std::runtime_error);
    EXPECT_EQ(request.JoinPath("Orders, Region"), "oc, cr");
    EXPECT_EQ(request.selector.GetShown(request.model),
              (Texts{"oc, cr: 0 34", "occ, cr: 0 34", "os, sr: 0 34"}));
    EXPECT_EQ(reads, 1) << "asked once in the life of a process";
    qe::SettingsOverride::SetProvider({});
}

TEST(JoinPath, CountsFoldersAlikeOnTheThreadsThatAskFirst)
{
    if (qe::test::RunsWithOtherCases())
        GTEST_SKIP() << qe::test::kNeedsOwnProcess;
    constexpr std::chrono::seconds kLongEnough(60);
    std::promise<void> isReading;
    std::promise<void> isAnswered;
    std::atomic<int> reads = 0;
    // The first thread is told "on", but only after the second has been told "off" and is done.
    qe::SettingsOverride::SetProvider(
        [&](const I18NString&, const I18NString& key) -> std::optional<int> {
            if (key != "AdjustWeightByFolder")
                return std::nullopt;
            if (++reads > 1)
                return 0;
            isReading.set_value();
            isAnswered.get_future().wait_for(kLongEnough);
            return 1;
        });
    const auto ask = [] {
        Request request(kSales);
        request.JoinPath("Orders, Region");
        return request.selector.GetShown(request.model);
    };
    std::future<Texts> first = std::async(std::launch::async, ask);
    isReading.get_future().wait_for(kLongEnough);
    const Texts second = ask();
    isAnswered.set_value();
    EXPECT_EQ(second, (Texts{"oc, cr: 0 34", "occ, cr: 0 34", "os, sr: 0 34"}));
    EXPECT_EQ(first.get(), second);
    qe::SettingsOverride::SetProvider({});
}

TEST(JoinPath, IsRememberedForTheRequest)
{
    Request request(kSales);
    const Ids noIds;
    Ids path = request.model.Ids("Store");
    const auto compute = [&](std::string_view subjects, std::string_view favoured,
                             std::string_view required, Ids& out) {
        request.refiner->ComputeJoinPath(request.model.Ids(subjects), request.model.Ids(favoured),
                                         request.model.Ids(required), request.model.Subjects(),
                                         request.model.Joins(), noIds, out);
    };
    compute("Orders, Region", "os", "", path);
    EXPECT_EQ(request.model.Names(path), "Store, os, sr") << "appended";

    const std::size_t calls = request.gateway.calls.GetCallCount();
    Ids again = request.model.Ids("cd");
    compute("Region, Orders, Orders", "", "os", again);
    EXPECT_EQ(again, path) << "replaced, by the whole vector of the first time";
    EXPECT_EQ(request.gateway.calls.GetCallCount(), calls);
    compute("Region, Orders", "", "", again);
    EXPECT_NE(again, path);

    Ids untouched = path;
    compute("Orders", "os", "", untouched);
    EXPECT_EQ(untouched, path) << "one query subject needs no join";
    compute("", "", "", untouched);
    EXPECT_EQ(untouched, path);
    EXPECT_EQ(request.context.GetJoinCache()->GetAllJoinPaths().size(), 2U);
}

TEST(JoinPath, LeavesTheSelectorOutWhereThereIsNoChoice)
{
    Request single("A >- B : ab; B >- C : bc");
    EXPECT_EQ(single.JoinPath("A, C"), "ab, bc");
    EXPECT_EQ(single.selector.GetCallCount(), 0);

    Request apart("A >- B : ab; C >- D : cd");
    EXPECT_EQ(apart.JoinPath("A, C"), "");
    EXPECT_THAT(apart.context.GetJoinCache()->GetAllJoinPaths(), IsEmpty());

    const ModelText model(kSales);
    const auto first = AQE_I_PathSelector::CreateFirstPathSelector(nullptr);
    Ids paths[2];
    AQE_I_PathSelector* const selectors[] = {nullptr, first.Get()};
    for (std::size_t index = 0; index < 2; ++index)
        AQE_I_Refiner::Create(&model.GetGateway(), selectors[index], nullptr, nullptr, true, true)
            ->ComputeJoinPath(model.Ids("Orders, Region, Date"), {}, {}, model.Subjects(),
                              model.Joins(), {}, paths[index]);
    EXPECT_EQ(model.Names(paths[0]), "oc, cr, od");
    EXPECT_EQ(paths[1], paths[0]);
    EXPECT_EQ(first->SelectPath({}), 0U);
    EXPECT_EQ(first->SelectAlternative({}), 0U);
}

TEST(JoinPath, TakesTheSelectorsChoiceAndRejectsOneOutOfRange)
{
    Request request(kSales);
    request.selector.Choose(4);
    EXPECT_EQ(request.JoinPath("Orders, Region, Date"), kPaths.at('e'));
    request.selector.Choose(1);
    EXPECT_EQ(request.Between("Orders, Customer", "Region, Date"), "cr / 17 / Customer, Region");
    EXPECT_EQ(request.selector.GetShown(request.model),
              (Texts{"cd: 0 -1", "cr: 0 -1", "od: 0 -1"}));

    const auto expectFailure = [](int line, auto operation) {
        const qe::LogCapture log(1);
        try {
            operation();
            ADD_FAILURE() << "no exception";
        } catch (const HBNException& exception) {
            EXPECT_EQ(exception.GetSeverity(), 1);
            EXPECT_EQ(exception.GetCode(), 1);
            ASSERT_EQ(exception.GetMessages().size(), 1U);
            EXPECT_EQ(exception.GetMessages()[0].GetNumber(), 0xA9EC593CU);
            EXPECT_THAT(exception.GetMessages()[0].GetParameters(), IsEmpty());
            EXPECT_EQ(exception.GetLocation().file, "Source/Refiner");
            EXPECT_EQ(exception.GetLocation().line, line);
            EXPECT_EQ(exception.GetComponent(), "QE");
            ASSERT_EQ(log.GetEntries().size(), 1U) << "logged before it is raised";
            EXPECT_EQ(log.GetEntries()[0].message, 0xA9EC593CU);
            EXPECT_THAT(log.GetEntries()[0].text.ToStdString(),
                        testing::StartsWith("Source/Refiner:" + std::to_string(line) + ": "));
        }
    };
    const ModelText& model = request.model;
    Ids path = model.Ids("cr");
    Ids ends = path;
    int weight = 0;
    for (const std::uint32_t index : {3U, 0xFFFFFFFFU}) {
        request.selector.Choose(index);
        expectFailure(185, [&] {
            request.refiner->ComputeJoinPath(model.Ids("Orders, Region"), {}, {}, model.Subjects(),
                                             model.Joins(), {}, path);
        });
        EXPECT_EQ(model.Names(path), "cr");
    }
    EXPECT_EQ(request.context.GetJoinCache()->GetAllJoinPaths().size(), 1U);
    expectFailure(303, [&] {
        request.refiner->ComputeJoinPathBetween(
            model.Ids("Orders, Customer"), {}, model.Ids("Region, Date"), {}, {}, {},
            model.Subjects(), model.Joins(), path, weight, ends);
    });
    EXPECT_THAT(path, IsEmpty());
    EXPECT_EQ(model.Names(ends), "cr");
}

TEST(JoinPath, GoesOverRolePlayingShortcuts)
{
    AQE_Governors governors;
    Request request(R"(
        Ordered -> Date; Shipped -> Date
        Orders >- Ordered : oo; Orders >- Shipped : os
    )",
                    true, true, &governors);
    EXPECT_EQ(request.JoinPath("Orders, Date"), "");
    ASSERT_EQ(request.context.GetUserMessages().size(), 1U) << "a cross product";

    const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcutInfo(
        AQE_I_QuerySubjectShortcutInfo::Create(&request.gateway, &governors, &request.context));
    request.refiner->SetShortcutInfo(shortcutInfo.get());
    EXPECT_EQ(request.JoinPath("Orders, Date"), "oo, 700001:0");
    EXPECT_EQ(request.selector.GetShown(request.model),
              (Texts{"oo, 700001:0: 0 19", "os, 700001:1: 0 19"}));
    EXPECT_EQ(request.JoinedSubjects("Orders, Shipped"), "Orders, Shipped");

    Ids treeJoins;
    EXPECT_TRUE(request.refiner->GetJoinTreeJoins(
        &request.gateway, request.model.Ids("Orders, Date"), {}, {}, request.model.Subjects(),
        request.model.Joins(), &governors, &request.context, nullptr, treeJoins));
    EXPECT_EQ(request.model.Names(treeJoins), "oo, 700001:0");
}

TEST(JoinPath, DropsSyntheticJoinsWithoutShortcutInformation)
{
    Request request("A >- B : ab");
    const amd_id synthetic{100, 700001, 0};
    AQE_I_Refiner::QEjoinInfo info;
    info.joinId = synthetic;
    info.weight = 2;
    info.leftQuerySubject = request.model.Id("B");
    info.rightQuerySubject = {0, 100, 9};
    request.context.GetJoinCache()->CacheJoinInfo(synthetic, info);
    Ids path;
    request.refiner->ComputeJoinPath(
        {request.model.Id("A"), info.rightQuerySubject}, {}, {},
        {request.model.Id("A"), request.model.Id("B"), info.rightQuerySubject},
        {request.model.Id("ab"), synthetic}, {}, path);
    EXPECT_EQ(request.model.Names(path), "ab");
}

TEST(BestPaths, AreAllCandidatesOrTheLightestWithFewestFactTables)
{
    for (const int newAlgo : {1, 0}) {
        const SettingsOverride algorithm("General Options", "NewAlgo", newAlgo);
        Request request(kSales);
        Texts all;
        EXPECT_EQ(request.BestPaths("Orders, Region, Date", all), newAlgo == 1)
            << "tells of the cheapest-trees search";
        EXPECT_EQ(all.size(), newAlgo == 1 ? 6U : 5U);
    }
    Request request(kSales);
    Texts some;
    EXPECT_TRUE(request.BestPaths("Orders, Region, Date", some, "cd, occ, os"));
    EXPECT_THAT(some, ElementsAre(kPaths.at('d')));
    std::vector<Ids> paths{request.model.Ids("cr")};
    EXPECT_TRUE(request.refiner->ComputeBestJoinPaths(request.model.Ids("Orders"), {}, {}, {}, {},
                                                      paths, {}, {}));
    EXPECT_EQ(paths.size(), 1U);
    EXPECT_FALSE(request.refiner->ComputeBestJoinPaths(
        request.model.Ids("Orders, Region"), {}, {}, request.model.Subjects(), {}, paths, {}, {}));
    EXPECT_EQ(paths.size(), 1U);
    EXPECT_TRUE(request.refiner->ComputeBestJoinPaths(request.model.Ids("Orders, Date"), {}, {},
                                                      request.model.Subjects(),
                                                      request.model.Joins(), paths, {}, {}));
    EXPECT_THAT(paths, ElementsAre(request.model.Ids("od"))) << "replaced";
}

TEST(BestPaths, AreTheLightestWithFewestFactTablesInOtherModes)
{
    if (qe::test::RunsWithOtherCases())
        GTEST_SKIP() << qe::test::kNeedsOwnProcess;
    const SettingsOverride mode("General Options", "FFJoins", 2);
    const SettingsOverride byFolder("General Options", "AdjustWeightByFolder", 1);
    Request request(kSales);
    Texts best;
    EXPECT_TRUE(request.BestPaths("Orders, Region, Date", best));
    EXPECT_THAT(best, testing::UnorderedElementsAre(kPaths.at('a'), kPaths.at('d')));
    std::vector<Ids> paths{request.model.Ids("cr")};
    EXPECT_TRUE(request.refiner->ComputeBestJoinPaths(request.model.Ids("Orders, Date"), {}, {},
                                                      request.model.Subjects(),
                                                      request.model.Joins(), paths, {}, {}));
    EXPECT_THAT(paths, ElementsAre(request.model.Ids("cr"), request.model.Ids("od"))) << "appended";
    EXPECT_EQ(request.JoinPath("Orders, Region, Date"), kPaths.at('a'));
    EXPECT_THAT(request.selector.GetShown(request.model),
                testing::Contains(kPaths.at('f') + ": 0 33002"));
}

TEST(JoinedSubjects, AreTheEndsOfRelationshipsAndTheirShortcuts)
{
    Request request(R"(
        D >- B : db on [Model].[D].[K] = [Model].[B].[K]; D(K), B(K)
        S -> D
        sb -> db : S, B
        B >- A : ba
        A >= C : ac
        C >~ E : ce
    )");
    EXPECT_EQ(request.JoinedSubjects("S, A, S"), "D, B, A, S");
    EXPECT_EQ(request.JoinedSubjects("C, A, C"), "A, C");
    EXPECT_EQ(request.JoinedSubjects("E, C"), "C, E");
    EXPECT_EQ(request.JoinedSubjects(""), "");
}

TEST(Between, GivesTheLightestPathsWithTheirEnds)
{
    Request request(R"(
        A >- X : ax; X >- B : xb
        A >-< Y : ay; Y >- B : yb
        C >- Z : cz; Z >- B : zb
        A >- B : far1; B >- Far : far2
    )",
                    true, true);
    EXPECT_EQ(request.Between("A, C", "B"), "far1 / 17 / A, B");
    EXPECT_EQ(request.selector.GetCallCount(), 0);
    EXPECT_EQ(request.Between("A", "B", "far1", "ax"), "ay, yb / 34 / A, B");
    EXPECT_EQ(request.Between("A", "Far", "far2"), " / 8888 / ");
    EXPECT_EQ(request.Between("", "B"), " / -1 / ");

    // What the tree weighs here comes out as -1 for each join, and the divisor as -1.
    EXPECT_EQ(request.Between("C, A", "X, Z, Y", "", ""), "ax / 17 / A, X");
    EXPECT_EQ(request.selector.GetShown(request.model),
              (Texts{"ax: 0 -1", "cz: 0 -1", "ay: 0 -1"}));
    EXPECT_EQ(request.BestBetween("C, A", "X, Z, Y"), (Texts{"17", "cz / C, Z", "ax / A, X"}));
    EXPECT_EQ(request.BestBetween("A", "B"), (Texts{"17", "far1 / A, B"}));
    EXPECT_EQ(request.BestBetween("", "B"), (Texts{"-1"}));

    // Of equally light paths, those with more joins therefore count as the best.
    AQE_I_Refiner::QEjoinInfo info;
    ASSERT_TRUE(AQE_I_Refiner::GetJoinInfo(&request.gateway, &request.context,
                                           request.model.Id("far2"), info));
    info.weight = 34;
    request.context.GetJoinCache()->CacheJoinInfo(info.joinId, info);
    EXPECT_EQ(request.BestBetween("C, B", "B, Far"), (Texts{"34", "cz, zb / C, B"}));

    // One join found from both of its ends: the first pair counts, whichever copy is chosen.
    request.selector.Choose(1);
    EXPECT_EQ(request.Between("A, X", "X, A"), "ax / 17 / A, X");
}

TEST(TreeJoins, GoByWhatTheCallIsGivenAndNotByNewAlgo)
{
    AQE_Governors denying{2, 0};
    AQE_Governors warning{1, 1};
    Request request(R"(
        folder B; T
        folder A; S -> T
        folder C; R -> T
        T >- S : required; Apart
    )",
                    false, false, &denying);
    AQE_RequestContext given;
    const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcutInfo(
        AQE_I_QuerySubjectShortcutInfo::Create(&request.gateway, &warning, &given));
    request.refiner->SetShortcutInfo(shortcutInfo.get());
    int newAlgoReads = 0;
    qe::SettingsOverride::SetProvider(
        [&](const I18NString&, const I18NString& key) -> std::optional<int> {
            newAlgoReads += key == "NewAlgo" ? 1 : 0;
            return std::nullopt;
        });
    const auto getTreeJoins = [&](std::string_view subjects, std::string_view required) {
        Ids treeJoins;
        EXPECT_NO_THROW(static_cast<void>(request.refiner->GetJoinTreeJoins(
            &request.gateway, request.model.Ids(subjects), {}, request.model.Ids(required),
            request.model.Subjects(), {}, &warning, &given, nullptr, treeJoins)));
        return request.model.Names(treeJoins);
    };
    EXPECT_EQ(getTreeJoins("T", "required"), "required") << "one subject, and what it must have";
    EXPECT_EQ(shortcutInfo->GetShortcutJoins().size(), 1U)
        << "the required join keeps the two that it joins together";
    EXPECT_EQ(getTreeJoins("T, Apart", ""), "");
    EXPECT_EQ(given.GetUserMessages().size(), 1U);
    EXPECT_THAT(request.context.GetUserMessages(), IsEmpty());
    EXPECT_EQ(newAlgoReads, 0);
    qe::SettingsOverride::SetProvider({});
}

TEST(Refiner, WorksWithNothingGiven)
{
    const ModelText model(kSales);
    const Ids subjects = model.Subjects();
    const Ids joins = model.Joins();
    const auto refiner = AQE_I_Refiner::Create(nullptr, nullptr, nullptr, nullptr, true, true);
    Ids ids;
    int weight = 0;
    std::vector<Ids> paths;
    std::vector<AQE_Refiner::EndPair> pairs;
    refiner->SetShortcutInfo(nullptr);
    refiner->ComputeJoinPath(subjects, joins, joins, subjects, joins, subjects, ids);
    EXPECT_FALSE(refiner->ComputeBestJoinPaths(subjects, joins, joins, subjects, joins, paths,
                                               joins, subjects));
    refiner->ComputeJoinPathBetween(subjects, {}, subjects, {}, {}, {}, subjects, joins, ids,
                                    weight, ids);
    refiner->ComputeBestJoinPathsBetween(subjects, {}, subjects, {}, {}, {}, subjects, joins, paths,
                                         weight, pairs);
    EXPECT_THAT(ids, IsEmpty());
    EXPECT_THAT(paths, IsEmpty());
    refiner->GetJoinedQuerySubjects(subjects, subjects, joins, ids);
    EXPECT_EQ(ids, subjects);
    EXPECT_TRUE(refiner->GetJoinTreeJoins(nullptr, subjects, {}, {}, subjects, joins, nullptr,
                                          nullptr, nullptr, ids))
        << "what stood in the vector counts";
    ids.clear();
    EXPECT_FALSE(refiner->GetJoinTreeJoins(nullptr, subjects, {}, {}, subjects, joins, nullptr,
                                           nullptr, nullptr, ids));
    EXPECT_TRUE(refiner->GetJoinTreeJoins(&model.GetGateway(), model.Ids("Orders, Region"), {}, {},
                                          subjects, joins, nullptr, nullptr, &joins, ids))
        << "the gateway of the call, not of the refiner";
}

} // namespace
