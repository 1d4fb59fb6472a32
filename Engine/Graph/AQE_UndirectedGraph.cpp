#include "Engine/Graph/AQE_UndirectedGraph.h"

#include "Engine/Graph/CheapestTrees.h"
#include "Engine/Graph/Spanning/GrownTree.h"
#include "Engine/Graph/Spanning/MinimumSpanningTree.h"
#include "Engine/Graph/Spanning/SpanningTrees.h"

#include <algorithm>
#include <limits>
#include <optional>

using qe::graph::Arc;
using qe::graph::EdgeIndex;
using qe::graph::GraphView;
using qe::graph::IndexedVector;
using qe::graph::NodeIndex;

namespace {

std::uint32_t ToWeight(int weight)
{
    return static_cast<std::uint32_t>(std::max(0, weight));
}

int Saturate(std::uint64_t sum)
{
    constexpr int kLargest = std::numeric_limits<int>::max();
    return sum > static_cast<std::uint64_t>(kLargest) ? kLargest : static_cast<int>(sum);
}

int AddUp(const GraphView& graph, std::span<const EdgeIndex> edges)
{
    std::uint64_t sum = 0;
    for (const EdgeIndex edge : edges)
        sum += graph.GetEdge(edge).weight;
    return Saturate(sum);
}

// Searches from one node: O(n + m). A graph of one node or none is connected.
bool IsConnectedGraph(const GraphView& graph)
{
    if (graph.GetNodeCount() == 0)
        return true;
    IndexedVector<NodeIndex, std::uint8_t> isReached(graph.GetNodeCount(), 0);
    std::vector<NodeIndex> reached{NodeIndex{0}};
    isReached[NodeIndex{0}] = 1;
    for (std::size_t next = 0; next < reached.size(); ++next) {
        for (const Arc& arc : graph.GetArcs(reached[next])) {
            if (isReached[arc.target] != 0)
                continue;
            isReached[arc.target] = 1;
            reached.push_back(arc.target);
        }
    }
    return reached.size() == graph.GetNodeCount();
}

} // namespace

AQE_I_UndirectedGraph::~AQE_I_UndirectedGraph() = default;

AUT_RefPtr<AQE_I_UndirectedGraph> AQE_I_UndirectedGraph::Create()
{
    return AUT_RefPtr<AQE_I_UndirectedGraph>(new AQE_UndirectedGraph);
}

void AQE_UndirectedGraph::AddNode(const amd_id& node)
{
    mStorage.AddNode(node);
}

void AQE_UndirectedGraph::AddEdge(const amd_id& edge, const amd_id& end1, const amd_id& end2,
                                  int weight, int /*flag*/)
{
    mStorage.AddEdge(edge, end1, end2, ToWeight(weight));
}

void AQE_UndirectedGraph::SetEdgeWeight(const amd_id& edge, int weight)
{
    mStorage.SetEdgeWeight(edge, ToWeight(weight));
}

int AQE_UndirectedGraph::GetPathWeight(const std::vector<amd_id>& edges)
{
    std::uint64_t sum = 0;
    for (const amd_id& edge : edges)
        sum += mStorage.FindEdgeWeight(edge).value_or(0);
    return Saturate(sum);
}

void AQE_UndirectedGraph::GetNodeEdges(const amd_id& node, std::vector<amd_id>& edges)
{
    const NodeIndex index = mStorage.FindNode(node);
    if (!index.IsValid())
        return;
    const std::span<const Arc> arcs = mStorage.GetView().GetArcs(index);
    const std::span<const Arc> loops = mStorage.GetSelfLoops(index);
    std::vector<EdgeIndex> found;
    found.reserve(arcs.size() + loops.size());
    for (const std::span<const Arc> part : {arcs, loops}) {
        for (const Arc& arc : part)
            found.push_back(arc.edge);
    }
    const auto middle = found.begin() + static_cast<std::ptrdiff_t>(arcs.size());
    std::inplace_merge(found.begin(), middle, found.end());
    AppendEdges(found, edges);
}

void AQE_UndirectedGraph::GetEdges(std::vector<amd_id>& edges)
{
    mStorage.AppendEdgeIds(edges);
}

bool AQE_UndirectedGraph::IsConnected()
{
    return IsConnectedGraph(mStorage.GetView());
}

