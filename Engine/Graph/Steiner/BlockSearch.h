#ifndef ENGINE_GRAPH_STEINER_BLOCKSEARCH_H
#define ENGINE_GRAPH_STEINER_BLOCKSEARCH_H

#include "Engine/Graph/Steiner/BlockBounds.h"
#include "Engine/Graph/Steiner/Bound/CutExchange.h"
#include "Engine/Graph/Steiner/List/TreeFamily.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"
#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <span>
#include <vector>

namespace qe::graph {

class Budget;
class DerivationWalk;
class Derivations;

/// Searches one block: bounds its optimum from both sides, prunes what the bounds exclude, and
/// finds all minimum Steiner trees of what is left.
class BlockSearch
{
public:
    /// Takes the block and a weight that some tree of it is known not to exceed. Keeps references
    /// to block and budget.
    BlockSearch(Network& block, std::uint64_t knownWeight, Budget& budget);

    /// Looks for a light tree and a good bound, and removes from the block the edges that the
    /// two exclude. Returns how many; when they are many, the block is best reduced and searched
    /// through another object. `round` counts those objects.
    std::size_t PruneQuickly(std::size_t round);
    /// Does the same with more care.
    std::size_t PruneThoroughly();

    /// Returns whether many edges are known to be in every minimum Steiner tree.
    [[nodiscard]] bool IsWorthContracting() const;
    /// Contracts those edges. The block can no longer be searched through this object then.
    void ContractForced();

    /// Returns the least weight known by now.
    [[nodiscard]] std::uint64_t GetKnownWeight() const { return mBounds.GetKnownWeight(); }

    /// What is known at the end of the search of one block.
    struct Outcome
    {
        std::uint64_t weight;
        std::uint64_t lowerBound;
        /// Whether the family knows how many trees the block has, or got only some of them.
        bool hasAllTrees;
    };
    /// Finds all minimum Steiner trees of the block, and adds them to the family, if that takes few
    /// steps; else returns nothing and leaves the family alone.
    std::optional<Outcome> SearchQuickly(TreeFamily& family);
    /// Does the same by a table of all nodes and sets of terminals, if that takes no more steps.
    std::optional<Outcome> SearchByTable(TreeFamily& family, std::uint64_t mostSteps);
    /// Does the same with more steps.
    std::optional<Outcome> SearchWithMoreEffort(TreeFamily& family);
    /// Finds all minimum Steiner trees of the block, or one tree when the budget runs out, and adds
    /// them to the family.
    Outcome Search(TreeFamily& family);

private:
    using Efforts = std::span<const tuning::SearchEffort>;

    std::optional<Outcome> SearchTightly(TreeFamily& family);
    std::optional<Outcome> SearchFinely(TreeFamily& family);
    std::optional<Outcome> SearchEachLimit(TreeFamily& family, std::size_t mostSettled);
    std::optional<Outcome> SearchUpwards(TreeFamily& family, std::size_t mostSettled);
    std::optional<Outcome> SearchWithin(TreeFamily& family, Efforts efforts, std::uint64_t limit);
    template <std::size_t Words>
    std::optional<Outcome> SearchWith(TreeFamily& family, Efforts efforts, std::uint64_t limit);
    Outcome AddTrees(TreeFamily& family, Derivations& derivations) const;
    void ListTrees(TreeFamily& family, DerivationWalk walk) const;
    template <std::size_t Words>
    void AppendExchangedBounds(std::uint64_t limit,
                               std::vector<CompletionBound<Words>>& bounds) const;
    void Dive();
    void DiveWhileItHelps();
    template <std::size_t Words>
    void DiveWith();
    void AddTree(TreeFamily& family, std::span<const EdgeIndex> edges) const;

    Network& mBlock;
    Budget& mBudget;
    FlatNetwork mNetwork;
    BlockBounds mBounds;
    /// The cuts exchanged for the search at hand, if any.
    std::list<CutExchange> mExchanges;
};

} // namespace qe::graph

#endif
