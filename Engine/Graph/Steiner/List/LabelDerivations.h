#ifndef ENGINE_GRAPH_STEINER_LIST_LABELDERIVATIONS_H
#define ENGINE_GRAPH_STEINER_LIST_LABELDERIVATIONS_H

#include "Engine/Graph/Steiner/Exact/DijkstraSteinerSearch.h"
#include "Engine/Graph/Steiner/List/Derivations.h"

#include <cstddef>
#include <cstdint>

namespace qe::graph {

/// The derivations of a best-first search. At its root, the branch with the greatest smallest
/// terminal is joined with the others. Takes time in proportion to the labels that are looked at,
/// times what FindSettled and the settled labels of a node cost.
template <std::size_t Words>
class LabelDerivations final : public Derivations
{
public:
    using Set = TerminalSet<Words>;

    /// Keeps a reference to the search.
    explicit LabelDerivations(const DijkstraSteinerSearch<Words>& search);

    [[nodiscard]] Rank GetRank(LabelIndex label) const override;
    [[nodiscard]] LabelIndex GetWhole() const override
    {
        return mSearch.FindSettled(mSearch.GetRoot(), mSearch.GetAll());
    }

private:
    using Entry = typename NodeLabels<Words>::Entry;

    [[nodiscard]] std::uint64_t GetWeight(LabelIndex label) const
    {
        return mSearch.GetLabels().Get(label).weight;
    }
    std::uint64_t FindSteps(LabelIndex index) override;
    std::uint64_t FindJoins(LabelIndex index) override;
    void TryJoin(const Label& label, const Entry& branch);

    const DijkstraSteinerSearch<Words>& mSearch;
};

} // namespace qe::graph

#endif
