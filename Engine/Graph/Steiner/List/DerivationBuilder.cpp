#include "Engine/Graph/Steiner/List/DerivationBuilder.h"

#include "Engine/Graph/Steiner/Network/Budget.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace qe::graph {

template <std::size_t Words>
DerivationBuilder<Words>::DerivationBuilder(const DijkstraSteinerSearch<Words>& search,
                                            std::span<const StrandIndex> strands, Budget& budget)
    : mSearch(search), mStrands(strands), mBudget(budget)
{}

template <std::size_t Words>
typename DerivationBuilder<Words>::EOutcome DerivationBuilder<Words>::Build(DerivationGraph& graph)
{
    mItemOfLabel.assign(mSearch.GetLabels().GetCount(), kNoIndex);
    const std::uint32_t whole = Visit(mSearch.FindSettled(mSearch.GetRoot(), mSearch.GetAll()));
    if (!Collect())
        return EOutcome::Exhausted;
    std::vector<std::uint32_t> order(mItems.size());
    std::iota(order.begin(), order.end(), 0U);
    const auto getRank = [this](std::uint32_t item) {
        const Label& label = mSearch.GetLabels().Get(mItems[item].label);
        return std::tuple(mSearch.GetSet(label.set).GetSize(), label.weight, item);
    };
    std::sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
        return getRank(left) < getRank(right);
    });
    for (const std::uint32_t item : order) {
        if (mBudget.IsExhausted())
            return EOutcome::Exhausted;
        AddParts(mItems[item], graph);
    }
    mWhole = mItems[whole].part;
    return EOutcome::Complete;
}

/// Returns the position of the label's item, a new one when it has none.
template <std::size_t Words>
std::uint32_t DerivationBuilder<Words>::Visit(LabelIndex label)
{
    if (mItemOfLabel[label] == kNoIndex) {
        mItemOfLabel[label] = static_cast<std::uint32_t>(mItems.size());
        mItems.push_back({.label = label});
    }
    return mItemOfLabel[label];
}

template <std::size_t Words>
typename DerivationBuilder<Words>::Item& DerivationBuilder<Words>::GetItem(LabelIndex label)
{
    return mItems[mItemOfLabel[label]];
}

/// Finds the steps and joins of the visited labels and visits what they lead to. Returns false
/// when the budget ran out.
template <std::size_t Words>
bool DerivationBuilder<Words>::Collect()
{
    std::size_t charged = 0;
    for (std::size_t next = 0; next < mItems.size(); ++next) {
        if (mBudget.IsExhausted())
            return false;
        Item item = mItems[next];
        FindSteps(item);
        FindJoins(item);
        mItems[next] = item;
        for (std::uint32_t step = 0; step < item.stepCount; ++step)
            Visit(mSteps[item.firstStep + step].label);
        for (std::uint32_t join = 0; join < item.joinCount; ++join) {
            Visit(mJoins[item.firstJoin + join].branch);
            Visit(mJoins[item.firstJoin + join].others);
        }
        // The graph to be filled takes about as much again.
        const std::size_t bytes =
            2 * (mItems.capacity() * sizeof(Item) + mSteps.capacity() * sizeof(Step) +
                 mJoins.capacity() * sizeof(Join));
        mBudget.Charge(bytes - charged);
        charged = bytes;
    }
    return true;
}

/// Records the edges by which the label's branch may begin.
template <std::size_t Words>
void DerivationBuilder<Words>::FindSteps(Item& item)
{
    const FlatNetwork& network = mSearch.GetNetwork();
    const Label& label = mSearch.GetLabels().Get(item.label);
    const Set& set = mSearch.GetSet(label.set);
    item.firstStep = static_cast<std::uint32_t>(mSteps.size());
    for (const FlatNetwork::Arc& arc : network.GetArcs(label.node)) {
        if (arc.weight > label.weight || arc.target == mSearch.GetRoot())
            continue;
        if (network.IsTerminal(arc.target) && !set.Contains(mSearch.GetBit(arc.target)))
            continue;
        const LabelIndex below = mSearch.FindSettled(arc.target, label.set);
        if (!below.IsValid())
            continue;
        if (mSearch.GetLabels().Get(below).weight + arc.weight == label.weight)
            mSteps.push_back({.edge = arc.half.Edge(), .label = below});
    }
    item.stepCount = static_cast<std::uint32_t>(mSteps.size()) - item.firstStep;
}

