#include "Engine/Graph/Steiner/BlockSearch.h"
#include "Engine/Graph/Steiner/Bound/CutExchange.h"
#include "Engine/Graph/Steiner/List/DerivationBuilder.h"
#include "Engine/Graph/Steiner/List/DerivationWalk.h"
#include "Engine/Graph/Steiner/List/LabelDerivations.h"
#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/NetworkBuilder.h"
#include "Engine/Graph/Steiner/SteinerSolver.h"
#include "Tests/Support/SteinerGraphReader.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <set>
#include <span>
#include <tuple>
#include <vector>

namespace qe::graph {

namespace {

using Outcome = BlockSearch::Outcome;

void DrawTerminals(std::mt19937& random, std::uint32_t nodeCount, std::uint32_t count,
                   SteinerGraph& graph)
{
    std::set<std::uint32_t> terminals;
    while (terminals.size() < count)
        terminals.insert(static_cast<std::uint32_t>(random() % nodeCount));
    for (const std::uint32_t terminal : terminals)
        graph.terminals.push_back({terminal});
    graph.Freeze(nodeCount);
}

/// Draws a grid whose weights are less than twice the lightest. Where that is small, many trees
/// are equal, and ascents fall short of them.
SteinerGraph DrawGrid(std::mt19937& random, std::uint32_t side, std::uint32_t terminalCount,
                      std::uint32_t lightest = 5)
{
    SteinerGraph graph;
    const auto draw = [&] { return static_cast<std::uint32_t>(lightest + random() % lightest); };
    const std::uint32_t nodeCount = side * side;
    for (std::uint32_t node = 0; node < nodeCount; ++node) {
        if (node % side != 0)
            graph.edges.push_back({{node - 1}, {node}, draw()});
        if (node >= side)
            graph.edges.push_back({{node - side}, {node}, draw()});
    }
    DrawTerminals(random, nodeCount, terminalCount, graph);
    return graph;
}

/// Draws weights of 1 and 2, or 1 alone, for the words of three letters out of three, of which
/// those are neighbours that differ in one letter. Whole prices bound such trees badly.
SteinerGraph DrawCube(std::mt19937& random, std::uint32_t greatestWeight)
{
    constexpr std::uint32_t kNodes = 27;
    SteinerGraph graph;
    for (std::uint32_t node = 0; node < kNodes; ++node) {
        for (std::uint32_t place = 1; place < kNodes; place *= 3) {
            for (std::uint32_t letter = node / place % 3 + 1; letter < 3; ++letter)
                graph.edges.push_back({{node},
                                       {node + (letter - node / place % 3) * place},
                                       static_cast<std::uint32_t>(1 + random() % greatestWeight)});
        }
    }
    DrawTerminals(random, kNodes, 9, graph);
    return graph;
}

/// Checks that cuts are what they say, and adds up what they charge.
class CutChecker : public CutObserver
{
public:
    CutChecker(const FlatNetwork& network, NodeIndex root)
        : charged(network.GetHalfCount()), mNetwork(network), mRoot(root)
    {}

    void Raise(const RaisedCut& cut) override
    {
        const std::set<NodeIndex> set(cut.nodes.begin(), cut.nodes.end());
        EXPECT_EQ(set.count(mRoot), 0U);
        EXPECT_TRUE(std::any_of(set.begin(), set.end(),
                                [this](NodeIndex node) { return mNetwork.IsTerminal(node); }));
        sum += cut.price;
        for (const NodeIndex node : set) {
            for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(node)) {
                if (set.count(arc.target) == 0)
                    charged[arc.half.Reversed()] += cut.price;
            }
        }
    }

