#include "Engine/Graph/Core/GraphStorage.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace qe::graph {

namespace {

// What is buffered is merged when it outgrows what the graph holds, so that adding the same ids
// for ever does not use up memory.
constexpr std::size_t kFewestToMerge = 1U << 17U;

// Room for so many is made at once.
constexpr std::size_t kFewestBuffered = 64;

bool IsDue(std::size_t buffered, std::uint32_t held)
{
    return buffered >= std::max<std::size_t>(kFewestToMerge, held);
}

bool IsTargetLess(const Arc& left, const Arc& right)
{
    return left.target < right.target;
}

} // namespace

void GraphStorage::AddNode(const amd_id& node)
{
    if (IsDue(mNewNodes.size(), mNodeIds.GetCount()))
        MergePendingNodes();
    if (mNewNodes.empty())
        mNewNodes.reserve(kFewestBuffered);
    mNewNodes.push_back(node);
}

void GraphStorage::AddEdge(const amd_id& edge, const amd_id& end1, const amd_id& end2,
                           std::uint32_t weight)
{
    if (IsDue(mNewEdges.size(), mEdgeIds.GetCount()))
        MergePendingEdges();
    if (mNewEdges.empty())
        mNewEdges.reserve(kFewestBuffered);
    mNewEdges.push_back({edge, end1, end2, weight});
}

void GraphStorage::MergePendingNodes()
{
    if (mNewNodes.empty())
        return;
    if (mNodeIds.Add(mNewNodes)) {
        ++mRevision;
        mHasAdjacency = false;
    }
    mNewNodes.clear();
}

// Whatever fails before the commit leaves the edges buffered, for the next merge to find. Ends that
// were added by then are those that it would add.
void GraphStorage::MergePendingEdges()
{
    MergePendingNodes();
    if (mNewEdges.empty())
        return;
    std::vector<amd_id> ids;
    ids.reserve(mNewEdges.size());
    for (const NewEdge& edge : mNewEdges)
        ids.push_back(edge.id);
    IdIndex::Addition addition = mEdgeIds.Prepare(ids);
    const std::vector<Edge> edges = ResolveEdges(addition.GetPlaces());
    mEdges.insert(mEdges.end(), edges.begin(), edges.end());
    mEdgeIds.Commit(std::move(addition));
    if (!edges.empty()) {
        ++mRevision;
        mHasAdjacency = false;
    }
    mNewEdges.clear();
}

// Returns the new edges at `places`, after adding those of their ends that are missing.
std::vector<Edge> GraphStorage::ResolveEdges(const std::vector<std::uint32_t>& places)
{
    std::vector<amd_id> missing;
    const auto find = [&](const amd_id& end) {
        const NodeIndex node{mNodeIds.FindSlot(end)};
        if (!node.IsValid())
            missing.push_back(end);
        return node;
    };
    std::vector<Edge> edges;
    edges.reserve(places.size());
    for (const std::uint32_t place : places) {
        const NewEdge& edge = mNewEdges[place];
        edges.push_back({find(edge.end1), find(edge.end2), edge.weight});
    }
    if (missing.empty())
        return edges;
    mNodeIds.Add(missing);
    auto next = missing.begin();
    for (Edge& edge : edges) {
        for (NodeIndex* const end : {&edge.end1, &edge.end2}) {
            if (!end->IsValid())
                *end = NodeIndex{mNodeIds.FindSlot(*next++)};
        }
    }
    return edges;
}

void GraphStorage::SetEdgeWeight(const amd_id& edge, std::uint32_t weight)
{
    MergePendingEdges();
    const std::uint32_t slot = mEdgeIds.FindSlot(edge);
    if (slot == kNoIndex || mEdges[slot].weight == weight)
        return;
    mEdges[slot].weight = weight;
    if (mHasAdjacency)
        mRankedEdges[mRankOfEdge[slot]].weight = weight;
    ++mRevision;
}

std::optional<std::uint32_t> GraphStorage::FindEdgeWeight(const amd_id& edge)
{
    MergePendingEdges();
    const std::uint32_t slot = mEdgeIds.FindSlot(edge);
    return slot == kNoIndex ? std::nullopt : std::optional(mEdges[slot].weight);
}

