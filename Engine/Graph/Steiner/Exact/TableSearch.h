#ifndef ENGINE_GRAPH_STEINER_EXACT_TABLESEARCH_H
#define ENGINE_GRAPH_STEINER_EXACT_TABLESEARCH_H

#include "Engine/Graph/Core/Dijkstra.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

class Budget;

/// The exact search over terminal sets without a bound: the dynamic programme of Erickson, Monma
/// and Veinott (1987) in a table of all nodes and sets, one set of terminals being the bits of a
/// number.
///
/// A place of the table holds the weight of the lightest partial tree that joins a set to a node.
/// Where nodes and terminals are few that is found sooner than anything is bounded. As in
/// DijkstraSteinerSearch, nothing grows out of the root, nor out of a terminal that is not in the
/// set, and what weighs more than the set joined to such a terminal is left out, strictly.
class TableSearch
{
public:
    using Set = std::uint32_t;

    /// What a search takes.
    struct Cost
    {
        std::uint64_t steps;
        std::uint64_t places;
    };
    /// Returns what a search of the network takes; more than any search may when there are too
    /// many terminals.
    [[nodiscard]] static Cost GetCost(const FlatNetwork& network);

    /// Takes a network of at least two terminals. Keeps references to both, and charges the budget
    /// for the table.
    TableSearch(const FlatNetwork& network, Budget& budget);
    TableSearch(const TableSearch&) = delete;
    TableSearch& operator=(const TableSearch&) = delete;
    ~TableSearch();

    /// Fills the table. Returns false when the budget ran out before.
    bool Run();

    [[nodiscard]] const FlatNetwork& GetNetwork() const { return mNetwork; }
    /// Returns the last terminal, which is in no set; the others are the bits in their order.
    [[nodiscard]] NodeIndex GetRoot() const { return mNetwork.GetTerminals().back(); }
    /// Returns the set of all terminals but the root, and the number above all sets.
    [[nodiscard]] Set GetAll() const { return mSetLimit - 1; }
    [[nodiscard]] Set GetSetLimit() const { return mSetLimit; }

    /// Returns the weights at a node, by set; kUnreached where no minimum tree needs one.
    [[nodiscard]] std::span<const std::uint64_t> GetWeights(NodeIndex node) const
    {
        return {mWeights.data() + std::size_t{node.value} * mSetLimit, mSetLimit};
    }

private:
    /// Returns whether the node is the root or a terminal outside the set.
    [[nodiscard]] bool IsEnd(NodeIndex node, Set set) const { return (mBits[node] & ~set) != 0; }
    [[nodiscard]] std::span<std::uint64_t> GetWeights(NodeIndex node)
    {
        return {mWeights.data() + std::size_t{node.value} * mSetLimit, mSetLimit};
    }
    void Join(std::span<const Set> sets);
    void Grow(Set set);

    const FlatNetwork& mNetwork;
    Budget& mBudget;
    Set mSetLimit;
    /// The bit of each terminal, one above all sets for the root, 0 for other nodes.
    IndexedVector<NodeIndex, Set> mBits;
    std::vector<std::uint64_t> mWeights;
    DijkstraSearch mSearch;
};

} // namespace qe::graph

#endif
