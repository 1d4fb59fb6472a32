#include "QEJoinTree.h"

#include "AQE_Governors.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "Engine/Services/SettingsOverride.h"
#include "Tests/Support/JoinGraphModel.h"
#include "Tests/Support/SmallGraph.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <set>

namespace {

using qe::SettingsOverride;
using qe::test::JoinGraphModel;
using qe::test::SmallGraph;
using Ids = std::vector<amd_id>;
using Paths = std::set<std::set<amd_id>>;

/// A random request, written as the model text and the names of its lists.
struct RandomCase
{
    std::string text;
    Ids subjects;
    Ids secondSet;
    Ids favouredJoins;
    Ids requiredJoins;
    Ids avoidedJoins;
    Ids favouredSubjects;
};

enum class EShortcuts
{
    None,
    Some,
};

class CaseMaker
{
public:
    explicit CaseMaker(unsigned seed) : mRandom(seed) {}

    int Below(int bound) { return std::uniform_int_distribution<>(0, bound - 1)(mRandom); }

    std::string MakeText(EShortcuts shortcuts)
    {
        const int nodes = 2 + Below(7);
        std::string text;
        std::string names = std::string("ABCDEFGH").substr(0, static_cast<std::size_t>(nodes));
        if (shortcuts == EShortcuts::Some)
            for (const char* shortcut : {"s>A ", "t>A ", "u>B "})
                if (Below(2) == 0) {
                    text += shortcut;
                    names += shortcut[0];
                }
        const int joins = 1 + Below(10);
        for (int join = 0; join < joins; ++join) {
            const char* const weights[] = {"", "", "", ":1", ":2", ":2", ":5", ":7", ":17"};
            text += std::string() + PickLetter(names) + "-" + PickLetter(names) +
                    weights[Below(9)] + " ";
        }
        return text;
    }

    Ids Pick(const Ids& ids, int most)
    {
        Ids picked;
        const int count = ids.empty() ? 0 : Below(most + 1);
        for (int i = 0; i < count; ++i)
            picked.push_back(ids[static_cast<std::size_t>(Below(static_cast<int>(ids.size())))]);
        return picked;
    }

private:
    char PickLetter(const std::string& letters)
    {
        return letters[static_cast<std::size_t>(Below(static_cast<int>(letters.size())))];
    }

