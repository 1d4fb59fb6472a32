#ifndef ENGINE_GRAPH_STEINER_BLOCKBOUNDS_H
#define ENGINE_GRAPH_STEINER_BLOCKBOUNDS_H

#include "Engine/Graph/Steiner/Bound/CompletionBound.h"
#include "Engine/Graph/Steiner/Bound/DualAscent.h"
#include "Engine/Graph/Steiner/Bound/ReducedCosts.h"
#include "Engine/Graph/Steiner/Grow/TreeGrower.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

class Budget;

/// What is known of the optimum of one block: the best tree so far, a bound from either side, and
/// the edges that the two exclude or force.
class BlockBounds
{
public:
    /// Takes the block and a weight that some tree of it is known not to exceed. Keeps references
    /// to network and budget.
    BlockBounds(const FlatNetwork& network, std::uint64_t knownWeight, Budget& budget);

    /// Returns a weight that some tree does not exceed: the least one known.
    [[nodiscard]] std::uint64_t GetKnownWeight() const { return mKnownWeight; }
    /// Returns a weight that no tree is below: the greatest one known.
    [[nodiscard]] std::uint64_t GetLowerBound() const { return mLowerBound; }
    void RaiseLowerBound(std::uint64_t bound);
    /// Returns the root of the best ascent so far, where searches are rooted too.
    [[nodiscard]] NodeIndex GetRoot() const { return mRoot; }
    /// Returns the best tree so far; without edges and of weight kUnreached when there is none.
    [[nodiscard]] const SteinerTree& GetTree() const { return mTree; }
    [[nodiscard]] const EdgeStatuses& GetStatuses() const { return mStatuses; }

    /// Returns the best root and others spread over the terminals, so many at most.
    [[nodiscard]] std::vector<NodeIndex> ChooseRoots(std::size_t most) const;

    /// Bounds the optimum from below by an ascent, guided by a tree or not, and from above by a
    /// tree grown along the edges that the ascent has used up; classifies the edges by both.
    void Ascend(NodeIndex root, std::span<const EdgeIndex> guide);

    /// Bounds the optimum from above by a tree grown from the node.
    void GrowTree(NodeIndex start);
    /// Improves the best tree by local search.
    void ImproveTree();
    /// Grows trees from many terminals and improves each by itself, while there are steps left.
    void GrowManyTrees();
    /// Grows a tree around the forest and improves it; classifies the edges by it and the last
    /// ascent when it is the best so far.
    void RegrowTree(std::span<const EdgeIndex> forest);

    /// Appends bounds for an exact search up to the limit until there are `most`, or every chosen
    /// root was used twice: every other ascent is guided by the best tree, and the second round
    /// guides those that the first did not. Raises the lower bound by what the ascents prove.
    template <std::size_t Words>
    void AppendBounds(std::size_t most, std::uint64_t limit,
                      std::vector<CompletionBound<Words>>& bounds);

private:
    void TakeTree(SteinerTree&& tree);
    void Improve(SteinerTree& tree);
    void SpendGrowth();

    const FlatNetwork& mNetwork;
    Budget& mBudget;
    TreeGrower mGrower;
    DualAscent mAscent;
    std::uint64_t mSpentGrowth = 0;
    std::uint64_t mKnownWeight;
    std::uint64_t mLowerBound = 0;
    NodeIndex mRoot;
    SteinerTree mTree;
    EdgeStatuses mStatuses;
};

} // namespace qe::graph

#endif
