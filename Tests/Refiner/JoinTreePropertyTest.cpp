#include "QEJoinTree.h"

#include "AQE_Governors.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "Engine/Settings/SettingsOverride.h"
#include "Tests/Support/JoinGraphModel.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <set>

namespace {

using qe::SettingsOverride;
using qe::test::JoinGraphModel;
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
    random.subjects = maker.Pick(model.GetNodes(), 4);
    random.secondSet = maker.Pick(model.GetNodes(), 3);
    random.favouredJoins = maker.Pick(model.GetJoins(), 2);
    random.requiredJoins = maker.Pick(model.GetJoins(), maker.Below(2) * 2);
    random.avoidedJoins = maker.Pick(model.GetJoins(), 2);
    random.favouredSubjects = maker.Pick(model.GetNodes(), maker.Below(2) * 2);
    return random;
}

struct Edge
{
    amd_id id;
    amd_id end1;
    amd_id end2;
    int weight;
};

bool Contains(const Ids& ids, const amd_id& id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

/// The joins as the tree must see them, with what the request makes of their weights.
std::vector<Edge> WeighJoins(JoinGraphModel& model, const RandomCase& random,
                             AQE_I_QuerySubjectShortcutInfo* shortcutInfo, bool isTwoSet)
{
    std::vector<Edge> edges;
    const auto isFavoured = [&](const amd_id& id) { return Contains(random.favouredSubjects, id); };
    const auto standsForFavoured = [&](const amd_id& id) {
        return id.classCode == 109 &&
               isFavoured(AQE_I_Refiner::GetRefQuerySubject(&model.gateway, id, nullptr, nullptr));
    };
    for (const amd_id& join : model.GetJoins()) {
        AQE_I_Refiner::QEjoinInfo info;
        EXPECT_TRUE(AQE_I_Refiner::GetJoinInfo(&model.gateway, &model.context, join, info));
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
        edges.push_back({join, left, right, weight});
    }
    if (shortcutInfo != nullptr)
        for (const auto& info : shortcutInfo->GetShortcutJoins())
            edges.push_back({info.joinId, info.leftQuerySubject, info.rightQuerySubject, 2});
    return edges;
}

/// Puts the nodes that the chosen edges join into one piece.
class Pieces
{
public:
    void Join(const amd_id& a, const amd_id& b) { mParents[Find(a)] = Find(b); }
    bool AreOne(const Ids& nodes)
    {
        return std::all_of(nodes.begin(), nodes.end(),
                           [&](const amd_id& node) { return Find(node) == Find(nodes.front()); });
    }

private:
    amd_id Find(amd_id node)
    {
        while (mParents.count(node) != 0 && mParents[node] != node)
            node = mParents[node];
        return node;
    }
    std::map<amd_id, amd_id> mParents;
};

struct Optimum
{
    int weight = std::numeric_limits<int>::max();
    Paths trees;
};

using Subset = std::uint32_t;

/// The joins with their ends as small numbers, so that every set of them can be tried.
class Exhaustive
{
public:
    Exhaustive(const std::vector<Edge>& edges, const Ids& terminals) : mEdges(edges)
    {
        for (const Edge& edge : edges)
            mEnds.emplace_back(NumberOf(edge.end1), NumberOf(edge.end2));
        for (const amd_id& terminal : terminals)
            mTerminals.push_back(NumberOf(terminal));
    }

    /// With positive weights the lightest sets that connect are trees.
    Optimum FindOptimum()
    {
        Optimum optimum;
        std::vector<Subset> best;
        for (Subset subset = 0; subset < Subset{1} << mEdges.size(); ++subset) {
            const int weight = WeightOf(subset);
            if (weight > optimum.weight || !Connects(subset))
                continue;
            if (weight < optimum.weight)
                best.clear();
            optimum.weight = weight;
            best.push_back(subset);
        }
        for (const Subset subset : best)
            optimum.trees.insert(JoinsOf(subset));
        return optimum;
    }

private:
    std::size_t NumberOf(const amd_id& node)
    {
        return mNumbers.emplace(node, mNumbers.size()).first->second;
    }

    template <typename Visit>
    void ForEach(Subset subset, const Visit& visit) const
    {
        for (std::size_t i = 0; i < mEdges.size(); ++i)
            if ((subset >> i & 1U) != 0)
                visit(i);
    }

    int WeightOf(Subset subset) const
    {
        int weight = 0;
        ForEach(subset, [&](std::size_t i) { weight += mEdges[i].weight; });
        return weight;
    }

    bool Connects(Subset subset) const
    {
        std::array<std::size_t, 16> pieces{};
        std::iota(pieces.begin(), pieces.end(), std::size_t{0});
        ForEach(subset, [&](std::size_t i) {
            const std::size_t from = pieces[mEnds[i].first];
            const std::size_t into = pieces[mEnds[i].second];
            std::replace(pieces.begin(), pieces.end(), from, into);
        });
        return std::all_of(mTerminals.begin(), mTerminals.end(), [&](std::size_t terminal) {
            return pieces[terminal] == pieces[mTerminals.front()];
        });
    }

    std::set<amd_id> JoinsOf(Subset subset) const
    {
        std::set<amd_id> joins;
        ForEach(subset, [&](std::size_t i) { joins.insert(mEdges[i].id); });
        return joins;
    }

    const std::vector<Edge>& mEdges;
    std::map<amd_id, std::size_t> mNumbers;
    std::vector<std::pair<std::size_t, std::size_t>> mEnds;
    std::vector<std::size_t> mTerminals;
};

Optimum FindOptimum(const std::vector<Edge>& edges, const Ids& terminals)
{
    return Exhaustive(edges, terminals).FindOptimum();
}

Ids TerminalsOf(JoinGraphModel& model, const RandomCase& random)
{
    Ids terminals = random.subjects;
    for (const amd_id& join : random.requiredJoins) {
        AQE_I_Refiner::QEjoinInfo info;
        EXPECT_TRUE(AQE_I_Refiner::GetJoinInfo(&model.gateway, &model.context, join, info));
        terminals.push_back(info.leftQuerySubject);
        terminals.push_back(info.rightQuerySubject);
    }
    return terminals;
}

bool DoRequiredJoinsConnect(const std::vector<Edge>& edges, const Ids& required,
                            const Ids& terminals)
{
    Pieces pieces;
    for (const Edge& edge : edges)
        if (Contains(required, edge.id))
            pieces.Join(edge.end1, edge.end2);
    return pieces.AreOne(terminals);
}

std::string Describe(const JoinGraphModel& model, const RandomCase& random)
{
    return random.text + "| subjects " + model.Text(random.subjects) + " | second " +
           model.Text(random.secondSet) + " | favoured " + model.Text(random.favouredJoins) +
           " | required " + model.Text(random.requiredJoins) + " | avoided " +
           model.Text(random.avoidedJoins) + " | favoured subjects " +
           model.Text(random.favouredSubjects);
}

TEST(JoinTreeProperty, CheapestTreesAreAllThereAre)
{
    CaseMaker maker(20261);
    for (int round = 0; round < 2000; ++round) {
        const RandomCase random = MakeCase(maker, EShortcuts::Some);
        if (random.subjects.empty())
            continue;
        JoinGraphModel model(random.text);
        SCOPED_TRACE(Describe(model, random));
        AQE_Governors governors;
        const std::unique_ptr<AQE_I_QuerySubjectShortcutInfo> shortcutInfo(
            AQE_I_QuerySubjectShortcutInfo::Create(&model.gateway, &governors, &model.context));
        const AQE_JoinTree tree(&model.gateway, random.subjects, random.favouredJoins,
                                random.requiredJoins, model.GetNodes(), model.GetJoins(), nullptr,
                                &model.context, &random.avoidedJoins, shortcutInfo.get(), false,
                                random.favouredSubjects);
        std::vector<Ids> paths;
        tree.GetJoinPaths(paths);
        Paths found;
        for (const Ids& path : paths)
            found.insert(std::set<amd_id>(path.begin(), path.end()));
        EXPECT_EQ(found.size(), paths.size()) << "each tree once";

        const auto edges = WeighJoins(model, random, shortcutInfo.get(), false);
        const Ids terminals = TerminalsOf(model, random);
        if (DoRequiredJoinsConnect(edges, random.requiredJoins, terminals)) {
            EXPECT_FALSE(tree.IsConnected());
            const std::set<amd_id> required(random.requiredJoins.begin(),
                                            random.requiredJoins.end());
            EXPECT_EQ(found, required.empty() ? Paths{} : Paths{required});
        } else {
            const Optimum optimum = FindOptimum(edges, terminals);
            EXPECT_EQ(tree.IsConnected(), !optimum.trees.empty());
            EXPECT_EQ(found, optimum.trees);
            if (!paths.empty()) {
                EXPECT_EQ(tree.GetPathWeight(paths.front()), optimum.weight);
            }
        }
        if (HasFailure())
            return;
    }
}

TEST(JoinTreeProperty, PairwiseGrowthConnectsWithinTheBoundOfItsPaper)
{
    const SettingsOverride newAlgo("General Options", "NewAlgo", 0);
    CaseMaker maker(20262);
    int compared = 0;
    double sumOfRatios = 0;
    double worstRatio = 1;
    for (int round = 0; round < 2000; ++round) {
        const RandomCase random = MakeCase(maker, EShortcuts::None);
        if (random.subjects.empty())
            continue;
        JoinGraphModel model(random.text);
        SCOPED_TRACE(Describe(model, random));
        const AQE_JoinTree tree(&model.gateway, random.subjects, random.favouredJoins,
                                random.requiredJoins, model.GetNodes(), model.GetJoins(), nullptr,
                                &model.context, &random.avoidedJoins, nullptr, false,
                                random.favouredSubjects);
        std::vector<Ids> paths;
        tree.GetJoinPaths(paths);
        const auto edges = WeighJoins(model, random, nullptr, false);
        const Ids terminals = TerminalsOf(model, random);
        const Optimum optimum = FindOptimum(edges, terminals);
        if (optimum.trees.empty() || DoRequiredJoinsConnect(edges, random.requiredJoins, terminals))
            continue;
        ASSERT_FALSE(paths.empty());
        int lightest = std::numeric_limits<int>::max();
        for (const Ids& path : paths) {
            Pieces pieces;
            int weight = 0;
            for (const Edge& edge : edges)
                if (Contains(path, edge.id)) {
                    EXPECT_FALSE(pieces.AreOne({edge.end1, edge.end2})) << "a circle";
                    pieces.Join(edge.end1, edge.end2);
                    weight += edge.weight;
                }
            EXPECT_TRUE(pieces.AreOne(terminals));
            lightest = std::min(lightest, weight);
        }
        const int count =
            static_cast<int>(std::set<amd_id>(terminals.begin(), terminals.end()).size());
        EXPECT_LE(lightest * count, 2 * (count - 1) * optimum.weight) << "the bound of the paper";
        EXPECT_GE(lightest, optimum.weight);
        const double ratio = static_cast<double>(lightest) / optimum.weight;
        ++compared;
        sumOfRatios += ratio;
        worstRatio = std::max(worstRatio, ratio);
        if (HasFailure())
            return;
    }
    std::printf(
        "pairwise growth: %d requests, on average %.4f and at worst %.2f times the optimum\n",
        compared, sumOfRatios / compared, worstRatio);
}

TEST(JoinTreeProperty, TwoSetSearchAgreesWithAllPairs)
{
    CaseMaker maker(20263);
    for (int round = 0; round < 2000; ++round) {
        const RandomCase random = MakeCase(maker, EShortcuts::None);
        if (random.subjects.empty() || random.secondSet.empty())
            continue;
        JoinGraphModel model(random.text);
        SCOPED_TRACE(Describe(model, random));
        std::vector<Ids> paths;
        std::vector<std::pair<amd_id, amd_id>> pairs;
        int weight = 0;
        const AQE_JoinTree tree(&model.gateway, random.subjects, random.avoidedJoins,
                                random.secondSet, {}, random.favouredJoins, random.requiredJoins,
                                model.GetNodes(), model.GetJoins(), paths, weight, pairs, nullptr,
                                &model.context, nullptr);
        const auto edges = WeighJoins(model, random, nullptr, true);

        int expectedWeight = 8888;
        std::vector<std::pair<amd_id, amd_id>> expectedPairs;
        for (const amd_id& first : random.subjects)
            for (const amd_id& second : random.secondSet) {
                const int distance =
                    first == second ? 8888
                                    : std::min(8888, FindOptimum(edges, {first, second}).weight);
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
            const auto trees = FindOptimum(edges, {pairs[i].first, pairs[i].second}).trees;
            EXPECT_EQ(trees.count(std::set<amd_id>(paths[i].begin(), paths[i].end())), 1U);
        }
        if (HasFailure())
            return;
    }
}

} // namespace
