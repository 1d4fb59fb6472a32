#include "Engine/Graph/Steiner/List/DerivationBuilder.h"

#include "Engine/Graph/Steiner/Network/Budget.h"

#include <algorithm>
#include <utility>

namespace qe::graph {

DerivationBuilder::DerivationBuilder(Derivations& derivations, std::span<const StrandIndex> strands,
                                     Budget& budget)
    : mDerivations(derivations), mStrands(strands), mBudget(budget)
{}

DerivationBuilder::~DerivationBuilder()
{
    mBudget.Release(mCharged);
}

DerivationBuilder::EOutcome DerivationBuilder::Build(DerivationGraph& graph)
{
    mItemOfLabel.assign(mDerivations.GetLabelCount(), kNoIndex);
    Visit(mDerivations.GetWhole());
    if (!Collect())
        return EOutcome::Exhausted;
    std::vector<std::pair<Derivations::Rank, std::uint32_t>> order;
    order.reserve(mItems.size());
    for (std::uint32_t item = 0; item < mItems.size(); ++item)
        order.emplace_back(mDerivations.GetRank(mItems[item].label), item);
    std::sort(order.begin(), order.end());
    for (const auto& [rank, item] : order)
        AddParts(mItems[item], graph);
    mWhole = GetItem(mDerivations.GetWhole()).part;
    return EOutcome::Complete;
}

void DerivationBuilder::Visit(LabelIndex label)
{
    if (mItemOfLabel[label] != kNoIndex)
        return;
    mItemOfLabel[label] = static_cast<std::uint32_t>(mItems.size());
    mItems.push_back({.label = label});
}

/// Expands the visited labels and visits what they lead to. Returns false when the budget ran out.
bool DerivationBuilder::Collect()
{
    std::uint64_t spent = mDerivations.GetLookups();
    for (std::size_t next = 0; next < mItems.size(); ++next) {
        if (mBudget.IsOverdrawn())
            return false;
        const LabelIndex label = mItems[next].label;
        mDerivations.Expand(label);
        for (const auto& step : mDerivations.GetSteps(label))
            Visit(step.label);
        for (const auto& join : mDerivations.GetJoins(label)) {
            Visit(join.branch);
            Visit(join.others);
        }
        const std::uint64_t lookups = mDerivations.GetLookups();
        mBudget.Spend(lookups - std::exchange(spent, lookups));
        // The graph to be filled takes about as much again.
        const std::size_t bytes = 2 * (mItems.capacity() * sizeof(Item) + mDerivations.GetBytes());
        mBudget.Charge(bytes - std::exchange(mCharged, bytes));
    }
    return true;
}

/// Adds the part that is the label's branch, and the one that is all of the label.
void DerivationBuilder::AddParts(Item& item, DerivationGraph& graph)
{
    item.branch = graph.AddPart();
    if (mDerivations.IsEmpty(item.label))
        graph.AddEmpty();
    for (const auto& step : mDerivations.GetSteps(item.label))
        graph.AddStep(mStrands[step.edge.value], GetItem(step.label).part);
    item.part = graph.AddPart();
    graph.AddJoin(item.branch, {});
    for (const auto& join : mDerivations.GetJoins(item.label))
        graph.AddJoin(GetItem(join.branch).branch, GetItem(join.others).part);
}

} // namespace qe::graph
