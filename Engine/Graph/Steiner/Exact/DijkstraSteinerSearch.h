#ifndef ENGINE_GRAPH_STEINER_EXACT_DIJKSTRASTEINERSEARCH_H
#define ENGINE_GRAPH_STEINER_EXACT_DIJKSTRASTEINERSEARCH_H

#include "Engine/Graph/Steiner/Bound/CompletionBound.h"
#include "Engine/Graph/Steiner/Exact/Labels.h"
#include "Engine/Graph/Steiner/Exact/SeparationTest.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"
#include "Engine/Graph/Steiner/Network/SetTable.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

class Budget;

/// The exact search "Dijkstra meets Steiner" of Hougardy, Silvanus and Vygen (2017): the dynamic
/// programme over terminal sets of Dreyfus and Wagner (1971) and Erickson, Monma and Veinott
/// (1987), in best-first order with a lower bound for what completes a partial tree.
///
/// A label stands for the lightest partial tree that joins a terminal set to a node. The search
/// settles labels by weight plus bound, grows each along the edges of its node and joins it with
/// the settled labels there whose sets it does not meet. It starts from the single terminals,
/// completes the tree at the root, and goes on until everything queued is above the optimum: so
/// the labels of every minimum Steiner tree are settled, with exact weights, and counting
/// can follow. Nothing grows out of the root, nor out of a terminal that is not in the set.
///
/// Two labels are joined only when the one with the smallest terminal is a single branch; every
/// partial tree with several branches comes about so, by taking them off in that order. At the root
/// the whole set is known, so there a branch is only ever added to those with smaller terminals:
/// it must hold the smallest one that is missing. Where many branches meet at the root, that
/// spares most of the sets.
///
/// A label is cut off when it weighs more than a partial tree that joins the same set to a
/// terminal outside it: joining there instead would be lighter. In long searches it is cut off as
/// well when its partial tree stands in the way of what is missing (SeparationTest). All cuts are
/// strict, so none loses a minimum Steiner tree.
///
/// The time is at most O(3^k n + 2^k (n log n + m)) for k terminals beside the root, n nodes and
/// m edges; the bound makes it far less as a rule.
template <std::size_t Words>
class DijkstraSteinerSearch
{
public:
    using Set = TerminalSet<Words>;

    /// Takes at least one bound for this root, and a weight above which trees are not looked for.
    /// Keeps references to network and budget, and the span.
    DijkstraSteinerSearch(const FlatNetwork& network, NodeIndex root,
                          std::span<const CompletionBound<Words>> bounds, std::uint64_t limit,
                          Budget& budget);
    DijkstraSteinerSearch(const DijkstraSteinerSearch&) = delete;
    DijkstraSteinerSearch& operator=(const DijkstraSteinerSearch&) = delete;
    ~DijkstraSteinerSearch();

    /// Sets after how many settled labels partial trees that stand in the way are looked for.
    void SetUntestedLabels(std::size_t count) { mUntestedLabels = count; }

    enum class EOutcome
    {
        Solved,
        Paused,
        Exhausted,
    };
    /// Searches until the optimum is known, the given number of labels is settled, or the budget
    /// runs out.
    EOutcome Run(std::size_t mostSettled);

    /// Looks for one light tree only, with the completion bound made greater by that factor, so
    /// that the search runs ahead to whole trees. Solved means that it found one; then the labels
    /// derive that tree, and need not be exact.
    EOutcome Dive(double inflation, std::size_t mostSettled);

    /// Returns, once solved, whether there is a tree: none when all are above the limit.
    [[nodiscard]] bool HasTree() const { return FindSettled(mRoot, mAll).IsValid(); }

    /// Returns the weight that no tree is below: the optimum once solved.
    [[nodiscard]] std::uint64_t GetBound() const { return mBound; }

    [[nodiscard]] const FlatNetwork& GetNetwork() const { return mNetwork; }
    [[nodiscard]] NodeIndex GetRoot() const { return mRoot; }
    [[nodiscard]] std::uint32_t GetBit(NodeIndex node) const { return mBits[node]; }
    [[nodiscard]] const LabelTable& GetLabels() const { return mLabels; }
    [[nodiscard]] const Set& GetSet(SetIndex set) const { return mSets.Get(set); }
    /// Returns the settled label of the node and set; an invalid index when there is none.
    [[nodiscard]] LabelIndex FindSettled(NodeIndex node, const Set& set) const;
    [[nodiscard]] LabelIndex FindSettled(NodeIndex node, SetIndex set) const;
    /// Returns the settled labels of the node.
    [[nodiscard]] const NodeLabels<Words>& GetSettled(NodeIndex node) const
    {
        return mSettledAt[node];
    }
    /// Returns whether, at the root, the branch comes next after what is begun.
    [[nodiscard]] bool IsNextBranch(const Set& branch, const Set& begun) const;
    /// Returns the set of all terminals but the root.
    [[nodiscard]] const Set& GetAll() const { return mAll; }

private:
    struct QueueEntry
    {
        std::uint64_t key;
        LabelIndex label;
        friend auto operator<=>(const QueueEntry&, const QueueEntry&) = default;
    };
    struct SetInfo
    {
        /// Bound for what is missing wherever the node lies.
        std::uint64_t completionBound;
        /// Least weight at which a terminal outside the set was joined.
        std::uint64_t cap;
    };

    /// What a partial tree came from: the label that was grown, or the two that were joined.
    struct Origin
    {
        LabelIndex first{};
        LabelIndex second{};
    };
    void Offer(NodeIndex node, SetIndex set, std::uint64_t weight, const Origin& origin);
    [[nodiscard]] std::uint64_t GetCompletionBound(NodeIndex node, SetIndex set,
                                                   std::uint64_t limit);
    void OfferTerminals();
    void Settle(LabelIndex index);
    bool SettleNext();
    void ChargeBudget();
    [[nodiscard]] bool IsSeparating(LabelIndex index);
    void GrowFrom(const Label& label, LabelIndex index);
    void JoinAt(const Label& label, LabelIndex index);
    void JoinAtRoot(const Label& label, LabelIndex index);
    void AddSettled(NodeLabels<Words>& settled, const typename NodeLabels<Words>::Entry& entry);
    SetIndex Intern(const Set& set);

    const FlatNetwork& mNetwork;
    std::span<const CompletionBound<Words>> mCompletionBounds;
    Budget& mBudget;
    NodeIndex mRoot;
    std::uint64_t mLimit;
    std::uint64_t mBound = 0;
    double mInflation = 0;
    IndexedVector<NodeIndex, std::uint32_t> mBits;
    Set mAll;
    SetTable<Words> mSets;
    IndexedVector<SetIndex, SetInfo> mSetInfos;
    /// The bounds in the order in which they are asked: the one that cut something off last is
    /// likely to do so again.
    std::vector<std::uint32_t> mBoundOrder;
    /// For each set what each bound says of it alone.
    std::vector<std::uint64_t> mSetParts;
    LabelTable mLabels;
    IndexedVector<NodeIndex, NodeLabels<Words>> mSettledAt;
    std::vector<QueueEntry> mQueue;
    SeparationTest::NodeMarks mIsMissing;
    SeparationTest mSeparation;
    std::size_t mUntestedLabels = tuning::kUntestedLabels;
    std::size_t mSettledCount = 0;
    std::size_t mTableBytes = 0;
    /// Steps since the budget was charged last.
    std::uint64_t mLookups = 0;
    std::size_t mCharged = 0;
};

} // namespace qe::graph

#endif
