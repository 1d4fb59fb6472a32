#include "Engine/Graph/Steiner/List/LabelDerivations.h"

namespace qe::graph {

template <std::size_t Words>
LabelDerivations<Words>::LabelDerivations(const DijkstraSteinerSearch<Words>& search)
    : Derivations(search.GetLabels().GetCount()), mSearch(search)
{}

template <std::size_t Words>
Derivations::Rank LabelDerivations<Words>::GetRank(LabelIndex label) const
{
    const Label& what = mSearch.GetLabels().Get(label);
    return {.terminals = mSearch.GetSet(what.set).GetSize(), .weight = what.weight};
}

template <std::size_t Words>
std::uint64_t LabelDerivations<Words>::FindSteps(LabelIndex index)
{
    const Label& label = mSearch.GetLabels().Get(index);
    const FlatNetwork& network = mSearch.GetNetwork();
    const Set& set = mSearch.GetSet(label.set);
    for (const FlatNetwork::Arc& arc : network.GetArcs(label.node)) {
        if (arc.weight > label.weight || arc.target == mSearch.GetRoot())
            continue;
        if (network.IsTerminal(arc.target) && !set.Contains(mSearch.GetBit(arc.target)))
            continue;
        const LabelIndex below = mSearch.FindSettled(arc.target, label.set);
        if (below.IsValid() && GetWeight(below) + arc.weight == label.weight)
            AddStep({.edge = arc.half.Edge(), .label = below});
    }
    return network.GetArcs(label.node).size();
}

template <std::size_t Words>
std::uint64_t LabelDerivations<Words>::FindJoins(LabelIndex index)
{
    const Label& label = mSearch.GetLabels().Get(index);
    const Set& all = mSearch.GetAll();
    const Set& set = mSearch.GetSet(label.set);
    const NodeLabels<Words>& settled = mSearch.GetSettled(label.node);
    if (label.node != mSearch.GetRoot())
        return settled.ForEachPart(set, [&](const Entry& branch) { TryJoin(label, branch); });
    return settled.ForEachDisjoint(all.Without(set), all, [&](const Entry& branch) {
        if (mSearch.IsNextBranch(branch.set, set.Without(branch.set)))
            TryJoin(label, branch);
    });
}

/// Records the branch and what is left without it, if together they weigh as much as the label.
template <std::size_t Words>
void LabelDerivations<Words>::TryJoin(const Label& label, const Entry& branch)
{
    if (branch.weight > label.weight)
        return;
    const Set others = mSearch.GetSet(label.set).Without(branch.set);
    const LabelIndex rest = mSearch.FindSettled(label.node, others);
    if (rest.IsValid() && GetWeight(rest) + branch.weight == label.weight)
        AddJoin({.branch = branch.label, .others = rest});
}

template class LabelDerivations<1>;
template class LabelDerivations<2>;
template class LabelDerivations<4>;
template class LabelDerivations<8>;

} // namespace qe::graph
