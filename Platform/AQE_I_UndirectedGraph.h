#ifndef PLATFORM_AQE_I_UNDIRECTEDGRAPH_H
#define PLATFORM_AQE_I_UNDIRECTEDGRAPH_H

#include "AUT_RefPtr.h"
#include "QEENGINE_EXPORT.h"
#include "amd_id.h"

#include <vector>

/// A weighted undirected multigraph whose nodes and edges are named by ids.
///
/// Parallel edges are different edges and give different paths and trees. An edge whose two ends
/// are one node is kept as an edge, and is in no path and no tree. Weights are not negative; sums
/// that do not fit an int are reported as the largest int. Ids that are not in the graph are
/// harmless in every query. Output vectors are appended to, never cleared; weights are replaced.
/// Every answer depends only on the nodes, edges and weights, never on the order in which they
/// were added: ties end in the order of the ids.
///
/// What is added is buffered, and the first query after it sorts it in; so filling a graph costs
/// about as much as sorting its ids, and adding to it in small steps O(log m) a step. Queries that
/// walk the graph renumber it in O(n + m) when nodes or edges have come since; a changed weight
/// does not make them do so.
///
/// One graph is used by one thread at a time, also for reading.
class QEENGINE_EXPORT AQE_I_UndirectedGraph
{
public:
    virtual ~AQE_I_UndirectedGraph();

    /// Makes an empty graph.
    [[nodiscard]] static AUT_RefPtr<AQE_I_UndirectedGraph> Create();

    /// Adds the node. A node that is there already stays as it is.
    virtual void AddNode(const amd_id& node) = 0;

    /// Adds an edge between two nodes, which are added where they are missing. An edge that is
    /// there already keeps its ends and its weight. A negative weight counts as 0; `flag` is
    /// reserved for callers and has no effect.
    virtual void AddEdge(const amd_id& edge, const amd_id& end1, const amd_id& end2, int weight,
                         int flag) = 0;

    /// Changes the weight of an edge; nothing happens when there is no such edge.
    virtual void SetEdgeWeight(const amd_id& edge, int weight) = 0;

    /// Adds up the weights of the given edges, counting repeated ones each time. An id that is no
    /// edge counts 0. O(log m) for each, whatever was added before.
    virtual int GetPathWeight(const std::vector<amd_id>& edges) = 0;

    /// Appends the edges at `node` in id order, a self-loop once.
    virtual void GetNodeEdges(const amd_id& node, std::vector<amd_id>& edges) = 0;

    /// Appends all edges in id order.
    virtual void GetEdges(std::vector<amd_id>& edges) = 0;

    /// Returns whether every node can be reached from every other. A graph of one node or none is
    /// connected.
    virtual bool IsConnected() = 0;

    /// Appends the edges of a least-weight path in walking order and sets `weight` to its weight.
    /// From a node to itself the path is empty and weighs 0. When there is no path, or an end is
    /// not in the graph, nothing is appended and `weight` is -1.
    ///
    /// Of several such paths it is the one that comes to each of its nodes from the neighbour that
    /// is nearest to `from`, of equally near ones the one with the lowest id, and there by the
    /// edge with the lowest id. Edges of weight 0 can make a neighbour equally near that is not
    /// reached before the node itself; such a one does not count.
    ///
    /// The first path from a node takes O((n + m) log n). The paths to all other nodes are then
    /// remembered until the graph changes, or those from many other nodes (64 MiB of them) have
    /// been asked for since.
    virtual void GetShortestPath(const amd_id& from, const amd_id& to, std::vector<amd_id>& edges,
                                 int& weight) = 0;

    /// Appends the edges of a minimum spanning tree in id order (of each connected part, when
    /// there are several) and sets `weight` to its weight. Of several minimum trees it is the one
    /// whose edges, in id order, come first. O(m log m).
    virtual void GetMinimumSpanningTree(std::vector<amd_id>& edges, int& weight) = 0;

    /// Connects the given nodes by a tree of least-weight paths grown from the first of them.
    /// Appends the tree's nodes and edges, both in the order in which the tree grew, so that the
    /// k-th edge reaches node k + 1; only given nodes are leaves. `weight` becomes the tree's
    /// weight. Given nodes that cannot be reached stay outside, and when none can be, or there is
    /// only one, there are no edges. When the first is not in the graph, there are no nodes
    /// either.
    ///
    /// The tree holds for every other given node the path that GetShortestPath finds from the
    /// first node to it; these paths are added in the order in which the nodes are given.
    virtual void GetShortestPathTree(const std::vector<amd_id>& nodes,
                                     std::vector<amd_id>& nodesOut, std::vector<amd_id>& edgesOut,
                                     int& weight) = 0;

    /// Appends the spanning trees of the graph, each once and with its edges in id order. They
    /// stand in order of weight, and where that is equal, in the order of their edges, compared
    /// one after the other. After 1,000 trees the list ends; those are the first 1,000 in this
    /// order, so no tree outside is lighter than one inside. A graph that is not connected has
    /// none, nor has one without nodes; one node alone has the empty tree. Where the list was cut,
    /// the log says so.
    ///
    /// O(m log m) for the first tree, then little more for each than for writing it down.
    virtual void GetPaths(std::vector<std::vector<amd_id>>& paths) = 0;

    /// Appends all trees of least weight that connect the given nodes, sets `weight` to that
    /// weight and returns true. Only given nodes are leaves of a tree. When the nodes cannot be
    /// connected, because there is no path or one of them is not in the graph, nothing is
    /// appended, `weight` is -1 and the result false. Repeated nodes count once; one node alone
    /// is connected by the empty tree of weight 0, and so is none.
    ///
    /// Trees stand in order of their number of edges, then of their edges in id order, compared
    /// one after the other; neither which are listed nor how they stand depends on the order of
    /// the given nodes. The edges of a tree are listed as walked from the first given node: each
    /// is the lowest by id of those that touch the node or an edge before it.
    ///
    /// The user's settings (section "JoinGraph") limit the list to "CheapestTreesBound" trees
    /// (1,000), and the search to "CheapestTreesEffort" million steps of work (1,000) and
    /// "CheapestTreesMegabytes" of working memory (1,024). Steps are counted, not timed, so the
    /// answer is the same on every machine under any load, unless a host sets
    /// "CheapestTreesSeconds" (0, none) as a guard. Where there are more trees than are listed, the
    /// log holds their number, or the number that there are at least. Where a limit ended the
    /// search, or more than 512 of the nodes lie in one part without cut vertices, the answer is a
    /// good tree, with what parallel edges make of it, and the log holds its weight and the weight
    /// below which it is proven that there is none. In either case the log names the limit.
    virtual bool GetCheapestTrees(const std::vector<amd_id>& nodes,
                                  std::vector<std::vector<amd_id>>& trees, int& weight) = 0;

    /// Appends the edges of one tree that connects the given nodes, in the order of
    /// GetCheapestTrees and, without "CheapestTreesSeconds", always the same one; nothing when they
    /// cannot be connected. It is a tree of least weight, unless proving that takes more than a
    /// hundredth of "CheapestTreesEffort" or hits another limit of GetCheapestTrees; then it is a
    /// light one.
    virtual void GetTreeEdges(const std::vector<amd_id>& nodes, std::vector<amd_id>& edgesOut) = 0;
};

#endif