void AQE_UndirectedGraph::GetShortestPath(const amd_id& from, const amd_id& to,
                                          std::vector<amd_id>& edges, int& weight)
{
    weight = -1;
    const NodeIndex source = mStorage.FindNode(from);
    const NodeIndex target = mStorage.FindNode(to);
    if (!source.IsValid() || !target.IsValid())
        return;
    const GraphView graph = mStorage.GetView();
    const qe::graph::ShortestPaths& paths =
        mShortestPaths.Get(graph, mStorage.GetRevision(), source);
    if (!paths.Reaches(target))
        return;
    const std::vector<EdgeIndex> path = paths.GetPath(graph, target);
    weight = AddUp(graph, path);
    AppendEdges(path, edges);
}

void AQE_UndirectedGraph::GetMinimumSpanningTree(std::vector<amd_id>& edges, int& weight)
{
    const GraphView graph = mStorage.GetView();
    const std::vector<EdgeIndex> tree = qe::graph::FindMinimumSpanningTree(graph);
    weight = AddUp(graph, tree);
    AppendEdges(tree, edges);
}

void AQE_UndirectedGraph::GetShortestPathTree(const std::vector<amd_id>& nodes,
                                              std::vector<amd_id>& nodesOut,
                                              std::vector<amd_id>& edgesOut, int& weight)
{
    weight = 0;
    std::vector<NodeIndex> targets = FindNodes(nodes);
    if (targets.empty() || !targets.front().IsValid())
        return;
    const GraphView graph = mStorage.GetView();
    const NodeIndex source = targets.front();
    targets.erase(std::remove(targets.begin(), targets.end(), NodeIndex{}), targets.end());
    const qe::graph::GrownTree tree = qe::graph::GrowTree(
        graph, mShortestPaths.Get(graph, mStorage.GetRevision(), source), targets);
    weight = AddUp(graph, tree.edges);
    for (const NodeIndex node : tree.nodes)
        nodesOut.push_back(mStorage.GetNodeId(node));
    AppendEdges(tree.edges, edgesOut);
}

void AQE_UndirectedGraph::GetPaths(std::vector<std::vector<amd_id>>& paths)
{
    qe::graph::SpanningTrees trees(mStorage.GetView(), kMaximumPaths + 1);
    for (std::size_t listed = 0; listed < kMaximumPaths; ++listed) {
        const std::optional<std::vector<EdgeIndex>> tree = trees.GetNext();
        if (!tree)
            return;
        AppendEdges(*tree, paths.emplace_back());
    }
    if (trees.GetNext())
        qe::graph::LogMoreSpanningTrees(kMaximumPaths);
}

bool AQE_UndirectedGraph::GetCheapestTrees(const std::vector<amd_id>& nodes,
                                           std::vector<std::vector<amd_id>>& trees, int& weight)
{
    weight = -1;
    const std::vector<NodeIndex> terminals = FindNodes(nodes);
    const GraphView graph = mStorage.GetView();
    const qe::graph::SteinerResult result = qe::graph::SearchCheapestTrees(graph, terminals);
    if (!result.connected)
        return false;
    weight = Saturate(result.weight);
    for (const std::vector<EdgeIndex>& tree : result.trees) {
        std::vector<amd_id>& edges = trees.emplace_back();
        if (!tree.empty())
            AppendEdges(qe::graph::OrderFrom(graph, terminals.front(), tree), edges);
    }
    return true;
}

void AQE_UndirectedGraph::GetTreeEdges(const std::vector<amd_id>& nodes,
                                       std::vector<amd_id>& edgesOut)
{
    const std::vector<NodeIndex> terminals = FindNodes(nodes);
    const GraphView graph = mStorage.GetView();
    const qe::graph::SteinerResult result = qe::graph::SearchOneTree(graph, terminals);
    if (!result.trees.empty() && !result.trees.front().empty())
        AppendEdges(qe::graph::OrderFrom(graph, terminals.front(), result.trees.front()), edgesOut);
}

std::vector<NodeIndex> AQE_UndirectedGraph::FindNodes(const std::vector<amd_id>& nodes)
{
    std::vector<NodeIndex> found;
    found.reserve(nodes.size());
    for (const amd_id& node : nodes)
        found.push_back(mStorage.FindNode(node));
    return found;
}

void AQE_UndirectedGraph::AppendEdges(std::span<const EdgeIndex> indices,
                                      std::vector<amd_id>& edges)
{
    edges.reserve(edges.size() + indices.size());
    for (const EdgeIndex index : indices)
        edges.push_back(mStorage.GetEdgeId(index));
}
