#include "Engine/Graph/Steiner/List/TableDerivations.h"

#include "Engine/Graph/Core/GraphView.h"

#include <bit>
#include <span>

namespace qe::graph {

TableDerivations::TableDerivations(const TableSearch& search)
    : Derivations(search.GetNetwork().GetNodeCount() * search.GetSetLimit()), mSearch(search)
{}

Derivations::Rank TableDerivations::GetRank(LabelIndex label) const
{
    const TableSearch::Set set = GetSet(label);
    return {.terminals = static_cast<std::uint32_t>(std::popcount(set)),
            .weight = mSearch.GetWeights(GetNode(label))[set]};
}

LabelIndex TableDerivations::GetWhole() const
{
    return GetLabel(mSearch.GetRoot(), mSearch.GetAll());
}

std::uint64_t TableDerivations::FindSteps(LabelIndex label)
{
    const NodeIndex node = GetNode(label);
    const TableSearch::Set set = GetSet(label);
    const std::uint64_t weight = mSearch.GetWeights(node)[set];
    const auto arcs = mSearch.GetNetwork().GetArcs(node);
    // No step leads to an end: what weighs more than the set at an end is not in the table.
    for (const FlatNetwork::Arc& arc : arcs) {
        if (mSearch.GetWeights(arc.target)[set] + arc.weight == weight)
            AddStep({.edge = arc.half.Edge(), .label = GetLabel(arc.target, set)});
    }
    return arcs.size();
}

std::uint64_t TableDerivations::FindJoins(LabelIndex label)
{
    const NodeIndex node = GetNode(label);
    const std::span<const std::uint64_t> weights = mSearch.GetWeights(node);
    const TableSearch::Set set = GetSet(label);
    const TableSearch::Set others = set & (set - 1);
    for (TableSearch::Set rest = others; rest != 0; rest = (rest - 1) & others) {
        if (weights[set ^ rest] + weights[rest] == weights[set])
            AddJoin({.branch = GetLabel(node, set ^ rest), .others = GetLabel(node, rest)});
    }
    return std::uint64_t{1} << std::popcount(others);
}

} // namespace qe::graph
