#ifndef ENGINE_GRAPH_STEINER_BLOCKSEARCH_H
#define ENGINE_GRAPH_STEINER_BLOCKSEARCH_H

#include "Engine/Graph/Steiner/Bound/CompletionBound.h"
#include "Engine/Graph/Steiner/Bound/CutExchange.h"
#include "Engine/Graph/Steiner/Bound/DualAscent.h"
#include "Engine/Graph/Steiner/Bound/ReducedCostFixing.h"
#include "Engine/Graph/Steiner/Grow/LocalSearch.h"
#include "Engine/Graph/Steiner/Grow/TreeGrower.h"
#include "Engine/Graph/Steiner/List/TreeFamily.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"
#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/SteinerSolver.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qe::graph {

class Budget;

/// Searches one block: bounds its optimum from both sides, sheds what the bounds exclude, and
/// finds all lightest trees of what is left.
class BlockSearch
{
public:
    /// Takes the block and a weight that some tree of it is known not to exceed.
    BlockSearch(Network& block, std::uint64_t knownWeight, Budget& budget);

    /// Looks for a light tree and a good bound, and removes from the block the edges that the
    /// two exclude. Answers how many; when they are many, the block is best reduced and searched
    /// through another object. `round` counts those objects.
    std::size_t PruneQuickly(std::size_t round);
    /// Does the same with more care.
    std::size_t PruneThoroughly();

    /// Says whether many edges are known to be in every lightest tree.
    [[nodiscard]] bool IsWorthContracting() const;
    /// Contracts those edges. The block can no longer be searched through this object then.
    void ContractForced();

    /// The least weight known by now.
    [[nodiscard]] std::uint64_t GetKnownWeight() const { return mKnownWeight; }

    /// What is known at the end of the search of one block.
    struct Outcome
    {
        std::uint64_t weight;
        std::uint64_t lowerBound;
        ECount countProof;
    };
    /// Finds all lightest trees of the block, and adds them to the family, if that takes few
    /// steps.
    std::optional<Outcome> SearchQuickly(TreeFamily& family);
    /// Does the same with more steps.
    std::optional<Outcome> SearchWithMoreEffort(TreeFamily& family);
    /// Finds all lightest trees of the block, or one tree when the budget runs out, and adds
    /// them to the family.
    Outcome Search(TreeFamily& family);

    /// How many ascents bound a search, and after how many settled labels it is given up.
    struct Effort
    {
        std::size_t ascents;
        std::size_t mostSettled;
    };

private:
    void FindTree(NodeIndex start, const EdgeMarks& isUsable);
    void ImproveTree(SteinerTree& tree);
    void Ascend(NodeIndex root, std::span<const EdgeIndex> guide);
    void FindTreeAlong(const DualAscent& ascent);
    void FindTreeFromManyStarts();
    [[nodiscard]] std::vector<NodeIndex> ChooseRoots(std::size_t most) const;
    template <std::size_t Words>
    void AddBounds(std::size_t most, std::uint64_t limit,
                   std::vector<CompletionBound<Words>>& bounds);
    template <std::size_t Words>
    void AddExchangedBound(std::uint64_t limit, std::vector<CompletionBound<Words>>& bounds);
    std::optional<Outcome> SearchTightly(TreeFamily& family);
    std::optional<Outcome> SearchUpwards(TreeFamily& family, std::size_t mostSettled);
    std::optional<Outcome> SearchWithin(TreeFamily& family, std::span<const Effort> efforts,
                                        std::uint64_t limit);
    template <std::size_t Words>
    std::optional<Outcome> SearchWith(TreeFamily& family, std::span<const Effort> efforts,
                                      std::uint64_t limit);
    template <std::size_t Words>
    void Dive();
    Outcome AnswerTree(TreeFamily& family, const std::vector<EdgeIndex>& edges,
                       std::uint64_t weight, std::uint64_t lowerBound) const;

    Network& mBlock;
    Budget& mBudget;
    FlatNetwork mNetwork;
    TreeGrower mGrower;
    DualAscent mAscent;
    std::uint64_t mKnownWeight;
    std::uint64_t mLowerBound = 0;
    NodeIndex mBestRoot;
    SteinerTree mTree;
    EdgeVerdicts mVerdicts;
    std::optional<CutExchange> mExchange;
};

} // namespace qe::graph

#endif