void GraphStorage::AppendEdgeIds(std::vector<amd_id>& ids)
{
    MergePendingEdges();
    for (const IdIndex::Entry& entry : mEdgeIds.GetSorted())
        ids.push_back(entry.GetId());
}

GraphView GraphStorage::GetView()
{
    MergePendingEdges();
    if (!mHasAdjacency)
        BuildAdjacency();
    return {mRankedEdges, mFirstArc, mArcs};
}

void GraphStorage::BuildAdjacency()
{
    const std::span<const IdIndex::Entry> nodes = mNodeIds.GetSorted();
    std::vector<NodeIndex> rankOfNode(nodes.size());
    for (std::uint32_t rank = 0; rank < nodes.size(); ++rank)
        rankOfNode[nodes[rank].slot] = NodeIndex{rank};

    const std::span<const IdIndex::Entry> edges = mEdgeIds.GetSorted();
    mRankOfEdge.resize(edges.size());
    mRankedEdges.clear();
    mRankedEdges.reserve(edges.size());
    for (const IdIndex::Entry& entry : edges) {
        const Edge& edge = mEdges[entry.slot];
        mRankOfEdge[entry.slot] = static_cast<std::uint32_t>(mRankedEdges.size());
        mRankedEdges.push_back(
            {rankOfNode[edge.end1.value], rankOfNode[edge.end2.value], edge.weight});
    }
    BuildArcs(static_cast<std::uint32_t>(nodes.size()));
    BuildSelfLoops();
    mHasAdjacency = true;
}

void GraphStorage::BuildArcs(std::uint32_t nodeCount)
{
    mFirstArc.assign(nodeCount + std::size_t{1}, 0);
    for (const Edge& edge : mRankedEdges) {
        if (edge.end1 == edge.end2)
            continue;
        ++mFirstArc[edge.end1.value];
        ++mFirstArc[edge.end2.value];
    }
    std::uint32_t total = 0;
    for (std::uint32_t& first : mFirstArc)
        first = (total += first);
    mArcs.resize(total);
    // Each entry now stands behind its node's last arc; filling from the back moves it to the
    // first and leaves the arcs in ascending order of their edges.
    for (std::uint32_t rank = static_cast<std::uint32_t>(mRankedEdges.size()); rank-- > 0;) {
        const Edge& edge = mRankedEdges[rank];
        if (edge.end1 == edge.end2)
            continue;
        mArcs[--mFirstArc[edge.end1.value]] = {edge.end2, EdgeIndex{rank}};
        mArcs[--mFirstArc[edge.end2.value]] = {edge.end1, EdgeIndex{rank}};
    }
}

void GraphStorage::BuildSelfLoops()
{
    mSelfLoops.clear();
    for (std::uint32_t rank = 0; rank < mRankedEdges.size(); ++rank) {
        const Edge& edge = mRankedEdges[rank];
        if (edge.end1 == edge.end2)
            mSelfLoops.push_back({edge.end1, EdgeIndex{rank}});
    }
    std::stable_sort(mSelfLoops.begin(), mSelfLoops.end(), IsTargetLess);
}

std::span<const Arc> GraphStorage::GetSelfLoops(NodeIndex node)
{
    (void)GetView();
    const auto [first, last] =
        std::equal_range(mSelfLoops.begin(), mSelfLoops.end(), Arc{node, {}}, IsTargetLess);
    return {first, last};
}

NodeIndex GraphStorage::FindNode(const amd_id& node)
{
    MergePendingEdges();
    const std::optional<std::uint32_t> place = mNodeIds.FindPlace(node);
    return place ? NodeIndex{*place} : NodeIndex{};
}

amd_id GraphStorage::GetNodeId(NodeIndex node)
{
    return mNodeIds.GetSorted()[node.value].GetId();
}

amd_id GraphStorage::GetEdgeId(EdgeIndex edge)
{
    return mEdgeIds.GetSorted()[edge.value].GetId();
}

std::uint64_t GraphStorage::GetRevision()
{
    MergePendingEdges();
    return mRevision;
}

} // namespace qe::graph
