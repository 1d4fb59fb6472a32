#include "Engine/Graph/Steiner/SteinerSolver.h"

#include "Engine/Graph/Core/Distance.h"
#include "Engine/Graph/Steiner/BlockSearch.h"
#include "Engine/Graph/Steiner/List/TreeFamily.h"
#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/NetworkBuilder.h"
#include "Engine/Graph/Steiner/Network/SaturatingCount.h"
#include "Engine/Graph/Steiner/Network/ZeroWeightComponents.h"
#include "Engine/Graph/Steiner/Reduce/BlockSplit.h"
#include "Engine/Graph/Steiner/Reduce/DegreeReduction.h"
#include "Engine/Graph/Steiner/Reduce/DistanceReduction.h"

#include <algorithm>
#include <utility>

namespace qe::graph {

namespace {

/// Trees with edges of weight 0 are counted one by one, so their count stops this far beyond
/// those that are listed.
constexpr std::uint64_t CountedBeyondList = 100000;

/// One part in so many of the time is kept back to improve the tree that is answered unproven.
constexpr int ShareOfLastTree = 20;

/// Which reductions a network is worth.
enum class EReductions
{
    Degrees,
    Distances,
};

/// A network that still is to be searched, and a weight that some tree of it does not exceed.
struct OpenNetwork
{
    Network network;
    std::uint64_t knownWeight;
    /// How often its block was looked at before.
    std::size_t round;
    EReductions reductions;
    /// What of its fixed strands is in the family already.
    std::size_t takenStrands = 0;
    std::uint64_t takenWeight = 0;
};

class SteinerSolver
{
public:
    SteinerSolver(const GraphView& graph, std::vector<NodeIndex> terminals,
                  const SteinerLimits& limits)
        : mGraph(graph),
          mTerminals(std::move(terminals)),
          mLimits(limits),
          mBudget(limits.time - limits.time / ShareOfLastTree, limits.memory),
          mFamily(mStrands)
    {}

    SteinerResult Solve();

private:
    OpenNetwork TakeSmallest();
    void Reduce(OpenNetwork open);
    void TakeFixed(OpenNetwork& open);
    void SearchBlock(OpenNetwork open);
    bool IsWorthReducing(std::size_t shed, std::size_t edgesBefore);
    bool IsWorthMeasuring(const OpenNetwork& open);
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
    mOpen.push_back({std::move(*network), kUnreached, 0, EReductions::Degrees});
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
        SearchBlock({std::move(blocks.front()), open.knownWeight, open.round, open.reductions});
        return;
    }
    for (Network& block : blocks)
        mOpen.push_back({std::move(block), kUnreached, 0, open.reductions});
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
    BlockSearch search(open.network, open.knownWeight, mBudget);
    const std::uint32_t edgesBefore = open.network.GetEdgeCount();
    std::size_t shed = search.PruneQuickly(open.round);
    const auto isChanged = [&] {
        return IsWorthReducing(shed, edgesBefore) ||
               (search.IsWorthContracting() && !mBudget.IsExhausted());
    };
    std::optional<BlockSearch::Outcome> outcome;
    if (!isChanged())
        outcome = search.SearchQuickly(mFamily);
    if (!outcome && !isChanged())
        shed += search.PruneThoroughly();
    bool isWorthAgain = isChanged();
    if (!outcome && !isWorthAgain) {
        outcome = search.SearchWithMoreEffort(mFamily);
        if (!outcome && IsWorthMeasuring(open)) {
            open.reductions = EReductions::Distances;
            isWorthAgain = true;
        }
    }
    if (!outcome && isWorthAgain) {
        open.knownWeight = search.GetKnownWeight();
        search.ContractForced();
        ++open.round;
        mOpen.push_back(std::move(open));
        return;
    }
    if (!outcome)
        outcome = search.Search(mFamily);
    mResult.weight += outcome->weight;
    mResult.lowerBound += outcome->lowerBound;
    if (outcome->weight != outcome->lowerBound)
        mResult.proof = EProof::BestFound;
    if (outcome->countProof == ECount::AtLeast)
        mResult.countProof = ECount::AtLeast;
}

/// Says whether so much was shed that the reductions may find more.
bool SteinerSolver::IsWorthReducing(std::size_t shed, std::size_t edgesBefore)
{
    return 20 * shed > edgesBefore && !mBudget.IsExhausted();
}

/// Says whether the dearer reductions, not applied to it so far, find enough in a hard network.
bool SteinerSolver::IsWorthMeasuring(const OpenNetwork& open)
{
    if (open.reductions == EReductions::Distances)
        return false;
    Network reduced = open.network;
    ReduceByDistances(reduced, mBudget);
    const std::uint32_t edges = open.network.GetEdgeCount();
    return IsWorthReducing(edges - reduced.GetEdgeCount(), edges);
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
    const std::uint64_t most = mLimits.maximumTrees + CountedBeyondList;
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