    std::mt19937 mRandom;
};

RandomCase MakeCase(CaseMaker& maker, EShortcuts shortcuts)
{
    RandomCase random;
    random.text = maker.MakeText(shortcuts);
    const JoinGraphModel model(random.text);
    random.subjects = maker.Pick(model.Subjects(), 4);
    random.secondSet = maker.Pick(model.Subjects(), 3);
    random.favouredJoins = maker.Pick(model.Joins(), 2);
    random.requiredJoins = maker.Pick(model.Joins(), maker.Below(2) * 2);
    random.avoidedJoins = maker.Pick(model.Joins(), 2);
    random.favouredSubjects = maker.Pick(model.Subjects(), maker.Below(2) * 2);
    return random;
}

bool Contains(const Ids& ids, const amd_id& id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

/// The joins as the tree must see them, with what the request makes of their weights, as a graph on
/// which every set of them can be tried.
class RequestGraph
{
public:
    RequestGraph(JoinGraphModel& model, const RandomCase& random,
                 AQE_I_QuerySubjectShortcutInfo* shortcutInfo, bool isTwoSet)
    {
        const auto isFavoured = [&](const amd_id& id) {
            return Contains(random.favouredSubjects, id);
        };
        const auto standsForFavoured = [&](const amd_id& id) {
            return id.classCode == 109 && isFavoured(model.GetModel()->GetTarget(id));
        };
        for (const amd_id& join : model.Joins()) {
            AQE_I_Refiner::QEjoinInfo info;
            EXPECT_TRUE(
                AQE_I_Refiner::GetJoinInfo(&model.GetGateway(), &model.context, join, info));
            const amd_id& left = info.leftQuerySubject;
            const amd_id& right = info.rightQuerySubject;
            int favoured = isFavoured(left) + isFavoured(right);
            if (favoured == 0)
                favoured = standsForFavoured(left) + standsForFavoured(right);
            int weight = info.weight;
            if (weight > 3 && favoured > 0 && !isTwoSet)
                weight = favoured == 2 ? 3 : 7;
            if (Contains(random.favouredJoins, join) ||
                (!isTwoSet && Contains(random.requiredJoins, join)))
                weight = 2;
            if (Contains(random.avoidedJoins, join))
                weight = 8888;
            Add(join, left, right, weight);
        }
        if (shortcutInfo != nullptr)
            for (const auto& info : shortcutInfo->GetShortcutJoins())
                Add(info.joinId, info.leftQuerySubject, info.rightQuerySubject, 2);
        for (const amd_id& subject : model.Subjects())
            NumberOf(subject);
        mGraph.nodeCount = mNumbers.size();
    }

    /// Returns what is left when only some of the joins are there.
    [[nodiscard]] SmallGraph Only(const Ids& joins) const
    {
        SmallGraph graph{mGraph.nodeCount, {}};
        for (std::size_t i = 0; i < mJoins.size(); ++i)
            if (Contains(joins, mJoins[i]))
                graph.edges.push_back(mGraph.edges[i]);
        return graph;
    }

    [[nodiscard]] std::vector<std::size_t> Numbers(const Ids& nodes) const
    {
        std::vector<std::size_t> numbers;
        for (const amd_id& node : nodes)
            numbers.push_back(mNumbers.at(node));
        return numbers;
    }

    /// Returns the ends of the request and of the joins that it requires.
    [[nodiscard]] std::vector<std::size_t> Terminals(const RandomCase& random) const
    {
        std::vector<std::size_t> terminals = Numbers(random.subjects);
        const SmallGraph required = Only(random.requiredJoins);
        for (const SmallGraph::Edge& edge : required.edges)
            terminals.insert(terminals.end(), {edge.end1, edge.end2});
        return terminals;
    }

    [[nodiscard]] bool DoRequiredJoinsConnect(const RandomCase& random) const
    {
        return Only(random.requiredJoins).FindCheapestTrees(Terminals(random)).has_value();
    }

    /// Returns the least weight that connects the nodes, and all trees of that weight.
    [[nodiscard]] std::pair<int, Paths> FindOptimum(const std::vector<std::size_t>& nodes) const
    {
        const auto found = mGraph.FindCheapestTrees(nodes);
        if (!found)
            return {std::numeric_limits<int>::max(), {}};
        Paths trees;
        for (const SmallGraph::EdgeSet& tree : found->trees) {
            std::set<amd_id> joins;
            for (const std::size_t edge : tree)
                joins.insert(mJoins[edge]);
            trees.insert(joins);
        }
        return {static_cast<int>(found->weight), trees};
    }

private:
    void Add(const amd_id& join, const amd_id& left, const amd_id& right, int weight)
    {
        mJoins.push_back(join);
        mGraph.edges.push_back({NumberOf(left), NumberOf(right), weight});
    }

    std::size_t NumberOf(const amd_id& node)
    {
        return mNumbers.emplace(node, mNumbers.size()).first->second;
    }

    Ids mJoins;
    std::map<amd_id, std::size_t> mNumbers;
    SmallGraph mGraph;
};

std::string Describe(const JoinGraphModel& model, const RandomCase& random)
{
    return random.text + "| subjects " + model.Text(random.subjects) + " | second " +
           model.Text(random.secondSet) + " | favoured " + model.Text(random.favouredJoins) +
           " | required " + model.Text(random.requiredJoins) + " | avoided " +
           model.Text(random.avoidedJoins) + " | favoured subjects " +
           model.Text(random.favouredSubjects);
}

class JoinTreeProperty : public testing::Test
{
protected:
    /// Draws requests until one fails, and reports that one.
    template <typename Check>
    static void ForEachRequest(unsigned seed, EShortcuts shortcuts, const Check& check)
    {
        CaseMaker maker(seed);
        for (int round = 0; round < 2000 && !HasFailure(); ++round) {
            const RandomCase random = MakeCase(maker, shortcuts);
            JoinGraphModel model(random.text);
            SCOPED_TRACE(Describe(model, random));
            check(model, random);
        }
    }

    static AQE_JoinTree Grow(JoinGraphModel& model, const RandomCase& random,
                             AQE_I_QuerySubjectShortcutInfo* shortcutInfo)
    {
        return {&model.GetGateway(),
                random.subjects,
                random.favouredJoins,
                random.requiredJoins,
                model.Subjects(),
                model.Joins(),
                nullptr,
                &model.context,
                &random.avoidedJoins,
                shortcutInfo,
                false,
                random.favouredSubjects};
    }

    static std::vector<Ids> PathsOf(const AQE_JoinTree& tree)
    {
        std::vector<Ids> paths;
        tree.GetJoinPaths(paths);
        return paths;
    }
};

std::set<amd_id> ToSet(const Ids& ids)
{
    return {ids.begin(), ids.end()};
}

TEST_F(JoinTreeProperty, CheapestTreesAreAllThereAre)
{
    ForEachRequest(20261, EShortcuts::Some, [](JoinGraphModel& model, const RandomCase& random) {
        if (random.subjects.empty())
            return;
        AQE_Governors governors;
        const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcutInfo(
            AQE_I_QuerySubjectShortcutInfo::Create(&model.GetGateway(), &governors,
                                                   &model.context));
        const AQE_JoinTree tree = Grow(model, random, shortcutInfo.get());
        const std::vector<Ids> paths = PathsOf(tree);
        Paths found;
        for (const Ids& path : paths)
            found.insert(ToSet(path));
        EXPECT_EQ(found.size(), paths.size()) << "each tree once";

        const RequestGraph graph(model, random, shortcutInfo.get(), false);
        if (graph.DoRequiredJoinsConnect(random)) {
            EXPECT_FALSE(tree.IsConnected());
            EXPECT_EQ(found,
                      random.requiredJoins.empty() ? Paths{} : Paths{ToSet(random.requiredJoins)});
            return;
        }
        const auto [weight, trees] = graph.FindOptimum(graph.Terminals(random));
        EXPECT_EQ(tree.IsConnected(), !trees.empty());
        EXPECT_EQ(found, trees);
        if (!paths.empty()) {
            EXPECT_EQ(tree.GetPathWeight(paths.front()), weight);
        }
    });
}

TEST_F(JoinTreeProperty, PairwiseGrowthConnectsWithinTheBoundOfItsPaper)
{
    const SettingsOverride newAlgo("General Options", "NewAlgo", 0);
    int compared = 0;
    double sumOfRatios = 0;
    double worstRatio = 1;
    ForEachRequest(20262, EShortcuts::None, [&](JoinGraphModel& model, const RandomCase& random) {
        if (random.subjects.empty())
            return;
        const std::vector<Ids> paths = PathsOf(Grow(model, random, nullptr));
        const RequestGraph graph(model, random, nullptr, false);
        const std::vector<std::size_t> terminals = graph.Terminals(random);
        const auto [optimum, trees] = graph.FindOptimum(terminals);
        if (trees.empty() || graph.DoRequiredJoinsConnect(random))
            return;
        ASSERT_FALSE(paths.empty());
        std::int64_t lightest = std::numeric_limits<int>::max();
        for (const Ids& path : paths) {
            const SmallGraph own = graph.Only(path);
            const SmallGraph::EdgeSet forest = own.FindSpanningForests().front();
            EXPECT_EQ(forest.size(), path.size()) << "a cycle";
            EXPECT_TRUE(own.FindCheapestTrees(terminals));
            lightest = std::min(lightest, own.GetWeight(forest));
        }
        const auto count = static_cast<std::int64_t>(
            std::set<std::size_t>(terminals.begin(), terminals.end()).size());
        EXPECT_LE(lightest * count, 2 * (count - 1) * optimum) << "the bound of the paper";
        EXPECT_GE(lightest, optimum);
        const double ratio = static_cast<double>(lightest) / optimum;
        ++compared;
        sumOfRatios += ratio;
        worstRatio = std::max(worstRatio, ratio);
    });
    std::printf(
        "pairwise growth: %d requests, on average %.4f and at worst %.2f times the optimum\n",
        compared, sumOfRatios / compared, worstRatio);
}

TEST_F(JoinTreeProperty, TwoSetSearchAgreesWithAllPairs)
{
    ForEachRequest(20263, EShortcuts::None, [](JoinGraphModel& model, const RandomCase& random) {
        std::vector<Ids> paths;
        std::vector<std::pair<amd_id, amd_id>> pairs;
        int weight = 0;
        const AQE_JoinTree tree(&model.GetGateway(), random.subjects, random.avoidedJoins,
                                random.secondSet, {}, random.favouredJoins, random.requiredJoins,
                                model.Subjects(), model.Joins(), paths, weight, pairs, nullptr,
                                &model.context, nullptr);
        if (random.subjects.empty() || random.secondSet.empty()) {
            EXPECT_EQ(weight, 0) << "nothing was searched";
            EXPECT_EQ(tree.GetPathWeight(model.Joins()), 0);
            return;
        }
        EXPECT_EQ(tree.GetPathWeight(model.Joins()), -1);
        const RequestGraph graph(model, random, nullptr, true);
        int expectedWeight = 8888;
        std::vector<std::pair<amd_id, amd_id>> expectedPairs;
        for (const amd_id& first : random.subjects)
            for (const amd_id& second : random.secondSet) {
                const int distance =
                    first == second
                        ? 8888
                        : std::min(8888, graph.FindOptimum(graph.Numbers({first, second})).first);
                if (distance < expectedWeight)
                    expectedPairs.clear();
                expectedWeight = std::min(expectedWeight, distance);
                if (distance < 8888 && distance == expectedWeight)
                    expectedPairs.emplace_back(first, second);
            }
        EXPECT_EQ(weight, expectedWeight);
        EXPECT_EQ(pairs, expectedPairs);
        ASSERT_EQ(paths.size(), pairs.size());
        for (std::size_t i = 0; i < paths.size(); ++i) {
            const auto ends = graph.Numbers({pairs[i].first, pairs[i].second});
            EXPECT_EQ(graph.FindOptimum(ends).second.count(ToSet(paths[i])), 1U);
        }
    });
}

} // namespace
