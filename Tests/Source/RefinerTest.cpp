#include "Refiner.h"

#include "AQE_Governors.h"
#include "AQE_I_PathSelector.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Engine/Services/LogCapture.h"
#include "Engine/Services/SettingsOverride.h"
#include "HBNException.h"
#include "Tests/Source/RefinerRequest.h"
#include "Tests/Support/ModelText.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>

namespace {

using qe::test::kPaths;
using qe::test::kSales;
using qe::test::ModelText;
using qe::test::Request;
using testing::ElementsAre;
using testing::IsEmpty;
using Ids = std::vector<amd_id>;
using Texts = std::vector<std::string>;

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

TEST(JoinPath, DropsSyntheticJoinsThatNoShortcutInformationKnows)
{
    for (const bool hasInformation : {false, true}) {
        Request request("A >- B : ab");
        AQE_Governors governors{};
        const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcutInfo(
            AQE_I_QuerySubjectShortcutInfo::Create(&request.gateway, &governors, &request.context));
        request.refiner->SetShortcutInfo(hasInformation ? shortcutInfo.get() : nullptr);
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
