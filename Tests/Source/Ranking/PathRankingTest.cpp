#include "Ranking/PathRanking.h"
#include "Engine/Services/LogCapture.h"
#include "HBNException.h"
#include "PathSelection.h"
#include "Tests/Support/CountingGateway.h"
#include "Tests/Support/ModelText.h"
#include "Tests/Support/RecordingSelector.h"

#include <gmock/gmock.h>

#include <climits>
#include <deque>
#include <string>
#include <vector>

namespace {

using qe::JoinInfoReader;
using qe::RankingSwitches;
using qe::WeightedPath;
using qe::test::CountingGateway;
using qe::test::Descriptors;
using qe::test::ModelText;
using testing::ElementsAre;
using Texts = std::vector<std::string>;

struct Candidate
{
    std::string joins;
    int weight;
};

Descriptors Rank(const ModelText& model, const std::vector<Candidate>& candidates,
                 const RankingSwitches& switches = {}, amdi_gateway* gateway = nullptr)
{
    std::deque<std::vector<amd_id>> joins;
    std::vector<WeightedPath> paths;
    for (const Candidate& candidate : candidates)
        paths.push_back({joins.emplace_back(model.Ids(candidate.joins)), candidate.weight});
    const JoinInfoReader joinInfos(
        {gateway == nullptr ? &model.GetGateway() : gateway, nullptr, nullptr, nullptr});
    return qe::DescribePaths(paths, qe::RankPaths(paths, switches, joinInfos));
}

std::vector<int> RankNumbers(const std::vector<int>& weights)
{
    const ModelText model("A >- B : ab");
    std::vector<Candidate> candidates;
    for (const int weight : weights)
        candidates.push_back({"ab", weight});
    std::vector<int> ranks;
    for (const auto& descriptor : Rank(model, candidates))
        ranks.push_back(descriptor->GetRank());
    return ranks;
}

TEST(Ranking, ComputesRanksInWrappingThirtyTwoBitArithmetic)
{
    const struct
    {
        std::vector<int> weights;
        std::vector<int> ranks;
    } rows[] = {
        {{20, 10}, {50, 0}},
        {{0, 0}, {100, 100}},
        {{3, 0, 2}, {100, 34, 0}},
        {{7, -3}, {142, 0}},
        {{0, -50}, {100, 100}}, // the divisor is 10000, and the quotient is cut toward zero
        {{0, -150}, {101, 100}},
        {{-5, -10}, {-900, -400}}, // the divisor is -1
        {{-1}, {0}},
        {{30000000}, {143}},
        {{INT_MAX}, {100}},
        {{INT_MIN}, {100}},
        {{-536870912}, {INT_MIN + 100}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(RankNumbers(row.weights), row.ranks) << testing::PrintToString(row.weights);
}

// Three joins each: a chain with one fact table, a star with one, a chain with two, and one over a
// many-to-many join.
constexpr const char* kShapes = R"(
    A >- B : ab; B >- C : bc; C >- D : cd; A >- C : ac; A >- D : ad
    E >- C : ec; A >-< B : abm
)";

TEST(Ranking, SetsPathsOfTheSameNamesBehindAllOthers)
{
    // Unreadable joins, hidden from the gateway, all go by one name.
    const ModelText model("A >- B : b; A >- C : c; A >- D : x; A >- E : y");
    CountingGateway gateway(model.GetGateway());
    gateway.Hide(model.Id("x"));
    gateway.Hide(model.Id("y"));
    const std::vector<Candidate> candidates{{"c, b", 5}, {"b, c", 5}, {"x, b", 5},
                                            {"c, b", 5}, {"y, b", 5}, {"b", 5}};
    EXPECT_THAT(
        ToTexts(model, Rank(model, candidates, {true, true}, &gateway)),
        ElementsAre("x, b: 0 5", "b: 0 5", "c, b: 0 5", "b, c: 0 5", "c, b: 0 5", "y, b: 0 5"));
}

TEST(Ranking, FailsForImpossibleCardinalities)
{
    const ModelText model("A >- C : odd");
    CountingGateway gateway(model.GetGateway());
    gateway.Replace({.id = model.Id("odd"),
                     .left = model.Id("A"),
                     .right = model.Id("C"),
                     .leftCardinality = {11, 7},
                     .rightCardinality = {11, 11}});
    EXPECT_THROW(Rank(model, {{"odd", 1}}, {true, false}, &gateway), HBNException);
}

TEST(Ranking, LogsTheFirstThirtyPaths)
{
    const ModelText model(kShapes);
    std::vector<Candidate> candidates(30, {"ab", 20});
    candidates.push_back({"ab, ac, ad", 10});
    const qe::LogCapture log(5);
    Rank(model, candidates, {true, true});
    const auto entries = log.GetEntries();
    ASSERT_EQ(entries.size(), 32U);
    EXPECT_EQ(entries[0].text, "AQE_Refiner::RankPaths -> START LOGGING COMPUTED JOIN PATHS\n");
    EXPECT_EQ(entries[1].text,
              "\nPath 1: ab, ac, ad, \nComputed weight (10), computed number of fact tables (1), "
              "adjusted weight considering straightest path (11), ranking using computed weight "
              "(50)\n");
    EXPECT_EQ(entries[30].text,
              "\nPath 30: ab, \nComputed weight (20), computed number of fact tables (1), "
              "adjusted weight considering straightest path (20), ranking using computed weight "
              "(0)\n");
    EXPECT_EQ(entries[31].text, "AQE_Refiner::RankPaths -> Logged (30) paths out of (31) paths\n");
    EXPECT_EQ(entries[31].level, 5);

    const qe::LogCapture quiet(4);
    Rank(model, candidates);
    EXPECT_TRUE(quiet.GetEntries().empty());
}

TEST(Ranking, CountsFactTablesAndBranchesOnTopOfTheWeight)
{
    const ModelText model(std::string(kShapes) + "; A >- E : ae; B >-< C : bcm; A - A : aa; x - y");
    CountingGateway gateway(model.GetGateway());
    gateway.Hide(model.Id("x-y"));
    const struct
    {
        const char* path;
        RankingSwitches switches;
        const char* names;
        int factTables;
        int straightness;
    } rows[] = {
        {"ab, ac, ad, ae", {true, true}, "ab, ac, ad, ae, ", 1, 12},
        {"ab, aa", {true, true}, "ab, aa, ", 1, 11},
        {"ab, ec", {true, true}, "ab, ec, ", 2, 10},
        {"abm", {true, true}, "abm, ", 10001, 10},
        {"abm, x-y, bcm", {true, true}, "abm, bcm, ", 20001, 10},
        {"abm, ac, ad", {false, true}, "abm, ac, ad, ", 1, 11},
        {"abm, ac, ad", {true, false}, "abm, ac, ad, ", 10001, 10},
    };
    for (const auto& row : rows) {
        const qe::LogCapture log(5);
        Rank(model, {{row.path, 10}}, row.switches, &gateway);
        EXPECT_EQ(log.GetEntries().at(1).text.ToStdString(),
                  "\nPath 1: " + std::string(row.names) +
                      "\nComputed weight (10), computed number of fact tables (" +
                      std::to_string(row.factTables) +
                      "), adjusted weight considering straightest path (" +
                      std::to_string(row.straightness) + "), ranking using computed weight (0)\n");
    }
}

TEST(BestPaths, HaveTheLeastWeightAndThenTheFewestFactTables)
{
    const ModelText model(kShapes);
    const JoinInfoReader joinInfos({&model.GetGateway(), nullptr, nullptr, nullptr});
    const auto selectBest = [&](const std::vector<int>& weights) {
        const std::vector<std::string> paths{"ab",         "ab, bc, ec", "ab, ac, ad",
                                             "ab, ac, ad", "abm",        "ab, bc, cd"};
        std::deque<std::vector<amd_id>> joins;
        std::vector<WeightedPath> weighted;
        for (std::size_t index = 0; index < weights.size(); ++index)
            weighted.push_back({joins.emplace_back(model.Ids(paths[index])), weights[index]});
        return qe::SelectBestPaths(weighted, joinInfos);
    };
    EXPECT_THAT(selectBest({5, 3, 3, 3, 3, 4}), ElementsAre(2, 3));
    EXPECT_THAT(selectBest({5, -3, 3, 3, 3, -3}), ElementsAre(5));
    EXPECT_TRUE(selectBest({}).empty());
}

} // namespace
