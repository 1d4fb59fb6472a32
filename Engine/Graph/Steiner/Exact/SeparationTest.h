#ifndef ENGINE_GRAPH_STEINER_EXACT_SEPARATIONTEST_H
#define ENGINE_GRAPH_STEINER_EXACT_SEPARATIONTEST_H

#include "Engine/Graph/Steiner/Exact/Labels.h"
#include "Engine/Graph/Steiner/Network/FlatNetwork.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// Tells which partial trees no minimum Steiner tree can hold, because they stand in the way of
/// what is missing (after Iwata and Shigemura, Separator-based pruned dynamic programming for
/// Steiner tree, 2019).
///
/// What completes a partial tree at its node keeps away from its other nodes: were it closer to one
/// of them than the longest segment is from there to the partial tree's own node, then the tree
/// without that segment, and with the short cut instead, would be lighter. A segment ends where
/// branches meet. So all terminals that are missing have to be connected to the node around the
/// partial tree, at those distances. That holds for every least partial tree of a node and set as
/// soon as it holds for one, as each could take the other's place.
class SeparationTest
{
public:
    using NodeMarks = IndexedVector<NodeIndex, std::uint8_t>;

    /// Keeps a reference to the network.
    explicit SeparationTest(const FlatNetwork& network);

    /// Returns whether the partial tree of the label keeps one of the missing terminals from its
    /// node. `isMissing` tells which terminals are; the node may be one of them. Costs about as
    /// much as the surroundings of the partial tree are large.
    [[nodiscard]] bool IsSeparating(const LabelTable& labels, LabelIndex label,
                                    const NodeMarks& isMissing);

    /// Returns whether enough of the tests so far have found something.
    [[nodiscard]] bool IsWorthwhile() const
    {
        return mTest < tuning::kTrialTests || tuning::kSeparatingShare * mSeparating >= mTest;
    }

    /// Returns how many half-edges and labels have been looked at, over all tests.
    [[nodiscard]] std::uint64_t GetSteps() const { return mSteps; }

private:
    /// A label of the partial tree: the length of the segment that leads on from it, as far as the
    /// next branching, and of the longest one behind that.
    struct Part
    {
        LabelIndex label;
        std::uint64_t segment;
        std::uint64_t longest;
    };
    /// How far the surroundings of a node are closed.
    struct Barrier
    {
        NodeIndex node;
        std::uint64_t radius;
    };

    /// The test that has closed a node last, and how far its surroundings are closed then.
    struct Closure
    {
        std::uint64_t radius = 0;
        std::uint32_t test = 0;
    };

    /// A part of what is not closed, as far as it has been seen.
    struct Front
    {
        /// The nodes to go on from, those from `next` on.
        std::vector<NodeIndex> nodes;
        std::size_t next = 0;
        bool holdsMissing = false;
        /// Whether it holds the node of the partial tree.
        bool holdsNode = false;

        /// Forgets everything but keeps the memory.
        void Reset()
        {
            nodes.clear();
            next = 0;
            holdsMissing = false;
            holdsNode = false;
        }
    };

    void FindBarriers(const LabelTable& labels, LabelIndex label);
    [[nodiscard]] bool ClosesMissing(const NodeMarks& isMissing);
    [[nodiscard]] bool Close(const Barrier& barrier, const NodeMarks& isMissing);
    [[nodiscard]] bool IsClosed(NodeIndex node) const { return mClosures[node].test == mTest; }
    [[nodiscard]] bool CutsOffMissing(NodeIndex node, const NodeMarks& isMissing);
    void BeginFronts(NodeIndex node, const NodeMarks& isMissing);
    void BeginFront(NodeIndex node, const NodeMarks& isMissing);
    void Reach(std::uint32_t front, NodeIndex node, const NodeMarks& isMissing);
    [[nodiscard]] std::uint32_t FindFront(NodeIndex node);
    void Advance(std::uint32_t front, const NodeMarks& isMissing);
    std::uint32_t Merge(std::uint32_t left, std::uint32_t right);

    const FlatNetwork& mNetwork;
    std::vector<Part> mParts;
    std::vector<Barrier> mBarriers;
    IndexedVector<NodeIndex, Closure> mClosures;
    /// What is still to be closed around.
    std::vector<Barrier> mClosing;
    /// The number of the test that has reached a node last, and by which front.
    IndexedVector<NodeIndex, std::uint32_t> mReachedBy;
    IndexedVector<NodeIndex, std::uint32_t> mFrontOf;
    std::uint32_t mTest = 0;
    std::vector<NodeIndex> mClosed;
    /// The first mMergedInto.size() are in use.
    std::vector<Front> mFronts;
    /// For each front the one that it was merged into, or itself.
    std::vector<std::uint32_t> mMergedInto;
    /// The fronts that may go on.
    std::vector<std::uint32_t> mActive;
    std::uint64_t mSteps = 0;
    std::uint64_t mSeparating = 0;
};

} // namespace qe::graph

#endif
