#include "Engine/Graph/Spanning/SpanningTrees.h"

#include "Engine/Graph/Spanning/MinimumSpanningTree.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qe::graph {

namespace {

void Toggle(std::vector<EdgeIndex>& edges, EdgeIndex edge)
{
    const auto at = std::lower_bound(edges.begin(), edges.end(), edge);
    if (at != edges.end() && *at == edge)
        edges.erase(at);
    else
        edges.insert(at, edge);
}

} // namespace

SpanningTrees::SpanningTrees(const GraphView& graph, std::size_t bound) : mLeft(bound)
{
    const std::vector<EdgeIndex> tree = FindMinimumSpanningTree(graph);
    if (tree.size() + 1 != graph.GetNodeCount()) {
        mLeft = 0;
        return;
    }
    mCore = FindCore(graph, tree, bound);
    mSearch.emplace(mCore.nodeCount, mCore.edges);
}

std::optional<std::vector<EdgeIndex>> SpanningTrees::GetNext()
{
    if (mLeft == 0)
        return std::nullopt;
    --mLeft;
    if (!mIsStarted) {
        mIsStarted = true;
        OpenCell({}, 0, kNoDecision);
        return Complete({});
    }
    if (mCells.empty())
        return std::nullopt;
    const auto isLater = [this](const Cell& left, const Cell& right) {
        return IsLater(left, right);
    };
    std::pop_heap(mCells.begin(), mCells.end(), isLater);
    const Cell cell = std::move(mCells.back());
    mCells.pop_back();
    if (mLeft > 0)
        SplitCell(cell);
    return Complete(cell.next);
}

void SpanningTrees::SplitCell(const Cell& cell)
{
    Difference least = cell.next;
    Toggle(least, cell.swap.out);
    Toggle(least, cell.swap.in);
    OpenCell(least, cell.weight - cell.swap.change,
             Decide(cell.swap.out, EEdgeUse::Required, cell.decision));
    OpenCell(cell.next, cell.weight, Decide(cell.swap.out, EEdgeUse::Forbidden, cell.decision));
}

std::uint32_t SpanningTrees::Decide(EdgeIndex edge, EEdgeUse use, std::uint32_t before)
{
    mDecisions.push_back({edge, use, before});
    return static_cast<std::uint32_t>(mDecisions.size() - 1);
}

// Takes up a cell with its minimum tree, unless that is its only one. Weights are counted from the
// first tree on.
void SpanningTrees::OpenCell(const Difference& least, std::int64_t weight, std::uint32_t decision)
{
    const std::uint32_t last = decision;
    std::vector<EEdgeUse> uses(mCore.edges.size());
    for (std::size_t i = 0; i < uses.size(); ++i)
        uses[i] = mCore.isInTree[i] ? EEdgeUse::In : EEdgeUse::Out;
    for (const EdgeIndex edge : least)
        uses[edge.value] = mCore.isInTree[edge.value] ? EEdgeUse::Out : EEdgeUse::In;
    for (; decision != kNoDecision; decision = mDecisions[decision].before)
        uses[mDecisions[decision].edge.value] = mDecisions[decision].use;

    const std::optional<EdgeSwap> swap = mSearch->FindBest(uses);
    if (!swap)
        return;
    Cell cell{weight + swap->change, least, *swap, last};
    Toggle(cell.next, swap->out);
    Toggle(cell.next, swap->in);
    mCells.push_back(std::move(cell));
    std::push_heap(mCells.begin(), mCells.end(),
                   [this](const Cell& left, const Cell& right) { return IsLater(left, right); });
}

bool SpanningTrees::IsLater(const Cell& left, const Cell& right) const
{
    if (left.weight != right.weight)
        return left.weight > right.weight;
    const auto [leftAt, rightAt] =
        std::mismatch(left.next.begin(), left.next.end(), right.next.begin(), right.next.end());
    if (leftAt == left.next.end() && rightAt == right.next.end())
        return false;
    // The lowest edge in which the two trees differ is the lower of these; it stands in the
    // difference of one of them, which has it in the tree unless the first tree has it.
    const bool isOnLeft =
        rightAt == right.next.end() || (leftAt != left.next.end() && *leftAt < *rightAt);
    const EdgeIndex lowest = isOnLeft ? *leftAt : *rightAt;
    return isOnLeft == mCore.isInTree[lowest.value];
}

std::vector<EdgeIndex> SpanningTrees::Complete(const Difference& difference) const
{
    std::vector<EdgeIndex> own;
    auto different = difference.begin();
    for (std::uint32_t i = 0; i < mCore.edges.size(); ++i) {
        const bool differs = different != difference.end() && different->value == i;
        if (differs)
            ++different;
        if (differs != mCore.isInTree[i])
            own.push_back(mCore.originals[i]);
    }
    std::vector<EdgeIndex> tree;
    tree.reserve(own.size() + mCore.shared.size());
    std::merge(own.begin(), own.end(), mCore.shared.begin(), mCore.shared.end(),
               std::back_inserter(tree));
    return tree;
}

} // namespace qe::graph
