#ifndef ENGINE_GRAPH_STEINER_LIST_DERIVATIONS_H
#define ENGINE_GRAPH_STEINER_LIST_DERIVATIONS_H

#include "Engine/Graph/Steiner/Exact/DijkstraSteinerSearch.h"
#include "Engine/Graph/Steiner/Network/StrandPool.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

/// How the minimum Steiner trees come about from the labels of a solved search, each in one way.
///
/// A partial tree at a node is a branch, which begins with one edge (or is the terminal itself),
/// or it is the branch with the smallest terminal joined with the partial tree of the others. At
/// the root it is the branch with the greatest smallest terminal that is joined with the others.
/// As all weights are positive, every tree is derived in one such manner only, and whatever is put
/// together so at the weight of the optimum is a tree. Example: the partial tree that joins
/// {a, b, c} to x by edges x-a, x-b and x-c is the branch {a} with ({b} with {c}), never ({a}
/// with {b}) with {c}. Takes time in proportion to the labels that are looked at, times what
/// FindSettled and the settled labels of a node cost.
template <std::size_t Words>
class Derivations
{
public:
    using Set = TerminalSet<Words>;

    /// Keeps a reference to the search.
    explicit Derivations(const DijkstraSteinerSearch<Words>& search);

    /// An edge by which a branch begins, and the label of what follows.
    struct Step
    {
        EdgeIndex edge;
        LabelIndex label;
    };
    /// A branch, and the partial tree that it is joined with.
    struct Join
    {
        LabelIndex branch;
        LabelIndex others;
    };

    /// Finds the steps and joins of a label, once. Spans that were returned before are not good
    /// any more then.
    void Expand(LabelIndex label);

    /// Returns the steps or joins of a label that was expanded.
    [[nodiscard]] std::span<const Step> GetSteps(LabelIndex label) const;
    [[nodiscard]] std::span<const Join> GetJoins(LabelIndex label) const;

    /// Returns whether the label is a terminal by itself.
    [[nodiscard]] bool IsEmpty(LabelIndex label) const { return GetWeight(label) == 0; }
    /// Returns the label of the whole tree.
    [[nodiscard]] LabelIndex GetWhole() const
    {
        return mSearch.FindSettled(mSearch.GetRoot(), mSearch.GetAll());
    }

    /// Appends the edges of one tree, by the first step or join that fits at every label. Labels
    /// that are not exact derive something that may hold an edge twice.
    void AppendOneTree(std::vector<EdgeIndex>& edges);

    [[nodiscard]] const DijkstraSteinerSearch<Words>& GetSearch() const { return mSearch; }
    /// Returns how many half-edges and labels have been looked at.
    [[nodiscard]] std::uint64_t GetLookups() const { return mLookups; }
    [[nodiscard]] std::size_t GetBytes() const
    {
        return mExpansions.size() * sizeof(Expansion) + mSteps.capacity() * sizeof(Step) +
               mJoins.capacity() * sizeof(Join);
    }

private:
    /// Where the steps and joins of a label stand.
    struct Expansion
    {
        std::uint32_t firstStep = kNoIndex;
        std::uint32_t stepCount = 0;
        std::uint32_t firstJoin = 0;
        std::uint32_t joinCount = 0;
    };

    [[nodiscard]] std::uint64_t GetWeight(LabelIndex label) const
    {
        return mSearch.GetLabels().Get(label).weight;
    }
    void FindSteps(const Label& label);
    void FindJoins(const Label& label);
    void TryJoin(const Label& label, const typename NodeLabels<Words>::Entry& branch);

    const DijkstraSteinerSearch<Words>& mSearch;
    IndexedVector<LabelIndex, Expansion> mExpansions;
    std::vector<Step> mSteps;
    std::vector<Join> mJoins;
    std::uint64_t mLookups = 0;
};

} // namespace qe::graph

#endif
