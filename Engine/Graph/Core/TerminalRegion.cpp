#include "Engine/Graph/Core/TerminalRegion.h"

#include "Engine/Graph/Core/DisjointSets.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <map>
#include <numeric>
#include <utility>

namespace qe::graph {

namespace {

constexpr std::uint32_t kNoBase = kNoIndex;

/// A path from a terminal to a node.
struct Label
{
    std::uint64_t distance;
    NodeIndex node;
    std::uint32_t base;
};

/// Paths by distance, then node, then terminal. Joins have few weights, so that many paths are
/// equally long: a heap for each distance compares one word.
class LabelQueue
{
public:
    [[nodiscard]] bool IsEmpty() const noexcept { return mLevels.empty(); }
    [[nodiscard]] std::uint64_t GetDistance() const { return mLevels.begin()->first; }

    void Push(const Label& label)
    {
        std::vector<std::uint64_t>& ends = mLevels[label.distance];
        ends.push_back(std::uint64_t{label.node.value} << 32U | label.base);
        std::push_heap(ends.begin(), ends.end(), std::greater<>());
    }

    Label Pop()
    {
        const auto nearest = mLevels.begin();
        std::vector<std::uint64_t>& ends = nearest->second;
        std::pop_heap(ends.begin(), ends.end(), std::greater<>());
        const std::uint64_t end = ends.back();
        const Label label{.distance = nearest->first,
                          .node = {static_cast<std::uint32_t>(end >> 32U)},
                          .base = static_cast<std::uint32_t>(end)};
        ends.pop_back();
        if (ends.empty())
            mLevels.erase(nearest);
        return label;
    }

private:
    std::map<std::uint64_t, std::vector<std::uint64_t>> mLevels;
};

/// Finds the two nearest terminals of every node that matters, nearest nodes first.
class RegionSearch
{
public:
    RegionSearch(const GraphView& graph, std::span<const NodeIndex> terminals)
        : mGraph(graph),
          mTerminals(terminals),
          mNearest(graph.GetNodeCount()),
          mRadii(terminals.size(), kUnreached),
          mPieces(static_cast<std::uint32_t>(terminals.size())),
          mPieceCount(terminals.size())
    {}

    /// Returns whether the terminals are connected.
    bool Run();
    /// Returns the nodes of the region in ascending order.
    [[nodiscard]] std::vector<NodeIndex> CollectNodes() const;

private:
    /// The two nearest terminals of a node, as far as they are known.
    struct Nearest
    {
        std::uint32_t base = kNoBase;
        std::uint32_t secondBase = kNoBase;
        std::uint64_t distance = 0;
        std::uint64_t bothDistances = kUnreached;
        /// The path that was queued last.
        std::uint64_t queuedDistance = 0;
        std::uint32_t queuedBase = kNoBase;
    };

    void Settle(const Label& label);
    void Expand(const Label& label);
    void Unite(const Label& label, const Nearest& nearest);
    void SetBound(std::uint64_t frontier);

