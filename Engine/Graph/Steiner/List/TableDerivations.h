#ifndef ENGINE_GRAPH_STEINER_LIST_TABLEDERIVATIONS_H
#define ENGINE_GRAPH_STEINER_LIST_TABLEDERIVATIONS_H

#include "Engine/Graph/Steiner/Exact/TableSearch.h"
#include "Engine/Graph/Steiner/List/Derivations.h"

#include <cstdint>

namespace qe::graph {

/// The derivations of a search by table. A join costs two places of the table.
class TableDerivations final : public Derivations
{
public:
    /// What search and derivations take for a place of the table, at least.
    static constexpr std::uint64_t kBytesPerPlace = 32;

    /// Keeps a reference to the search.
    explicit TableDerivations(const TableSearch& search);

    [[nodiscard]] Rank GetRank(LabelIndex label) const override;
    [[nodiscard]] LabelIndex GetWhole() const override;

private:
    [[nodiscard]] LabelIndex GetLabel(NodeIndex node, TableSearch::Set set) const
    {
        return {node.value * mSearch.GetSetLimit() + set};
    }
    [[nodiscard]] NodeIndex GetNode(LabelIndex label) const
    {
        return {label.value / mSearch.GetSetLimit()};
    }
    [[nodiscard]] TableSearch::Set GetSet(LabelIndex label) const
    {
        return label.value % mSearch.GetSetLimit();
    }
    std::uint64_t FindSteps(LabelIndex label) override;
    std::uint64_t FindJoins(LabelIndex label) override;

    const TableSearch& mSearch;
};

} // namespace qe::graph

#endif