    std::uint64_t sum = 0;
    IndexedVector<HalfEdge, std::uint64_t> charged;

private:
    const FlatNetwork& mNetwork;
    NodeIndex mRoot;
};

class SteinerBlock : public testing::Test
{
protected:
    std::mt19937 mRandom{20251123};
    Budget mBudget{SteinerLimits{.effort = 1'000'000'000'000}};
};

TEST_F(SteinerBlock, ExchangedCutsAddUpAndProveMoreThanTheAscentButNeverTooMuch)
{
    std::uint64_t gained = 0;
    for (int round = 0; round < 20 && !HasFailure(); ++round) {
        const SteinerGraph graph = DrawGrid(mRandom, 12, 20);
        StrandPool strands;
        const Network network = *BuildNetwork(graph.View(), graph.terminals, {}, strands);
        const FlatNetwork flat(network);
        const NodeIndex root = flat.GetTerminals()[mRandom() % flat.GetTerminals().size()];
        const std::uint64_t optimum = FindCheapestTrees(graph.View(), graph.terminals, {}).weight;
        CutExchange exchange(flat, root, {}, mBudget);
        const std::uint64_t atFirst = exchange.GetAscent().GetBoundWeight();
        exchange.Improve(optimum, 300'000);
        gained += exchange.GetAscent().GetBoundWeight() - atFirst;
        EXPECT_LE(exchange.GetAscent().GetBoundWeight(), optimum);

        CutChecker checker(flat, root);
        exchange.Report(checker);
        EXPECT_EQ(checker.sum, exchange.GetAscent().GetBound());
        for (const HalfEdge half : flat.GetHalves())
            EXPECT_EQ(exchange.GetAscent().GetReduced(half) + checker.charged[half],
                      flat.GetWeight(half.Edge()) << exchange.GetAscent().GetGrainShift());
    }
    EXPECT_GT(gained, 20U);
}

/// What a search finds: the weight, the number of trees, and the first of them.
struct Found
{
    std::uint64_t weight;
    std::uint64_t count;
    std::vector<std::vector<EdgeIndex>> trees;
};

/// Derives the trees of a search, and checks that they come one by one as they are numbered.
Found DeriveTrees(const DijkstraSteinerSearch<1>& search, const Network& network, Budget& budget)
{
    constexpr std::uint64_t kMost = 300;
    std::vector<StrandIndex> strands;
    for (const EdgeIndex edge : search.GetNetwork().GetEdges())
        strands.push_back(network.GetStrand(search.GetNetwork().GetNetworkEdge(edge)));
    LabelDerivations<1> derivations(search);
    DerivationGraph graph(network.GetStrands());
    DerivationBuilder builder(derivations, strands, budget);
    EXPECT_EQ(builder.Build(graph), DerivationBuilder::EOutcome::Complete);
    Found found{search.GetBound(), graph.GetCount(builder.GetWhole()), {}};
    DerivationWalk walk(derivations, network.GetStrands(), strands);
    for (std::uint64_t rank = 0; rank < std::min(found.count, kMost); ++rank) {
        std::vector<EdgeIndex> numbered;
        graph.AppendEdges(builder.GetWhole(), rank, numbered);
        EXPECT_TRUE(walk.MoveNext());
        std::vector<EdgeIndex> walked(walk.GetTree().begin(), walk.GetTree().end());
        std::sort(numbered.begin(), numbered.end());
        std::sort(walked.begin(), walked.end());
        EXPECT_TRUE(walked == numbered);
        found.trees.push_back(std::move(walked));
    }
    EXPECT_EQ(walk.MoveNext(), found.count > kMost);
    std::sort(found.trees.begin(), found.trees.end());
    if (found.count > kMost)
        found.trees.clear();
    return found;
}

TEST_F(SteinerBlock, LosesNoTreeToTestsOfWhatStandsInTheWay)
{
    std::int64_t discarded = 0;
    for (int round = 0; round < 60 && !HasFailure(); ++round) {
        const SteinerGraph graph = DrawGrid(mRandom, 9, 11);
        StrandPool strands;
        const Network network = *BuildNetwork(graph.View(), graph.terminals, {}, strands);
        const FlatNetwork flat(network);
        BlockBounds bounds(flat, 1'000'000, mBudget);
        bounds.GrowTree(flat.GetTerminals().front());
        std::vector<CompletionBound<1>> completion;
        bounds.AppendBounds(2, bounds.GetKnownWeight(), completion);
        const auto find = [&](std::size_t untested) {
            DijkstraSteinerSearch<1> search(flat, bounds.GetRoot(), completion,
                                            bounds.GetKnownWeight(), mBudget);
            search.SetUntestedLabels(untested);
            EXPECT_EQ(search.Run(tuning::kNoEnd), DijkstraSteinerSearch<1>::EOutcome::Solved);
            const LabelTable& labels = search.GetLabels();
            for (std::uint32_t label = 0; label < labels.GetCount(); ++label)
                discarded += labels.Get({label}).state == ELabelState::Discarded ? 1 : 0;
            return DeriveTrees(search, network, mBudget);
        };
        const Found untested = find(tuning::kNoEnd);
        const Found tested = find(0);
        EXPECT_EQ(tested.weight, untested.weight);
        EXPECT_EQ(tested.count, untested.count);
        EXPECT_TRUE(tested.trees == untested.trees);
    }
    EXPECT_GT(discarded, 500);
}

TEST_F(SteinerBlock, HasTheSameTreesHoweverMuchEffortFindsThem)
{
    constexpr std::uint32_t kSmallWeights = 40;
    constexpr std::uint32_t kRounds = 48;
    for (std::uint32_t round = 0; round < kRounds && !HasFailure(); ++round) {
        const SteinerGraph graph = round >= kSmallWeights ? DrawGrid(mRandom, 8, 12, 50)
                                   : round % 2 == 0       ? DrawGrid(mRandom, 7, 10)
                                                          : DrawCube(mRandom, 1 + round / 2 % 2);
        StrandPool strands;
        const Network network = *BuildNetwork(graph.View(), graph.terminals, {}, strands);
        const auto search = [&](auto find) {
            Network block = network;
            TreeFamily family(strands);
            BlockSearch blockSearch(block, 1'000'000, mBudget);
            blockSearch.PruneQuickly(0);
            const std::optional<Outcome> outcome = find(blockSearch, family);
            EXPECT_TRUE(outcome && outcome->weight == outcome->lowerBound);
            std::set<std::vector<EdgeIndex>> trees;
            for (std::uint64_t rank = 0; rank < std::min<std::uint64_t>(family.GetCount(), 500);
                 ++rank)
                trees.insert(family.GetTree(rank));
            EXPECT_EQ(trees.size(), std::min<std::uint64_t>(family.GetCount(), 500));
            return std::tuple(outcome ? outcome->weight : 0, family.GetCount(),
                              family.GetCount() > 500 ? decltype(trees){} : trees);
        };
        const auto byTable = search([](BlockSearch& block, TreeFamily& family) {
            return block.SearchByTable(family, tuning::kTableSteps);
        });
        const auto withMoreEffort = search([](BlockSearch& block, TreeFamily& family) {
            return block.SearchWithMoreEffort(family);
        });
        const auto last = search([](BlockSearch& block, TreeFamily& family) {
            return std::optional(block.Search(family));
        });
        EXPECT_TRUE(withMoreEffort == last);
        EXPECT_TRUE(byTable == last);
    }
    EXPECT_EQ(mBudget.GetSteps(), 181'046'967U) << "or a stage does more or less than it did";
}

} // namespace

} // namespace qe::graph
