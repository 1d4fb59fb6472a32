#include "Engine/Graph/Steiner/List/Derivations.h"

namespace qe::graph {

template <std::size_t Words>
Derivations<Words>::Derivations(const DijkstraSteinerSearch<Words>& search)
    : mSearch(search), mExpansions(search.GetLabels().GetCount())
{}

template <std::size_t Words>
void Derivations<Words>::Expand(LabelIndex label)
{
    if (mExpansions[label].firstStep != kNoIndex)
        return;
    Expansion expansion{.firstStep = static_cast<std::uint32_t>(mSteps.size()),
                        .firstJoin = static_cast<std::uint32_t>(mJoins.size())};
    FindSteps(mSearch.GetLabels().Get(label));
    FindJoins(mSearch.GetLabels().Get(label));
    expansion.stepCount = static_cast<std::uint32_t>(mSteps.size()) - expansion.firstStep;
    expansion.joinCount = static_cast<std::uint32_t>(mJoins.size()) - expansion.firstJoin;
    mExpansions[label] = expansion;
}

template <std::size_t Words>
std::span<const typename Derivations<Words>::Step>
Derivations<Words>::GetSteps(LabelIndex label) const
{
    return std::span(mSteps).subspan(mExpansions[label].firstStep, mExpansions[label].stepCount);
}

template <std::size_t Words>
std::span<const typename Derivations<Words>::Join>
Derivations<Words>::GetJoins(LabelIndex label) const
{
    return std::span(mJoins).subspan(mExpansions[label].firstJoin, mExpansions[label].joinCount);
}

/// Records the edges by which the label's branch may begin.
template <std::size_t Words>
void Derivations<Words>::FindSteps(const Label& label)
{
    const FlatNetwork& network = mSearch.GetNetwork();
    const Set& set = mSearch.GetSet(label.set);
    mLookups += network.GetArcs(label.node).size();
    for (const FlatNetwork::Arc& arc : network.GetArcs(label.node)) {
        if (arc.weight > label.weight || arc.target == mSearch.GetRoot())
            continue;
        if (network.IsTerminal(arc.target) && !set.Contains(mSearch.GetBit(arc.target)))
            continue;
        const LabelIndex below = mSearch.FindSettled(arc.target, label.set);
        if (below.IsValid() && GetWeight(below) + arc.weight == label.weight)
            mSteps.push_back({.edge = arc.half.Edge(), .label = below});
    }
}

/// Records the pairs of labels at the label's node that make it up. At the root, branches are
/// added in the order of their smallest terminals.
template <std::size_t Words>
void Derivations<Words>::FindJoins(const Label& label)
{
    using Entry = typename NodeLabels<Words>::Entry;
    const Set& all = mSearch.GetAll();
    const Set& set = mSearch.GetSet(label.set);
    const NodeLabels<Words>& settled = mSearch.GetSettled(label.node);
    if (label.node == mSearch.GetRoot()) {
        mLookups += settled.ForEachDisjoint(all.Without(set), all, [&](const Entry& branch) {
            if (mSearch.IsNextBranch(branch.set, set.Without(branch.set)))
                TryJoin(label, branch);
        });
    } else {
        mLookups += settled.ForEachPart(set, [&](const Entry& branch) { TryJoin(label, branch); });
    }
}

/// Records the branch and what is left without it, if together they weigh as much as the label.
template <std::size_t Words>
void Derivations<Words>::TryJoin(const Label& label,
                                 const typename NodeLabels<Words>::Entry& branch)
{
    if (branch.weight > label.weight)
        return;
    const Set others = mSearch.GetSet(label.set).Without(branch.set);
    const LabelIndex rest = mSearch.FindSettled(label.node, others);
    if (rest.IsValid() && GetWeight(rest) + branch.weight == label.weight)
        mJoins.push_back({.branch = branch.label, .others = rest});
}

template <std::size_t Words>
void Derivations<Words>::AppendOneTree(std::vector<EdgeIndex>& edges)
{
    std::vector<LabelIndex> open{GetWhole()};
    while (!open.empty()) {
        const LabelIndex label = open.back();
        open.pop_back();
        if (IsEmpty(label))
            continue;
        Expand(label);
        const std::span<const Step> steps = GetSteps(label);
        if (!steps.empty()) {
            edges.push_back(steps.front().edge);
            open.push_back(steps.front().label);
            continue;
        }
        const Join& join = GetJoins(label).front();
        open.push_back(join.branch);
        open.push_back(join.others);
    }
}

template class Derivations<1>;
template class Derivations<2>;
template class Derivations<4>;
template class Derivations<8>;

} // namespace qe::graph
