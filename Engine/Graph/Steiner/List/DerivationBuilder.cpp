#include "Engine/Graph/Steiner/List/DerivationBuilder.h"

#include "Engine/Graph/Steiner/Network/Budget.h"

#include <algorithm>
#include <numeric>
#include <tuple>
#include <utility>

namespace qe::graph {

template <std::size_t Words>
DerivationBuilder<Words>::DerivationBuilder(Derivations<Words>& derivations,
                                            std::span<const StrandIndex> strands, Budget& budget)
    : mDerivations(derivations), mStrands(strands), mBudget(budget)
{}

template <std::size_t Words>
DerivationBuilder<Words>::~DerivationBuilder()
{
    mBudget.Release(mCharged);
}

template <std::size_t Words>
typename DerivationBuilder<Words>::EOutcome DerivationBuilder<Words>::Build(DerivationGraph& graph)
{
    const DijkstraSteinerSearch<Words>& search = mDerivations.GetSearch();
    mItemOfLabel.assign(search.GetLabels().GetCount(), kNoIndex);
    Visit(mDerivations.GetWhole());
    if (!Collect())
        return EOutcome::Exhausted;
    std::vector<std::uint32_t> order(mItems.size());
    std::iota(order.begin(), order.end(), 0U);
    const auto getRank = [&](std::uint32_t item) {
        const Label& label = search.GetLabels().Get(mItems[item].label);
        return std::tuple(search.GetSet(label.set).GetSize(), label.weight, item);
    };
    std::sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
        return getRank(left) < getRank(right);
    });
    for (const std::uint32_t item : order)
        AddParts(mItems[item], graph);
    mWhole = GetItem(mDerivations.GetWhole()).part;
    return EOutcome::Complete;
}

template <std::size_t Words>
void DerivationBuilder<Words>::Visit(LabelIndex label)
{
    if (mItemOfLabel[label] != kNoIndex)
        return;
    mItemOfLabel[label] = static_cast<std::uint32_t>(mItems.size());
    mItems.push_back({.label = label});
}

/// Expands the visited labels and visits what they lead to. Returns false when the budget ran out.
template <std::size_t Words>
bool DerivationBuilder<Words>::Collect()
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
template <std::size_t Words>
void DerivationBuilder<Words>::AddParts(Item& item, DerivationGraph& graph)
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

template class DerivationBuilder<1>;
template class DerivationBuilder<2>;
template class DerivationBuilder<4>;
template class DerivationBuilder<8>;

} // namespace qe::graph
