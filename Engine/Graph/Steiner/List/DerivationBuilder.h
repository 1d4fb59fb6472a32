#ifndef ENGINE_GRAPH_STEINER_LIST_DERIVATIONBUILDER_H
#define ENGINE_GRAPH_STEINER_LIST_DERIVATIONBUILDER_H

#include "Engine/Graph/Steiner/Exact/DijkstraSteinerSearch.h"
#include "Engine/Graph/Steiner/List/DerivationGraph.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

/// Derives all lightest trees from the labels of a solved search, each exactly once.
///
/// A partial tree at a node is a branch, which begins with one edge (or is the terminal itself),
/// or it is the branch with the smallest terminal joined with the partial tree of the others. At
/// the root it is the branch with the greatest smallest terminal that is joined with the others.
/// As all weights are positive, every tree falls apart so in one way only, and whatever is put
/// together so at the weight of the optimum is a tree. Example: the partial tree that joins
/// {a, b, c} to x by edges x-a, x-b and x-c is the branch {a} with ({b} with {c}), never ({a}
/// with {b}) with {c}.
template <std::size_t Words>
class DerivationBuilder
{
public:
    using Set = TerminalSet<Words>;

    /// Takes the strand of each edge of the network.
    DerivationBuilder(const DijkstraSteinerSearch<Words>& search,
                      std::span<const StrandIndex> strands, Budget& budget);

    enum class EOutcome
    {
        Complete,
        Exhausted,
    };
    /// Fills the graph and answers whether it holds all lightest trees; else it holds nothing.
    EOutcome Build(DerivationGraph& graph);

    /// Answers the part of the graph that is the whole tree.
    [[nodiscard]] std::uint32_t GetWhole() const { return mWhole; }

    /// Appends the edges of one lightest tree, by the first way that fits at every label.
    void AppendOneTree(std::vector<EdgeIndex>& edges);

private:
    struct Step
    {
        EdgeIndex edge;
        std::uint32_t label;
    };
    struct Join
    {
        std::uint32_t branch;
        std::uint32_t others;
    };
    struct Item
    {
        std::uint32_t label;
        std::uint32_t firstStep;
        std::uint32_t stepCount;
        std::uint32_t firstJoin;
        std::uint32_t joinCount;
        std::uint32_t branch;
        std::uint32_t part;
    };

    bool Collect();
    std::uint32_t Visit(std::uint32_t label);
    void FindSteps(Item& item);
    void FindJoins(Item& item);
    void FindJoinsAtRoot(Item& item);
    void AddParts(Item& item, DerivationGraph& graph) const;

    const DijkstraSteinerSearch<Words>& mSearch;
    std::span<const StrandIndex> mStrands;
    Budget& mBudget;
    std::vector<std::uint32_t> mItemOfLabel;
    std::vector<Item> mItems;
    std::vector<Step> mSteps;
    std::vector<Join> mJoins;
    std::uint32_t mWhole = DerivationGraph::None;
};

} // namespace qe::graph

#endif
