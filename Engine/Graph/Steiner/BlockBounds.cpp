#include "Engine/Graph/Steiner/BlockBounds.h"

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Grow/LocalSearch.h"
#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"

#include <algorithm>
#include <utility>

namespace qe::graph {

BlockBounds::BlockBounds(const FlatNetwork& network, std::uint64_t knownWeight, Budget& budget)
    : mNetwork(network),
      mBudget(budget),
      mGrower(mNetwork),
      mAscent(mNetwork),
      mKnownWeight(knownWeight),
      mRoot(mNetwork.GetTerminals().front()),
      mStatuses(mNetwork.GetEdgeCount(), EEdgeStatus::Undecided)
{
    mTree.weight = kUnreached;
}

void BlockBounds::RaiseLowerBound(std::uint64_t bound)
{
    mLowerBound = std::max(mLowerBound, bound);
}

void BlockBounds::TakeTree(SteinerTree&& tree)
{
    if (tree.weight < mTree.weight)
        mTree = std::move(tree);
    mKnownWeight = std::min(mKnownWeight, mTree.weight);
}

void BlockBounds::Ascend(NodeIndex root, std::span<const EdgeIndex> guide)
{
    mAscent.Run(root, guide, mBudget);
    // At the root branches are joined most cheaply, so it had better be where many meet.
    const auto getDegree = [this](NodeIndex node) { return mNetwork.GetArcs(node).size(); };
    if (std::pair(mAscent.GetBound(), getDegree(root)) > std::pair(mLowerBound, getDegree(mRoot))) {
        mLowerBound = mAscent.GetBound();
        mRoot = root;
    }
    if (!mBudget.IsExhausted()) {
        EdgeMarks isUsable(mNetwork.GetEdgeCount());
        for (const EdgeIndex edge : mNetwork.GetEdges())
            isUsable[edge] = mAscent.GetReduced(HalfEdge::Forward(edge)) == 0 ||
                             mAscent.GetReduced(HalfEdge::Backward(edge)) == 0;
        TakeTree(mGrower.Grow(root, isUsable));
        SpendGrowth();
    }
    ClassifyEdges(mNetwork, mAscent, mKnownWeight, mStatuses);
}

void BlockBounds::GrowTree(NodeIndex start)
{
    TakeTree(mGrower.Grow(start, {}));
    SpendGrowth();
}

/// Records what trees have been grown for since it was recorded last.
void BlockBounds::SpendGrowth()
{
    mBudget.Spend(mGrower.GetWork() - std::exchange(mSpentGrowth, mGrower.GetWork()));
}

void BlockBounds::ImproveTree()
{
    Improve(mTree);
    mKnownWeight = std::min(mKnownWeight, mTree.weight);
}

void BlockBounds::Improve(SteinerTree& tree)
{
    const std::uint64_t end = mGrower.GetWork() + tuning::kLocalSearchWork;
    LocalSearch(mNetwork, mGrower).Improve(tree, [this, end] {
        SpendGrowth();
        return mGrower.GetWork() > end || mBudget.IsExhausted();
    });
    SpendGrowth();
}

void BlockBounds::GrowManyTrees()
{
    const std::span<const NodeIndex> terminals = mNetwork.GetTerminals();
    const std::size_t starts = std::min(tuning::kManyStarts, terminals.size());
    const auto isOver = [this] {
        SpendGrowth();
        return mBudget.IsOverdrawn();
    };
    LocalSearch localSearch(mNetwork, mGrower);
    for (std::size_t start = 0; start < starts && mTree.weight > mLowerBound; ++start) {
        if (isOver())
            return;
        SteinerTree tree = mGrower.Grow(terminals[start * terminals.size() / starts], {});
        localSearch.Improve(tree, isOver);
        TakeTree(std::move(tree));
    }
}

void BlockBounds::RegrowTree(std::span<const EdgeIndex> forest)
{
    SteinerTree tree = mGrower.Regrow(forest, mRoot);
    Improve(tree);
    if (tree.weight >= mTree.weight)
        return;
    TakeTree(std::move(tree));
    ClassifyEdges(mNetwork, mAscent, mKnownWeight, mStatuses);
}

std::vector<NodeIndex> BlockBounds::ChooseRoots(std::size_t most) const
{
    const std::span<const NodeIndex> terminals = mNetwork.GetTerminals();
    std::vector<NodeIndex> roots{mRoot};
    const std::size_t count = std::min(most, terminals.size());
    for (std::size_t place = 0; place < count && roots.size() < count; ++place) {
        const NodeIndex root = terminals[place * terminals.size() / count];
        if (root != mRoot)
            roots.push_back(root);
    }
    return roots;
}

template <std::size_t Words>
void BlockBounds::AppendBounds(std::size_t most, std::uint64_t limit,
                               std::vector<CompletionBound<Words>>& bounds)
{
    const std::vector<NodeIndex> roots = ChooseRoots(most);
    most = std::min(most, 2 * roots.size());
    while (bounds.size() < most && !mBudget.IsExhausted()) {
        const std::size_t round = bounds.size() / roots.size();
        const std::size_t place = bounds.size() % roots.size();
        std::span<const EdgeIndex> guide;
        if ((round + place) % 2 == 0)
            guide = mTree.edges;
        CompletionBound<Words>& bound = bounds.emplace_back(mNetwork, mRoot);
        mAscent.Run(roots[place], guide, mBudget, &bound);
        bound.Finish(mAscent, limit);
        RaiseLowerBound(mAscent.GetBound());
    }
}

template void BlockBounds::AppendBounds<1>(std::size_t, std::uint64_t,
                                           std::vector<CompletionBound<1>>&);
template void BlockBounds::AppendBounds<2>(std::size_t, std::uint64_t,
                                           std::vector<CompletionBound<2>>&);
template void BlockBounds::AppendBounds<4>(std::size_t, std::uint64_t,
                                           std::vector<CompletionBound<4>>&);
template void BlockBounds::AppendBounds<8>(std::size_t, std::uint64_t,
                                           std::vector<CompletionBound<8>>&);

} // namespace qe::graph