    const GraphView& mGraph;
    std::span<const NodeIndex> mTerminals;
    IndexedVector<NodeIndex, Nearest> mNearest;
    std::vector<NodeIndex> mReached;
    LabelQueue mQueue;
    std::vector<std::uint64_t> mRadii;
    DisjointSets mPieces;
    std::size_t mPieceCount;
    std::uint64_t mTreeWeight = 0;
    /// What the distances to the two nearest terminals may add up to; none while the terminals are
    /// not connected.
    std::uint64_t mBound = kUnreached;
};

bool RegionSearch::Run()
{
    for (std::uint32_t base = 0; base < mTerminals.size(); ++base)
        mQueue.Push({.distance = 0, .node = mTerminals[base], .base = base});
    while (!mQueue.IsEmpty() && mQueue.GetDistance() <= mBound)
        Settle(mQueue.Pop());
    return mPieceCount == 1;
}

void RegionSearch::Settle(const Label& label)
{
    Nearest& nearest = mNearest[label.node];
    if (nearest.base == kNoBase) {
        nearest.base = label.base;
        nearest.distance = label.distance;
        mReached.push_back(label.node);
        if (2 * label.distance <= mBound)
            Expand(label);
        return;
    }
    if (nearest.base == label.base)
        return;
    if (mPieceCount > 1)
        Unite(label, nearest);
    if (nearest.secondBase != kNoBase || nearest.distance + label.distance > mBound)
        return;
    nearest.secondBase = label.base;
    nearest.bothDistances = nearest.distance + label.distance;
    Expand(label);
}

void RegionSearch::Expand(const Label& label)
{
    for (const Arc& arc : mGraph.GetArcs(label.node)) {
        Nearest& nearest = mNearest[arc.target];
        // A third terminal matters only as long as the terminals are not connected.
        if (nearest.base == label.base || nearest.secondBase == label.base ||
            (nearest.secondBase != kNoBase && mPieceCount == 1))
            continue;
        const std::uint64_t distance = label.distance + mGraph.GetEdge(arc.edge).weight;
        // Of the paths from one terminal only the shortest tells anything.
        const bool isKnown = nearest.queuedBase == label.base && nearest.queuedDistance <= distance;
        if (isKnown || distance > mBound)
            continue;
        nearest.queuedBase = label.base;
        nearest.queuedDistance = distance;
        mQueue.Push({.distance = distance, .node = arc.target, .base = label.base});
    }
}

/// Takes a path that came to a node of another terminal.
void RegionSearch::Unite(const Label& label, const Nearest& nearest)
{
    mRadii[label.base] = std::min(mRadii[label.base], label.distance);
    if (!mPieces.Unite(nearest.base, label.base))
        return;
    mTreeWeight += nearest.distance + label.distance;
    if (--mPieceCount == 1)
        SetBound(label.distance);
}

/// A terminal whose nodes no path has left yet has a radius of at least the distance that the
/// search has come to.
void RegionSearch::SetBound(std::uint64_t frontier)
{
    for (std::uint64_t& radius : mRadii)
        radius = std::min(radius, frontier);
    std::sort(mRadii.begin(), mRadii.end());
    mBound = mTreeWeight;
    for (std::size_t i = 0; i + 2 < mRadii.size(); ++i)
        mBound -= std::min(mBound, mRadii[i]);
}

std::vector<NodeIndex> RegionSearch::CollectNodes() const
{
    std::vector<NodeIndex> nodes(mTerminals.begin(), mTerminals.end());
    std::copy_if(mReached.begin(), mReached.end(), std::back_inserter(nodes),
                 [this](NodeIndex node) { return mNearest[node].bothDistances <= mBound; });
    std::sort(nodes.begin(), nodes.end());
    nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
    return nodes;
}

} // namespace

TerminalRegion::TerminalRegion(const GraphView& graph, std::vector<NodeIndex> nodes)
    : mNodes(std::move(nodes))
{
    IndexedVector<NodeIndex, NodeIndex> places(graph.GetNodeCount());
    for (std::uint32_t place = 0; place < mNodes.size(); ++place)
        places[mNodes[place]] = {place};
    for (const NodeIndex node : mNodes) {
        for (const Arc& arc : graph.GetArcs(node)) {
            if (node < arc.target && places[arc.target].IsValid())
                mGraphEdges.push_back(arc.edge);
        }
    }
    std::sort(mGraphEdges.begin(), mGraphEdges.end());

    mEdges.reserve(mGraphEdges.size());
    mFirstArc.assign(mNodes.size() + 1, 0);
    for (const EdgeIndex index : mGraphEdges) {
        const Edge& edge = graph.GetEdge(index);
        mEdges.push_back({places[edge.end1], places[edge.end2], edge.weight});
        ++mFirstArc[mEdges.back().end1.value + 1];
        ++mFirstArc[mEdges.back().end2.value + 1];
    }
    std::partial_sum(mFirstArc.begin(), mFirstArc.end(), mFirstArc.begin());
    std::vector<std::uint32_t> next(mFirstArc.begin(), mFirstArc.end() - 1);
    mArcs.resize(2 * mEdges.size());
    for (std::uint32_t edge = 0; edge < mEdges.size(); ++edge) {
        const auto [end1, end2, weight] = mEdges[edge];
        mArcs[next[end1.value]++] = {end2, EdgeIndex{edge}};
        mArcs[next[end2.value]++] = {end1, EdgeIndex{edge}};
    }
}

NodeIndex TerminalRegion::ToRegion(NodeIndex node) const
{
    const auto place = std::lower_bound(mNodes.begin(), mNodes.end(), node);
    return {static_cast<std::uint32_t>(place - mNodes.begin())};
}

std::optional<TerminalRegion> FindRegion(const GraphView& graph,
                                         std::span<const NodeIndex> terminals)
{
    RegionSearch search(graph, terminals);
    if (!search.Run())
        return std::nullopt;
    return TerminalRegion(graph, search.CollectNodes());
}

} // namespace qe::graph
