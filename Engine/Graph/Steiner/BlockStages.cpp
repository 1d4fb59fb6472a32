#include "Engine/Graph/Steiner/BlockStages.h"

#include "Engine/Graph/Steiner/List/SpanningBlock.h"
#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"
#include "Engine/Graph/Steiner/Reduce/DistanceReduction.h"

#include <array>

namespace qe::graph {

BlockStages::BlockStages(OpenNetwork& block, TreeFamily& family, Budget& budget)
    : mBlock(block), mFamily(family), mBudget(budget), mEdgesBefore(block.network.GetEdgeCount())
{}

std::optional<BlockSearch::Outcome> BlockStages::Run()
{
    using Stage = EState (BlockStages::*)();
    static constexpr std::array<Stage, 9> kStages{
        &BlockStages::SpanTerminals,        &BlockStages::PruneQuickly,
        &BlockStages::SearchBySmallTable,   &BlockStages::SearchQuickly,
        &BlockStages::SearchByTable,        &BlockStages::PruneThoroughly,
        &BlockStages::SearchWithMoreEffort, &BlockStages::TryDistanceReductions,
        &BlockStages::SearchToTheEnd,
    };
    for (const Stage stage : kStages) {
        const EState state = (this->*stage)();
        if (state == EState::Solved)
            break;
        if (state == EState::Shrunk) {
            PrepareNextRound();
            break;
        }
    }
    return mOutcome;
}

BlockStages::EState BlockStages::SpanTerminals()
{
    if (!IsSpanningBlock(mBlock.network))
        return EState::Open;
    const SpanningBlockTrees trees = AddSpanningTrees(mBlock.network, mFamily, mBudget);
    mOutcome = {
        .weight = trees.weight, .lowerBound = trees.weight, .hasAllTrees = trees.isCountExact};
    return EState::Solved;
}

BlockStages::EState BlockStages::PruneQuickly()
{
    mSearch.emplace(mBlock.network, mBlock.knownWeight, mBudget);
    mPruned += mSearch->PruneQuickly(mBlock.round);
    return GetStateAfterPruning();
}

BlockStages::EState BlockStages::SearchBySmallTable()
{
    return Conclude(mSearch->SearchByTable(mFamily, tuning::kSmallTableSteps));
}

BlockStages::EState BlockStages::SearchQuickly()
{
    return Conclude(mSearch->SearchQuickly(mFamily));
}

BlockStages::EState BlockStages::SearchByTable()
{
    return Conclude(mSearch->SearchByTable(mFamily, tuning::kTableSteps));
}

BlockStages::EState BlockStages::PruneThoroughly()
{
    mPruned += mSearch->PruneThoroughly();
    return GetStateAfterPruning();
}

BlockStages::EState BlockStages::SearchWithMoreEffort()
{
    return Conclude(mSearch->SearchWithMoreEffort(mFamily));
}

/// Tries whether the dearer reductions, not applied so far, find enough in a hard block.
BlockStages::EState BlockStages::TryDistanceReductions()
{
    if (mBlock.reductions == EReductions::Distances)
        return EState::Open;
    Network reduced = mBlock.network;
    ReduceByDistances(reduced, mBudget);
    const std::size_t edgesBefore = mBlock.network.GetEdgeCount();
    if (!IsWorthReducing(edgesBefore - reduced.GetEdgeCount(), edgesBefore))
        return EState::Open;
    mBlock.reductions = EReductions::Distances;
    return EState::Shrunk;
}

BlockStages::EState BlockStages::SearchToTheEnd()
{
    return Conclude(mSearch->Search(mFamily));
}

BlockStages::EState BlockStages::Conclude(const std::optional<BlockSearch::Outcome>& outcome)
{
    mOutcome = outcome;
    return outcome ? EState::Solved : EState::Open;
}

BlockStages::EState BlockStages::GetStateAfterPruning()
{
    const bool isShrunk = IsWorthReducing(mPruned, mEdgesBefore) ||
                          (mSearch->IsWorthContracting() && !mBudget.IsExhausted());
    return isShrunk ? EState::Shrunk : EState::Open;
}

/// Returns whether so much was pruned that the reductions may find more.
bool BlockStages::IsWorthReducing(std::size_t pruned, std::size_t edgesBefore)
{
    return tuning::kReducedShare * pruned > edgesBefore && !mBudget.IsExhausted();
}

void BlockStages::PrepareNextRound()
{
    mBlock.knownWeight = mSearch->GetKnownWeight();
    mSearch->ContractForced();
    ++mBlock.round;
}

} // namespace qe::graph
