#ifndef ENGINE_GRAPH_AQE_UNDIRECTEDGRAPH_H
#define ENGINE_GRAPH_AQE_UNDIRECTEDGRAPH_H

#include "AQE_I_UndirectedGraph.h"
#include "Engine/Graph/Core/GraphStorage.h"
#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Core/ShortestPaths.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// The engine's graph: translates ids into indices and back, and leaves storage and algorithms to
/// qe::graph.
class AQE_UndirectedGraph final : public AQE_I_UndirectedGraph
{
public:
    /// GetPaths lists at most so many spanning trees.
    static constexpr std::size_t kMaximumPaths = 1000;

    void AddNode(const amd_id& node) override;
    void AddEdge(const amd_id& edge, const amd_id& end1, const amd_id& end2, int weight,
                 int flag) override;
    void SetEdgeWeight(const amd_id& edge, int weight) override;
    int GetPathWeight(const std::vector<amd_id>& edges) override;
    void GetNodeEdges(const amd_id& node, std::vector<amd_id>& edges) override;
    void GetEdges(std::vector<amd_id>& edges) override;
    bool IsConnected() override;
    void GetShortestPath(const amd_id& from, const amd_id& to, std::vector<amd_id>& edges,
                         int& weight) override;
    void GetMinimumSpanningTree(std::vector<amd_id>& edges, int& weight) override;
    void GetShortestPathTree(const std::vector<amd_id>& nodes, std::vector<amd_id>& nodesOut,
                             std::vector<amd_id>& edgesOut, int& weight) override;
    void GetPaths(std::vector<std::vector<amd_id>>& paths) override;
    bool GetCheapestTrees(const std::vector<amd_id>& nodes, std::vector<std::vector<amd_id>>& trees,
                          int& weight) override;
    void GetTreeEdges(const std::vector<amd_id>& nodes, std::vector<amd_id>& edgesOut) override;

private:
    [[nodiscard]] std::vector<qe::graph::NodeIndex> FindNodes(const std::vector<amd_id>& nodes);
    void AppendEdges(std::span<const qe::graph::EdgeIndex> indices, std::vector<amd_id>& edges);

    qe::graph::GraphStorage mStorage;
    qe::graph::ShortestPathCache mShortestPaths;
};

#endif
