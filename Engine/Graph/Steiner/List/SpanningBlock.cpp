#include "Engine/Graph/Steiner/List/SpanningBlock.h"

#include "Engine/Graph/Spanning/MinimumSpanningTrees.h"
#include "Engine/Graph/Spanning/SpanningTreeCount.h"
#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace qe::graph {

namespace {

/// The edges of a block in ascending order of weight, and of equal ones of index.
struct SortedEdges
{
    explicit SortedEdges(const Network& block);

    std::vector<Link> links;
    std::vector<StrandIndex> strands;
};

SortedEdges::SortedEdges(const Network& block)
{
    std::vector<std::pair<std::uint64_t, EdgeIndex>> sorted;
    for (const EdgeIndex edge : block.GetEdgeIndices()) {
        if (block.HasEdge(edge))
            sorted.emplace_back(block.GetWeight(edge), edge);
    }
    std::sort(sorted.begin(), sorted.end());
    for (const auto& [weight, edge] : sorted) {
        const auto [end1, end2] = block.GetEnds(edge);
        const StrandIndex strand = block.GetStrand(edge);
        links.push_back({end1, end2, weight, block.GetStrands().GetCount(strand)});
        strands.push_back(strand);
    }
}

/// Lists the trees that choose for each strand one of the edge lists that it stands for.
class StrandChoices
{
public:
    StrandChoices(const StrandPool& pool, std::span<const StrandIndex> strands)
        : mPool(pool), mStrands(strands)
    {}

    /// Adds the trees over the chosen strands to the list, until that holds `most` or the budget is
    /// overdrawn, but one at least.
    void AddTrees(std::span<const std::uint32_t> tree, std::size_t most, Budget& budget,
                  ListedTrees& trees);

private:
    bool MoveNext(std::span<const std::uint32_t> tree);

    const StrandPool& mPool;
    std::span<const StrandIndex> mStrands;
    /// Which edge list each strand of the tree is replaced by.
    std::vector<std::uint64_t> mRanks;
    std::vector<EdgeIndex> mEdges;
};

void StrandChoices::AddTrees(std::span<const std::uint32_t> tree, std::size_t most, Budget& budget,
                             ListedTrees& trees)
{
    mRanks.assign(tree.size(), 0);
    do {
        mEdges.clear();
        for (std::size_t place = 0; place < tree.size(); ++place)
            mPool.AppendEdges(mStrands[tree[place]], mRanks[place], mEdges);
        trees.Add(mEdges);
        budget.Spend(mEdges.size());
    } while (trees.GetCount() < most && !budget.IsOverdrawn() && MoveNext(tree));
}

/// Moves to the next combination; returns false behind the last.
bool StrandChoices::MoveNext(std::span<const std::uint32_t> tree)
{
    for (std::size_t place = tree.size(); place-- > 0;) {
        if (++mRanks[place] < mPool.GetCount(mStrands[tree[place]]))
            return true;
        mRanks[place] = 0;
    }
    return false;
}

std::uint64_t AddWeights(std::span<const Link> links, std::span<const std::uint32_t> tree)
{
    std::uint64_t weight = 0;
    for (const std::uint32_t place : tree)
        weight += links[place].weight;
    return weight;
}

/// Returns the number of trees; nothing when it is not wanted, or takes too much.
std::optional<std::uint64_t> CountTrees(const Network& block, std::span<const Link> links,
                                        Budget& budget)
{
    if (budget.GetAnswer() == EAnswer::OneTree)
        return std::nullopt;
    return CountMinimumSpanningTrees(block.GetNodeLimit(), links, tuning::kSpanningCountSteps);
}

} // namespace

bool IsSpanningBlock(const Network& block)
{
    return block.GetTerminalCount() == block.GetNodeLimit();
}

SpanningBlockTrees AddSpanningTrees(const Network& block, TreeFamily& family, Budget& budget)
{
    const SortedEdges edges(block);
    MinimumSpanningTrees spanning(block.GetNodeLimit(), edges.links);
    StrandChoices choices(block.GetStrands(), edges.strands);
    ListedTrees trees;
    std::uint64_t weight = 0;
    std::uint64_t spent = 0;
    std::size_t charged = 0;
    while ((trees.GetCount() == 0 || !budget.IsOverdrawn()) &&
           trees.GetCount() < family.GetMostNumbered() && spanning.MoveNext()) {
        weight = AddWeights(edges.links, spanning.GetTree());
        choices.AddTrees(spanning.GetTree(), family.GetMostNumbered(), budget, trees);
        budget.Spend(spanning.GetSteps() - std::exchange(spent, spanning.GetSteps()));
        budget.Charge(trees.GetBytes() - std::exchange(charged, trees.GetBytes()));
    }
    const std::optional<std::uint64_t> count = CountTrees(block, edges.links, budget);
    const std::uint64_t listed = trees.GetCount();
    family.AddListed(std::move(trees), count.value_or(listed));
    return {.weight = weight, .isCountExact = count.has_value()};
}

} // namespace qe::graph
