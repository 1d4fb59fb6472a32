#ifndef ENGINE_GRAPH_STEINER_NETWORK_ZEROWEIGHTCOMPONENTS_H
#define ENGINE_GRAPH_STEINER_NETWORK_ZEROWEIGHTCOMPONENTS_H

#include "Engine/Graph/Core/GraphView.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace qe::graph {

class Budget;

/// The components of nodes that edges of weight 0 connect, and the trees inside them.
///
/// A minimum Steiner tree of the graph is a minimum Steiner tree over the components, in which all
/// edges weigh something, and inside each component it touches a tree of weight 0 that connects
/// the terminals of the component and the ends of the outer edges there, and has no other leaves.
/// These are listed one path at a time: from a node that is missing to what is connected already,
/// along edges that do not lead into a dead end.
class ZeroWeightComponents
{
public:
    /// Takes O(n + m). Graph and terminals must outlive this object.
    ZeroWeightComponents(const GraphView& graph, std::span<const NodeIndex> terminals);

    /// Returns for each node the smallest node of its component; empty when no two nodes are
    /// together.
    [[nodiscard]] const IndexedVector<NodeIndex, NodeIndex>& GetComponents() const
    {
        return mComponents;
    }

    /// Whether to go on after a tree was taken.
    enum class EStep
    {
        Continue,
        Stop,
    };
    using TreeTaker = std::function<EStep(std::span<const EdgeIndex>)>;

    /// Calls `take` for every tree of the graph that has the given edges outside the components,
    /// each once, in a fixed order, until it returns Stop or the budget is overdrawn. It gets the
    /// edges inside the components, in no order. Returns Stop then.
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
        NodeIndex node;
        std::uint32_t nextArc;
        /// Where in the stack the path begins, and which of the wanted nodes it begins with.
        std::size_t pathStart;
        std::size_t wanted;
    };

    void FindWanted(std::span<const EdgeIndex> outer);
    [[nodiscard]] bool CanReachTree(NodeIndex node);
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
    IndexedVector<NodeIndex, NodeIndex> mComponents;
    /// Nodes that the trees inside the components must touch; the first of each is the start.
    std::vector<NodeIndex> mWanted;
    IndexedVector<NodeIndex, EMark> mMarks;
    std::vector<Frame> mFrames;
    std::vector<EdgeIndex> mEdges;
    std::vector<NodeIndex> mSeen;
    IndexedVector<NodeIndex, std::uint32_t> mSeenStamps;
    std::uint32_t mSeenStamp = 0;
    /// Steps since the budget was charged last.
    std::uint64_t mSteps = 0;
};

} // namespace qe::graph

#endif
