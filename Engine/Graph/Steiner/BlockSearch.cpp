#include "Engine/Graph/Steiner/BlockSearch.h"

#include "Engine/Graph/Steiner/BoundReduction.h"
#include "Engine/Graph/Steiner/Budget.h"
#include "Engine/Graph/Steiner/DerivationBuilder.h"
#include "Engine/Graph/Steiner/RestBound.h"
#include "Engine/Graph/Steiner/Saturated.h"
#include "Engine/Graph/Steiner/SubsetProgramme.h"

#include <algorithm>

namespace qe::graph {

namespace {

/// Number of terminals that trees are grown from and ascents are rooted at.
constexpr std::size_t Starts = 4;

/// Share of the time after which the local search is cut short.
constexpr double LocalSearchShare = 0.1;

} // namespace

BlockSearch::BlockSearch(Network& block, std::uint64_t knownWeight, Budget& budget)
    : mBlock(block),
      mBudget(budget),
      mNetwork(block),
      mGrower(mNetwork),
      mAscent(mNetwork),
      mKnownWeight(knownWeight),
      mBestRoot(mNetwork.GetTerminals().front())
{
    mTree.weight = Saturated;
}

void BlockSearch::FindTree(std::uint32_t start, std::span<const std::uint8_t> isUsable)
{
    SteinerTree tree = mGrower.Grow(start, isUsable);
    if (tree.weight < mTree.weight)
        mTree = std::move(tree);
    mKnownWeight = std::min(mKnownWeight, mTree.weight);
}

/// Bounds the optimum from below with the given root, and from above by a tree grown along
/// edges that the ascent has used up.
void BlockSearch::Ascend(std::uint32_t root)
{
    mAscent.Run(root, mBudget);
    if (mAscent.GetBound() > mLowerBound) {
        mLowerBound = mAscent.GetBound();
        mBestRoot = root;
    }
    std::vector<std::uint8_t> isUsable(mNetwork.GetEdgeCount());
    for (std::uint32_t edge = 0; edge < mNetwork.GetEdgeCount(); ++edge) {
        isUsable[edge] = mAscent.GetReduced(2 * edge) == 0 || mAscent.GetReduced(2 * edge + 1) == 0;
    }
    if (!mBudget.IsExhausted())
        FindTree(root, isUsable);
}

std::size_t BlockSearch::Shed()
{
    const std::span<const std::uint32_t> terminals = mNetwork.GetTerminals();
    std::vector<std::uint8_t> isDispensable(mNetwork.GetEdgeCount());
    FindTree(terminals.front(), {});
    const std::size_t starts = std::min(Starts, terminals.size());
    for (std::size_t start = 0; start < starts && !mBudget.IsExhausted(); ++start) {
        Ascend(terminals[start * terminals.size() / starts]);
        MarkDispensable(mNetwork, mAscent, mKnownWeight, isDispensable);
    }
    LocalSearch(mNetwork, mGrower).Improve(mTree, mBudget, LocalSearchShare);
    mKnownWeight = std::min(mKnownWeight, mTree.weight);
    MarkDispensable(mNetwork, mAscent, mKnownWeight, isDispensable);
    std::size_t count = 0;
    for (std::uint32_t edge = 0; edge < mNetwork.GetEdgeCount(); ++edge) {
        if (isDispensable[edge] == 0)
            continue;
        mBlock.RemoveEdge(mNetwork.GetNetworkEdge(edge));
        ++count;
    }
    return count;
}

BlockSearch::Outcome BlockSearch::Search(TreeFamily& family)
{
    const std::size_t count = mNetwork.GetTerminals().size() - 1;
    if (count <= TerminalSet<1>::Capacity)
        return SearchWith<1>(family);
    if (count <= TerminalSet<2>::Capacity)
        return SearchWith<2>(family);
    if (count <= TerminalSet<4>::Capacity)
        return SearchWith<4>(family);
    if (count <= TerminalSet<8>::Capacity)
        return SearchWith<8>(family);
    return AnswerTree(family, mTree.edges, mTree.weight, mLowerBound);
}

BlockSearch::Outcome BlockSearch::AnswerTree(TreeFamily& family,
                                             const std::vector<std::uint32_t>& edges,
                                             std::uint64_t weight, std::uint64_t lowerBound) const
{
    for (const std::uint32_t edge : edges)
        family.AddStrand(mBlock.GetStrand(mNetwork.GetNetworkEdge(edge)));
    return {weight, std::min(weight, lowerBound), ECount::AtLeast};
}

template <std::size_t Words>
BlockSearch::Outcome BlockSearch::SearchWith(TreeFamily& family)
{
    RestBound<Words> rest(mNetwork, mBestRoot);
    mAscent.Run(mBestRoot, mBudget, &rest);
    rest.Finish(mAscent);
    mLowerBound = std::max(mLowerBound, mAscent.GetBound());
    SubsetProgramme<Words> programme(mNetwork, mBestRoot, rest, mKnownWeight, mBudget);
    if (programme.Run() == SubsetProgramme<Words>::EOutcome::Exhausted) {
        return AnswerTree(family, mTree.edges, mTree.weight,
                          std::max(mLowerBound, programme.GetBound()));
    }
    std::vector<StrandIndex> strands;
    for (std::uint32_t edge = 0; edge < mNetwork.GetEdgeCount(); ++edge)
        strands.push_back(mBlock.GetStrand(mNetwork.GetNetworkEdge(edge)));
    const std::uint64_t weight = programme.GetBound();
    DerivationGraph graph(mBlock.GetStrands());
    DerivationBuilder<Words> builder(programme, strands, mBudget);
    if (builder.Build(graph) == DerivationBuilder<Words>::EOutcome::Exhausted) {
        std::vector<std::uint32_t> edges;
        builder.AppendOneTree(edges);
        return AnswerTree(family, edges, weight, weight);
    }
    family.AddDerivations(std::move(graph), builder.GetWhole());
    return {weight, weight, ECount::Exact};
}

} // namespace qe::graph
