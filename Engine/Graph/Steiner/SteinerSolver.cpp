#include "Engine/Graph/Steiner/SteinerSolver.h"

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/BlockSearch.h"
#include "Engine/Graph/Steiner/BlockStages.h"
#include "Engine/Graph/Steiner/List/TreeFamily.h"
#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/NetworkBuilder.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"
#include "Engine/Graph/Steiner/Network/StrandPool.h"
#include "Engine/Graph/Steiner/Network/ZeroWeightComponents.h"
#include "Engine/Graph/Steiner/Reduce/BlockSplit.h"
#include "Engine/Graph/Steiner/Reduce/DegreeReduction.h"
#include "Engine/Graph/Steiner/Reduce/DistanceReduction.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace qe::graph {

namespace {

/// Trees with edges of weight 0 are counted one by one, so their count stops this far beyond
/// those that are listed.
constexpr std::uint64_t kCountedBeyondList = 100000;

/// Takes the graph apart, has each block searched, and lists the trees over all of them.
class SteinerSolver
{
public:
    SteinerSolver(const GraphView& graph, std::vector<NodeIndex> terminals,
                  const SteinerLimits& limits)
        : mGraph(graph),
          mTerminals(std::move(terminals)),
          mLimits(limits),
          mBudget(limits.time - limits.time / tuning::kShareOfLastTree, limits.memory),
          mFamily(mStrands)
    {}

    SteinerResult Solve();

private:
    OpenNetwork TakeSmallest();
    void Reduce(OpenNetwork open);
    void TakeFixed(OpenNetwork& open);
    void SearchBlock(OpenNetwork open);
    void ListTrees();
    void ListTreesThrough(ZeroWeightComponents& components);
    void SortTrees();

    const GraphView& mGraph;
    std::vector<NodeIndex> mTerminals;
    const SteinerLimits& mLimits;
    Budget mBudget;
    StrandPool mStrands;
    TreeFamily mFamily;
    std::vector<OpenNetwork> mOpen;
    SteinerResult mResult;
};

SteinerResult SteinerSolver::Solve()
{
    ZeroWeightComponents components(mGraph, mTerminals);
    std::optional<Network> network =
        BuildNetwork(mGraph, mTerminals, components.GetComponents(), mStrands);
    if (!network)
        return mResult;
    mResult.connected = true;
    mOpen.push_back({.network = std::move(*network), .knownWeight = kUnreached});
    while (!mOpen.empty())
        Reduce(TakeSmallest());
    if (components.GetComponents().empty())
        ListTrees();
    else
        ListTreesThrough(components);
    SortTrees();
    return std::move(mResult);
}

/// Takes the smallest open network, so that what is easy is proven before the budget runs out.
OpenNetwork SteinerSolver::TakeSmallest()
{
    const auto smallest = std::min_element(
        mOpen.begin(), mOpen.end(), [](const OpenNetwork& left, const OpenNetwork& right) {
            return left.network.GetEdgeCount() < right.network.GetEdgeCount();
        });
    OpenNetwork open = std::move(*smallest);
    mOpen.erase(smallest);
    return open;
}

/// Takes out what degrees and cut nodes decide, and has the blocks searched.
void SteinerSolver::Reduce(OpenNetwork open)
{
    Network& network = open.network;
    if (open.reductions == EReductions::Distances)
        ReduceByDistances(network, mBudget);
    else
        ReduceDegrees(network);
    TakeFixed(open);
    if (network.GetTerminalCount() <= 1)
        return;
    std::vector<Network> blocks = SplitIntoBlocks(network);
    if (blocks.size() == 1) {
        SearchBlock({.network = std::move(blocks.front()),
                     .knownWeight = open.knownWeight,
                     .round = open.round,
                     .reductions = open.reductions});
        return;
    }
    for (Network& block : blocks)
        mOpen.push_back({.network = std::move(block),
                         .knownWeight = kUnreached,
                         .reductions = open.reductions});
}

/// Takes over what was fixed in the network since the last time.
void SteinerSolver::TakeFixed(OpenNetwork& open)
{
    const std::vector<StrandIndex>& strands = open.network.GetFixedStrands();
    for (; open.takenStrands < strands.size(); ++open.takenStrands)
        mFamily.AddStrand(strands[open.takenStrands]);
    const std::uint64_t weight = open.network.GetFixedWeight() - open.takenWeight;
    open.takenWeight += weight;
    mResult.weight += weight;
    mResult.lowerBound += weight;
    if (open.knownWeight != kUnreached)
        open.knownWeight -= weight;
}

void SteinerSolver::SearchBlock(OpenNetwork open)
{
    const std::optional<BlockSearch::Outcome> outcome = BlockStages(open, mFamily, mBudget).Run();
    if (!outcome) {
        mOpen.push_back(std::move(open));
        return;
    }
    mResult.weight += outcome->weight;
    mResult.lowerBound += outcome->lowerBound;
    if (outcome->weight != outcome->lowerBound)
        mResult.proof = EProof::BestFound;
    if (!outcome->hasAllTrees)
        mResult.countProof = ECount::AtLeast;
}

void SteinerSolver::ListTrees()
{
    mResult.count = mFamily.GetCount();
    if (mResult.count == kSaturatedCount)
        mResult.countProof = ECount::AtLeast;
    const std::uint64_t listed = std::min<std::uint64_t>(mResult.count, mLimits.maximumTrees);
    for (std::uint64_t rank = 0; rank < listed; ++rank) {
        if (rank > 0 && mBudget.IsExhausted())
            break;
        mResult.trees.push_back(mFamily.GetTree(rank));
    }
}

/// Lists every tree over the components with every path through them.
void SteinerSolver::ListTreesThrough(ZeroWeightComponents& components)
{
    const std::uint64_t most = mLimits.maximumTrees + kCountedBeyondList;
    const auto take = [this, most](const std::vector<EdgeIndex>& tree) {
        if (mResult.trees.size() < mLimits.maximumTrees)
            mResult.trees.push_back(tree);
        ++mResult.count;
        return mResult.count < most ? ZeroWeightComponents::EStep::Continue
                                    : ZeroWeightComponents::EStep::Stop;
    };
    for (std::uint64_t rank = 0; rank < mFamily.GetCount(); ++rank) {
        const std::vector<EdgeIndex> outer = mFamily.GetTree(rank);
        const ZeroWeightComponents::EStep step = components.ForEachTree(outer, mBudget, take);
        if (step == ZeroWeightComponents::EStep::Stop || mBudget.IsExhausted()) {
            mResult.countProof = ECount::AtLeast;
            return;
        }
    }
}

void SteinerSolver::SortTrees()
{
    std::sort(mResult.trees.begin(), mResult.trees.end(),
              [](const std::vector<EdgeIndex>& left, const std::vector<EdgeIndex>& right) {
                  return left.size() != right.size() ? left.size() < right.size() : left < right;
              });
}

} // namespace

SteinerResult FindCheapestTrees(const GraphView& graph, std::span<const NodeIndex> terminals,
                                const SteinerLimits& limits)
{
    std::vector<NodeIndex> distinct(terminals.begin(), terminals.end());
    std::sort(distinct.begin(), distinct.end());
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    SteinerResult result;
    if (!distinct.empty() && distinct.back().value >= graph.GetNodeCount())
        return result;
    if (distinct.size() > 1)
        return SteinerSolver(graph, std::move(distinct), limits).Solve();
    result.connected = true;
    result.count = 1;
    if (limits.maximumTrees > 0)
        result.trees.emplace_back();
    return result;
}

} // namespace qe::graph
