#include "AQE_I_Refiner.h"
#include "Engine/Services/SettingsOverride.h"
#include "Tests/Source/ProcessSettings.h"
#include "Tests/Source/RefinerRequest.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <future>
#include <optional>
#include <stdexcept>

namespace {

using qe::SettingsOverride;
using qe::test::kPaths;
using qe::test::kSales;
using qe::test::Request;
using testing::ElementsAre;
using Ids = std::vector<amd_id>;
using Texts = std::vector<std::string>;

/// The settings of the process and the switches of the refiner that are on, and the candidates as
/// the selector sees them.
class RankedRequests : public testing::TestWithParam<const char*>
{};

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

TEST(JoinPath, ReadsTheModeOfJoinsBeforeTheFirstJoin)
{
    if (qe::test::RunsWithOtherCases())
        GTEST_SKIP() << qe::test::kNeedsOwnProcess;
    Request request(kSales);
    std::optional<std::size_t> callsBefore;
    qe::SettingsOverride::SetProvider(
        [&](const I18NString&, const I18NString& key) -> std::optional<int> {
            if (key == "FFJoins")
                callsBefore = request.gateway.calls.GetCallCount();
            return std::nullopt;
        });
    request.JoinPath("Orders, Region");
    EXPECT_EQ(callsBefore, 0U);
    EXPECT_GT(request.gateway.calls.GetCallCount(), 0U);
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

} // namespace
