#ifndef ENGINE_GRAPH_STEINER_NETWORK_ZEROGROUPS_H
#define ENGINE_GRAPH_STEINER_NETWORK_ZEROGROUPS_H

#include "Engine/Graph/Core/GraphView.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace qe::graph {

class Budget;

/// The groups of nodes that edges of weight 0 connect, and the trees inside them.
///
/// A lightest tree of the graph is a lightest tree over the groups, in which all edges weigh
/// something, and inside each group it touches a tree of weight 0 that connects the terminals
/// of the group and the ends of the outer edges there, and has no other leaves.
class ZeroGroups
{
public:
    ZeroGroups(const GraphView& graph, std::span<const NodeIndex> terminals);

    /// Answers for each node the smallest node of its group; nothing when no two nodes are
    /// together.
    [[nodiscard]] std::span<const std::uint32_t> GetGroups() const { return mGroups; }

    /// Whether to go on after a tree was taken.
    enum class EStep
    {
        Continue,
        Stop,
    };
    using TreeTaker = std::function<EStep(const std::vector<EdgeIndex>&)>;

    /// Gives every tree of the graph that has the given edges outside the groups to `take`, each
    /// once, in a fixed order, until it says stop or the budget runs out. Answers Stop then.
    EStep ForEachTree(std::span<const EdgeIndex> outer, Budget& budget, const TreeTaker& take);

private:
    enum class EMark : std::uint8_t
    {
        Free,
        OnPath,
        InTree,
    };
    /// One node on a path that is to connect a wanted node to the tree.
    struct Frame
    {
        std::uint32_t node;
        std::uint32_t nextArc;
        /// Where in the stack the path begins, and which of the wanted nodes it begins with.
        std::size_t pathStart;
        std::size_t wanted;
    };

    void FindWanted(std::span<const EdgeIndex> outer);
    [[nodiscard]] bool CanReachTree(std::uint32_t node);
    bool Advance();
    bool BeginPath(std::size_t wanted);
    void Retreat();
    void MarkPath(EMark mark);
    [[nodiscard]] bool IsInside(const Arc& arc) const
    {
        return mGraph.GetEdge(arc.edge).weight == 0;
    }

    const GraphView& mGraph;
    std::span<const NodeIndex> mTerminals;
    std::vector<std::uint32_t> mGroups;
    /// Nodes that the trees inside the groups must touch; the first of each group is the start.
    std::vector<std::uint32_t> mWanted;
    std::vector<EMark> mMarks;
    std::vector<Frame> mFrames;
    std::vector<EdgeIndex> mEdges;
    std::vector<std::uint32_t> mSeen;
    std::vector<std::uint32_t> mSeenStamps;
    std::uint32_t mSeenStamp = 0;
};

} // namespace qe::graph

#endif
