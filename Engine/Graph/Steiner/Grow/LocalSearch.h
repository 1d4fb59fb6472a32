#ifndef ENGINE_GRAPH_STEINER_GROW_LOCALSEARCH_H
#define ENGINE_GRAPH_STEINER_GROW_LOCALSEARCH_H

#include "Engine/Graph/Steiner/Grow/TreeGrower.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace qe::graph {

/// Improves a tree by exchanges of key paths and elimination of key vertices: the local search of
/// Uchoa and Werneck (2010) in a plain form, which tries each exchange by growing a tree.
///
/// Key nodes are the terminals and the nodes where at least three tree edges meet; the paths
/// between them cut the tree into pieces. An exchange takes out one such path, or a key node that
/// is no terminal with all its paths, and grows the remaining parts together again.
class LocalSearch
{
public:
    /// Keeps references to both.
    LocalSearch(const FlatNetwork& network, TreeGrower& grower);

    /// Applies exchanges until none helps, or `isOver` returns true.
    void Improve(SteinerTree& tree, const std::function<bool()>& isOver);

private:
    void CutIntoPaths(const SteinerTree& tree);
    void WalkPath(const SteinerTree& tree, NodeIndex node, std::uint32_t place);
    [[nodiscard]] bool IsKey(NodeIndex node) const;
    bool TryWithout(SteinerTree& tree, NodeIndex key, std::uint32_t path);
    [[nodiscard]] NodeIndex ChooseStart(const SteinerTree& tree);
    [[nodiscard]] std::size_t CountPart(const SteinerTree& tree, NodeIndex start, std::size_t most);

    const FlatNetwork& mNetwork;
    TreeGrower& mGrower;
    /// Positions in the tree of the edges at each node of it.
    IndexedVector<NodeIndex, std::vector<std::uint32_t>> mEdgesAt;
    std::vector<NodeIndex> mTreeNodes;
    std::vector<std::uint32_t> mPathOfEdge;
    std::vector<std::pair<NodeIndex, NodeIndex>> mPathEnds;
    /// What an exchange leaves of the tree, and the ends of what it takes out.
    std::vector<EdgeIndex> mKept;
    std::vector<std::uint8_t> mIsKept;
    std::vector<NodeIndex> mStarts;
    /// Nodes still to be counted from, each with the position of the edge that led there.
    std::vector<std::pair<NodeIndex, std::uint32_t>> mOpen;
};

} // namespace qe::graph

#endif
