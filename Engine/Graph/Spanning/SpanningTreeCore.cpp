#include "Engine/Graph/Spanning/SpanningTreeCore.h"

#include "Engine/Graph/Core/DisjointSets.h"
#include "Engine/Graph/Spanning/SwapSearch.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace qe::graph {

namespace {

constexpr std::uint32_t kNoNumber = std::numeric_limits<std::uint32_t>::max();

// Keeps the lightest swaps only, in no order.
void KeepLightest(std::vector<EdgeSwap>& swaps, std::size_t count)
{
    if (swaps.size() <= count)
        return;
    std::nth_element(swaps.begin(), swaps.begin() + static_cast<std::ptrdiff_t>(count), swaps.end(),
                     IsSwapLess);
    swaps.resize(count);
}

// Walks up a rooted spanning tree past the edges that have been replaced.
class RootedTree
{
public:
    RootedTree(const GraphView& graph, const std::vector<bool>& isInTree)
        : mUp(graph.GetNodeCount()), mDepth(graph.GetNodeCount(), 0), mTop(graph.GetNodeCount())
    {
        std::vector<NodeIndex> reached{NodeIndex{0}};
        reached.reserve(graph.GetNodeCount());
        for (std::size_t next = 0; next < reached.size(); ++next) {
            const NodeIndex node = reached[next];
            mTop[node.value] = node.value;
            for (const Arc& arc : graph.GetArcs(node)) {
                if (!isInTree[arc.edge.value] || arc.edge == mUp[node.value].edge)
                    continue;
                mUp[arc.target.value] = {node, arc.edge};
                mDepth[arc.target.value] = mDepth[node.value] + 1;
                reached.push_back(arc.target);
            }
        }
    }

    // Takes out the edges on the path between two nodes that are still there.
    void CutPath(NodeIndex left, NodeIndex right, std::vector<EdgeIndex>& cut)
    {
        std::uint32_t low = FindTop(left.value);
        std::uint32_t high = FindTop(right.value);
        while (low != high) {
            if (mDepth[low] < mDepth[high])
                std::swap(low, high);
            cut.push_back(mUp[low].edge);
            mTop[low] = mUp[low].target.value;
            low = FindTop(low);
        }
    }

private:
    std::uint32_t FindTop(std::uint32_t node)
    {
        while (mTop[node] != node)
            node = mTop[node] = mTop[mTop[node]];
        return node;
    }

    std::vector<Arc> mUp;
    std::vector<std::uint32_t> mDepth;
    std::vector<std::uint32_t> mTop;
};

// Finds for each edge of the tree on a cycle of one of `swaps` the best one to replace it. The
// edges that come in stand in ascending order of weight, so the first that passes is the best.
std::vector<EdgeSwap> FindReplacements(const GraphView& graph, const std::vector<bool>& isInTree,
                                       std::span<const EdgeSwap> swaps)
{
    RootedTree tree(graph, isInTree);
    std::vector<EdgeSwap> replacements;
    std::vector<EdgeIndex> cut;
    for (const EdgeSwap& swap : swaps) {
        const Edge& edge = graph.GetEdge(swap.in);
        cut.clear();
        tree.CutPath(edge.end1, edge.end2, cut);
        for (const EdgeIndex out : cut)
            replacements.push_back(MakeSwap(graph.GetEdges(), out, swap.in));
    }
    return replacements;
}

// Numbers the nodes that are left when the shared edges are contracted.
std::vector<std::uint32_t> Contract(const GraphView& graph, SpanningTreeCore& core)
{
    DisjointSets parts(graph.GetNodeCount());
    for (const EdgeIndex index : core.shared)
        parts.Unite(graph.GetEdge(index).end1.value, graph.GetEdge(index).end2.value);
    std::vector<std::uint32_t> numbers(graph.GetNodeCount(), kNoNumber);
    for (std::uint32_t node = 0; node < graph.GetNodeCount(); ++node) {
        std::uint32_t& number = numbers[parts.Find(node)];
        if (number == kNoNumber)
            number = core.nodeCount++;
        numbers[node] = number;
    }
    return numbers;
}

// Finds the best swaps for the edges outside the tree, at most `count`, in ascending order of
// weight of the edges that come in.
std::vector<EdgeSwap> FindEntries(const GraphView& graph, const std::vector<bool>& isInTree,
                                  std::size_t count)
{
    std::vector<EEdgeUse> uses(graph.GetEdgeCount(), EEdgeUse::Out);
    for (std::size_t edge = 0; edge < uses.size(); ++edge) {
        if (isInTree[edge])
            uses[edge] = EEdgeUse::In;
    }
    std::vector<EdgeSwap> entries =
        SwapSearch(graph.GetNodeCount(), graph.GetEdges()).FindAll(uses);
    KeepLightest(entries, count);
    std::sort(entries.begin(), entries.end(),
              [&graph](const EdgeSwap& left, const EdgeSwap& right) {
                  const std::uint32_t leftWeight = graph.GetEdge(left.in).weight;
                  const std::uint32_t rightWeight = graph.GetEdge(right.in).weight;
                  return leftWeight != rightWeight ? leftWeight < rightWeight : left.in < right.in;
              });
    return entries;
}

// Fills the edges of the core with those that are marked.
void FillEdges(const GraphView& graph, const std::vector<bool>& isInTree,
               const std::vector<bool>& isKept, SpanningTreeCore& core)
{
    const std::vector<std::uint32_t> numbers = Contract(graph, core);
    for (std::uint32_t i = 0; i < graph.GetEdgeCount(); ++i) {
        const Edge& edge = graph.GetEdge(EdgeIndex{i});
        const NodeIndex end1{numbers[edge.end1.value]};
        const NodeIndex end2{numbers[edge.end2.value]};
        if (!isKept[i] || end1 == end2)
            continue;
        core.edges.push_back({end1, end2, edge.weight});
        core.originals.push_back(EdgeIndex{i});
        core.isInTree.push_back(isInTree[i]);
    }
}

} // namespace

SpanningTreeCore FindCore(const GraphView& graph, std::span<const EdgeIndex> tree,
                          std::size_t bound)
{
    std::vector<bool> isInTree(graph.GetEdgeCount(), false);
    for (const EdgeIndex edge : tree)
        isInTree[edge.value] = true;
    const std::vector<EdgeSwap> entries = FindEntries(graph, isInTree, bound - 1);
    std::vector<EdgeSwap> replacements = FindReplacements(graph, isInTree, entries);
    KeepLightest(replacements, bound - 1);

    std::vector<bool> isKept(graph.GetEdgeCount(), false);
    for (const EdgeSwap& swap : entries)
        isKept[swap.in.value] = true;
    for (const EdgeSwap& swap : replacements)
        isKept[swap.out.value] = true;

    SpanningTreeCore core;
    for (const EdgeIndex edge : tree) {
        if (!isKept[edge.value])
            core.shared.push_back(edge);
    }
    FillEdges(graph, isInTree, isKept, core);
    return core;
}

} // namespace qe::graph
