#ifndef ENGINE_GRAPH_STEINER_LIST_DERIVATIONBUILDER_H
#define ENGINE_GRAPH_STEINER_LIST_DERIVATIONBUILDER_H

#include "Engine/Graph/Steiner/Exact/DijkstraSteinerSearch.h"
#include "Engine/Graph/Steiner/List/TreeFamily.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

/// Derives all minimum Steiner trees from the labels of a solved search, each exactly once.
///
/// A partial tree at a node is a branch, which begins with one edge (or is the terminal itself),
/// or it is the branch with the smallest terminal joined with the partial tree of the others. At
/// the root it is the branch with the greatest smallest terminal that is joined with the others.
/// As all weights are positive, every tree is derived in one such manner only, and whatever is put
/// together so at the weight of the optimum is a tree. Example: the partial tree that joins
/// {a, b, c} to x by edges x-a, x-b and x-c is the branch {a} with ({b} with {c}), never ({a}
/// with {b}) with {c}. Takes time in proportion to the labels that minimum trees use, times what
/// FindSettled and the settled labels of a node cost.
template <std::size_t Words>
class DerivationBuilder
{
public:
    using Set = TerminalSet<Words>;

    /// Takes the strand of each edge of the network. Keeps references to search and budget, and
    /// the span.
    DerivationBuilder(const DijkstraSteinerSearch<Words>& search,
                      std::span<const StrandIndex> strands, Budget& budget);

    enum class EOutcome
    {
        Complete,
        Exhausted,
    };
    /// Fills the graph. Returns Complete when it holds all minimum Steiner trees; else it is of no
    /// use.
    EOutcome Build(DerivationGraph& graph);

    /// Returns the part of the graph that is the whole tree.
    [[nodiscard]] PartIndex GetWhole() const { return mWhole; }

    /// Appends the edges of one tree, by the first step or join that fits at every label.
    void AppendOneTree(std::vector<EdgeIndex>& edges);

private:
    struct Step
    {
        EdgeIndex edge;
        LabelIndex label;
    };
    struct Join
    {
        LabelIndex branch;
        LabelIndex others;
    };
    /// A label that minimum trees use, with what stands for it in mSteps, mJoins and the graph.
    struct Item
    {
        LabelIndex label;
        std::uint32_t firstStep = 0;
        std::uint32_t stepCount = 0;
        std::uint32_t firstJoin = 0;
        std::uint32_t joinCount = 0;
        PartIndex branch = {};
        PartIndex part = {};
    };

    bool Collect();
    std::uint32_t Visit(LabelIndex label);
    [[nodiscard]] Item& GetItem(LabelIndex label);
    void FindSteps(Item& item);
    void FindJoins(Item& item);
    void TryJoin(const Label& label, const typename NodeLabels<Words>::Entry& branch);
    void AddParts(Item& item, DerivationGraph& graph);

    const DijkstraSteinerSearch<Words>& mSearch;
    std::span<const StrandIndex> mStrands;
    Budget& mBudget;
    IndexedVector<LabelIndex, std::uint32_t> mItemOfLabel;
    std::vector<Item> mItems;
    std::vector<Step> mSteps;
    std::vector<Join> mJoins;
    PartIndex mWhole;
};

} // namespace qe::graph

#endif
