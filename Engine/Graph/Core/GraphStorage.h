#ifndef ENGINE_GRAPH_CORE_GRAPHSTORAGE_H
#define ENGINE_GRAPH_CORE_GRAPHSTORAGE_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Core/IdIndex.h"
#include "amd_id.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qe::graph {

/// Holds the nodes and edges of a multigraph by their ids, and shows them as a GraphView.
///
/// Additions are only buffered. The first question afterwards merges them, and the first question
/// that needs the view numbers nodes and edges by ascending id and builds their adjacency, in
/// O(n + m). A change of weight leaves the adjacency standing. When memory runs out, the operation
/// that throws has added and changed nothing.
class GraphStorage
{
public:
    /// Adds a node, unless it is there.
    void AddNode(const amd_id& node);

    /// Adds an edge and those of its ends that are missing; an edge that is there stays as it
    /// is, and then its ends are not added either.
    void AddEdge(const amd_id& edge, const amd_id& end1, const amd_id& end2, std::uint32_t weight);

    /// Changes the weight of an edge, if there is such an edge.
    void SetEdgeWeight(const amd_id& edge, std::uint32_t weight);

    /// Returns the weight of an edge, or nothing when there is no such edge. Needs no adjacency.
    [[nodiscard]] std::optional<std::uint32_t> FindEdgeWeight(const amd_id& edge);

    /// Appends the ids of all edges in ascending order. Needs no adjacency.
    void AppendEdgeIds(std::vector<amd_id>& ids);

    /// Returns the graph as it is now; good until it is changed.
    [[nodiscard]] GraphView GetView();

    /// Returns the self-loops at a node, which the view does not show as arcs, in ascending order;
    /// good until the graph is changed.
    [[nodiscard]] std::span<const Arc> GetSelfLoops(NodeIndex node);

    /// Returns the index of a node; an invalid one when there is no such node.
    [[nodiscard]] NodeIndex FindNode(const amd_id& node);

    [[nodiscard]] amd_id GetNodeId(NodeIndex node);
    [[nodiscard]] amd_id GetEdgeId(EdgeIndex edge);

    /// Returns a number that grows whenever a node, an edge or a weight has changed.
    [[nodiscard]] std::uint64_t GetRevision();

private:
    struct NewEdge
    {
        amd_id id;
        amd_id end1;
        amd_id end2;
        std::uint32_t weight;
    };

    void MergePendingNodes();
    void MergePendingEdges();
    std::vector<Edge> ResolveEdges(const std::vector<std::uint32_t>& places);
    void BuildAdjacency();
    void BuildArcs(std::uint32_t nodeCount);
    void BuildSelfLoops();

    // Buffered, not yet merged.
    std::vector<amd_id> mNewNodes;
    std::vector<NewEdge> mNewEdges;

    // By id; the ends of mEdges are slots of mNodeIds.
    IdIndex mNodeIds;
    IdIndex mEdgeIds;
    std::vector<Edge> mEdges;
    std::uint64_t mRevision = 0;

    // By index, and good while mHasAdjacency is true.
    std::vector<std::uint32_t> mRankOfEdge;
    std::vector<Edge> mRankedEdges;
    std::vector<std::uint32_t> mFirstArc;
    std::vector<Arc> mArcs;
    std::vector<Arc> mSelfLoops;
    bool mHasAdjacency = false;
};

} // namespace qe::graph

#endif