/// Records the pairs of labels at the label's node that make it up. At the root, branches are
/// added in the order of their smallest terminals.
template <std::size_t Words>
void DerivationBuilder<Words>::FindJoins(Item& item)
{
    using Entry = typename NodeLabels<Words>::Entry;
    const Label& label = mSearch.GetLabels().Get(item.label);
    const Set& all = mSearch.GetAll();
    const Set& set = mSearch.GetSet(label.set);
    const NodeLabels<Words>& settled = mSearch.GetSettled(label.node);
    item.firstJoin = static_cast<std::uint32_t>(mJoins.size());
    if (label.node == mSearch.GetRoot()) {
        settled.ForEachDisjoint(all.Without(set), all, [&](const Entry& branch) {
            if (mSearch.IsNextBranch(branch.set, set.Without(branch.set)))
                TryJoin(label, branch);
        });
    } else {
        settled.ForEachPart(set, [&](const Entry& branch) { TryJoin(label, branch); });
    }
    item.joinCount = static_cast<std::uint32_t>(mJoins.size()) - item.firstJoin;
}

/// Records the branch and what is left without it, if together they weigh as much as the label.
template <std::size_t Words>
void DerivationBuilder<Words>::TryJoin(const Label& label,
                                       const typename NodeLabels<Words>::Entry& branch)
{
    if (branch.weight > label.weight)
        return;
    const Set others = mSearch.GetSet(label.set).Without(branch.set);
    const LabelIndex rest = mSearch.FindSettled(label.node, others);
    if (rest.IsValid() && mSearch.GetLabels().Get(rest).weight + branch.weight == label.weight)
        mJoins.push_back({.branch = branch.label, .others = rest});
}

/// Adds the part that is the label's branch, and the one that is all of the label.
template <std::size_t Words>
void DerivationBuilder<Words>::AddParts(Item& item, DerivationGraph& graph)
{
    const Label& label = mSearch.GetLabels().Get(item.label);
    item.branch = graph.AddPart();
    if (label.weight == 0)
        graph.AddEmpty();
    for (std::uint32_t place = 0; place < item.stepCount; ++place) {
        const Step& step = mSteps[item.firstStep + place];
        graph.AddStep(mStrands[step.edge.value], GetItem(step.label).part);
    }
    item.part = graph.AddPart();
    graph.AddJoin(item.branch, {});
    for (std::uint32_t place = 0; place < item.joinCount; ++place) {
        const Join& join = mJoins[item.firstJoin + place];
        graph.AddJoin(GetItem(join.branch).branch, GetItem(join.others).part);
    }
}

template <std::size_t Words>
void DerivationBuilder<Words>::AppendOneTree(std::vector<EdgeIndex>& edges)
{
    std::vector<LabelIndex> open{mSearch.FindSettled(mSearch.GetRoot(), mSearch.GetAll())};
    while (!open.empty()) {
        Item item{.label = open.back()};
        open.pop_back();
        if (mSearch.GetLabels().Get(item.label).weight == 0)
            continue;
        FindSteps(item);
        if (item.stepCount > 0) {
            edges.push_back(mSteps[item.firstStep].edge);
            open.push_back(mSteps[item.firstStep].label);
            continue;
        }
        FindJoins(item);
        open.push_back(mJoins[item.firstJoin].branch);
        open.push_back(mJoins[item.firstJoin].others);
    }
}

template class DerivationBuilder<1>;
template class DerivationBuilder<2>;
template class DerivationBuilder<4>;
template class DerivationBuilder<8>;

} // namespace qe::graph
