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
#include "Engine/Graph/Steiner/Reduce/DominatedNodes.h"

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
          mMostListed(std::max<std::size_t>(1, limits.maximumTrees)),
          mBudget(limits),
          mFamily(mStrands)
    {}

    SteinerResult Solve();

private:
    OpenNetwork TakeSmallest();
    void Reduce(OpenNetwork open);
    void TakeFixed(OpenNetwork& open);
    void SearchBlock(OpenNetwork open);
    void ListTrees();
    void ListTree(std::vector<EdgeIndex> tree);
    void NameLimit();
    [[nodiscard]] std::size_t GetMostCounted() const;
    void ListTreesThrough(ZeroWeightComponents& components);
    void SortTrees();

    const GraphView& mGraph;
    std::vector<NodeIndex> mTerminals;
    const SteinerLimits& mLimits;
    std::size_t mMostListed;
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
    mFamily.SetMostNumbered(components.GetComponents().empty() ? mMostListed : GetMostCounted());
    mOpen.push_back({.network = std::move(*network), .knownWeight = kUnreached});
    while (!mOpen.empty())
        Reduce(TakeSmallest());
    if (components.GetComponents().empty())
        ListTrees();
    else
        ListTreesThrough(components);
    SortTrees();
    NameLimit();
    mResult.steps = mBudget.GetSteps();
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
    if (RemoveDominatedNodes(network) > 0)
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
    const std::uint64_t listed =
        std::min<std::uint64_t>(mFamily.GetNumberedCount(), mLimits.maximumTrees);
    for (std::uint64_t number = 0; number < listed; ++number) {
        if (number > 0 && mBudget.IsOverdrawn())
            break;
        ListTree(mFamily.GetTree(number));
    }
}

/// Returns up to how many trees are counted when they are counted one by one.
std::size_t SteinerSolver::GetMostCounted() const
{
    return mLimits.answer == EAnswer::OneTree ? 1 : mMostListed + kCountedBeyondList;
}

void SteinerSolver::ListTree(std::vector<EdgeIndex> tree)
{
    constexpr std::size_t kAllocation = 16;
    mBudget.Spend(tree.size());
    mBudget.Charge(sizeof(std::vector<EdgeIndex>) + tree.size() * sizeof(EdgeIndex) + kAllocation);
    mResult.trees.push_back(std::move(tree));
}

/// Lists every tree over the components with every path through them.
void SteinerSolver::ListTreesThrough(ZeroWeightComponents& components)
{
    const std::uint64_t most = GetMostCounted();
    std::vector<EdgeIndex> outer;
    const auto take = [&](std::span<const EdgeIndex> inner) {
        if (mResult.trees.size() < mLimits.maximumTrees) {
            std::vector<EdgeIndex> tree = outer;
            tree.insert(tree.end(), inner.begin(), inner.end());
            std::sort(tree.begin(), tree.end());
            ListTree(std::move(tree));
        }
        ++mResult.count;
        return mResult.count < most ? ZeroWeightComponents::EStep::Continue
                                    : ZeroWeightComponents::EStep::Stop;
    };
    for (std::uint64_t number = 0; number < mFamily.GetNumberedCount(); ++number) {
        outer = mFamily.GetTree(number);
        mBudget.Spend(outer.size());
        const ZeroWeightComponents::EStep step = components.ForEachTree(outer, mBudget, take);
        if (step == ZeroWeightComponents::EStep::Stop || mBudget.IsOverdrawn()) {
            mResult.countProof = ECount::AtLeast;
            return;
        }
    }
    if (mFamily.GetNumberedCount() < mFamily.GetCount())
        mResult.countProof = ECount::AtLeast;
}

/// Names the limit that kept something from the result, if any did.
void SteinerSolver::NameLimit()
{
    const bool isCut = mResult.trees.size() < mResult.count ||
                       mResult.countProof == ECount::AtLeast || mResult.proof != EProof::Optimal;
    if (!isCut || mLimits.answer == EAnswer::OneTree)
        return;
    mResult.limit = mBudget.GetLimitHit();
    if (mResult.limit == ELimit::None || mResult.trees.size() == mLimits.maximumTrees)
        mResult.limit = mResult.proof == EProof::Optimal ? ELimit::Trees : mBudget.GetLimitHit();
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
    if (distinct.size() > 1) {
        SteinerLimits own = limits;
        if (limits.answer == EAnswer::OneTree) {
            own.effort /= tuning::kShareOfOneTree;
            own.maximumTrees = 1;
        }
        return SteinerSolver(graph, std::move(distinct), own).Solve();
    }
    result.connected = true;
    result.count = 1;
    if (limits.maximumTrees > 0)
        result.trees.emplace_back();
    return result;
}

} // namespace qe::graph
