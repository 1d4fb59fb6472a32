#ifndef ENGINE_GRAPH_STEINER_LIST_DERIVATIONS_H
#define ENGINE_GRAPH_STEINER_LIST_DERIVATIONS_H

#include "Engine/Graph/Core/Indices.h"
#include "Engine/Graph/Steiner/Exact/Labels.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

/// How the minimum Steiner trees come about from the labels of a solved search, each in one way.
///
/// A partial tree at a node is a branch, which begins with one edge (or is the terminal itself),
/// or it is the branch with the smallest terminal joined with the partial tree of the others; which
/// branch comes first may be settled otherwise at single nodes. As all weights are positive, every
/// tree is derived in one such manner only, and whatever is put together so at the weight of the
/// optimum is a tree. Example: the partial tree that joins {a, b, c} to x by edges x-a, x-b and x-c
/// is the branch {a} with ({b} with {c}), never ({a} with {b}) with {c}.
class Derivations
{
public:
    Derivations(const Derivations&) = delete;
    Derivations& operator=(const Derivations&) = delete;
    virtual ~Derivations() = default;

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
    /// Greater than the ranks of all labels that a label is derived from.
    struct Rank
    {
        std::uint32_t terminals;
        std::uint64_t weight;
        friend auto operator<=>(const Rank&, const Rank&) = default;
    };

    /// Finds the steps and joins of a label, once. Spans that were returned before are not good
    /// any more then.
    void Expand(LabelIndex label);

    /// Returns the steps or joins of a label that was expanded.
    [[nodiscard]] std::span<const Step> GetSteps(LabelIndex label) const;
    [[nodiscard]] std::span<const Join> GetJoins(LabelIndex label) const;

    [[nodiscard]] std::uint32_t GetLabelCount() const { return mExpansions.size(); }
    [[nodiscard]] virtual Rank GetRank(LabelIndex label) const = 0;
    /// Returns whether the label is a terminal by itself.
    [[nodiscard]] bool IsEmpty(LabelIndex label) const { return GetRank(label).weight == 0; }
    /// Returns the label of the whole tree.
    [[nodiscard]] virtual LabelIndex GetWhole() const = 0;

    /// Appends the edges of one tree, by the first step or join that fits at every label. Labels
    /// that are not exact derive something that may hold an edge twice.
    void AppendOneTree(std::vector<EdgeIndex>& edges);

    /// Returns how many half-edges and labels have been looked at.
    [[nodiscard]] std::uint64_t GetLookups() const { return mLookups; }
    [[nodiscard]] std::size_t GetBytes() const
    {
        return mExpansions.size() * sizeof(Expansion) + mSteps.capacity() * sizeof(Step) +
               mJoins.capacity() * sizeof(Join);
    }

protected:
    explicit Derivations(std::uint32_t labelCount) : mExpansions(labelCount) {}

    /// Finds the edges by which the label's branch may begin, or the pairs of labels at its node
    /// that make it up. Returns how many half-edges or labels were looked at.
    virtual std::uint64_t FindSteps(LabelIndex label) = 0;
    virtual std::uint64_t FindJoins(LabelIndex label) = 0;
    void AddStep(const Step& step) { mSteps.push_back(step); }
    void AddJoin(const Join& join) { mJoins.push_back(join); }

private:
    /// Where the steps and joins of a label stand.
    struct Expansion
    {
        std::uint32_t firstStep = kNoIndex;
        std::uint32_t stepCount = 0;
        std::uint32_t firstJoin = 0;
        std::uint32_t joinCount = 0;
    };

    IndexedVector<LabelIndex, Expansion> mExpansions;
    std::vector<Step> mSteps;
    std::vector<Join> mJoins;
    std::uint64_t mLookups = 0;
};

} // namespace qe::graph

#endif
