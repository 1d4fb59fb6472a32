#ifndef ENGINE_GRAPH_SPANNING_MINIMUMSPANNINGTREES_H
#define ENGINE_GRAPH_SPANNING_MINIMUMSPANNINGTREES_H

#include "Engine/Graph/Core/Indices.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe::graph {

/// An edge whose weight may be that of a whole path. There may be several between two nodes.
struct Link
{
    NodeIndex end1;
    NodeIndex end2;
    std::uint64_t weight = 0;
    /// By how many edges of this weight it can be replaced, itself included; at most 2^64 - 1.
    std::uint64_t multiplicity = 1;
};

/// Lists the minimum spanning trees of a connected graph, and no other trees, each once.
///
/// The links are gone through in order of weight, as in Kruskal's algorithm (1956). One that joins
/// two parts is taken at first; later it is left out, if the links of its weight behind it can
/// still join the parts. So no path of the search is a dead end, and between two trees little more
/// is looked at than the links behind the one that is left out: O(m) at most for each of these.
class MinimumSpanningTrees
{
public:
    /// Takes the links of a connected graph in ascending order of weight, none of them a loop. They
    /// must outlive this object.
    MinimumSpanningTrees(std::uint32_t nodeCount, std::span<const Link> links);

    /// Moves to the first tree, and later to the next; returns false behind the last.
    bool MoveNext();
    /// Returns the tree as ascending positions of its links.
    [[nodiscard]] std::span<const std::uint32_t> GetTree() const { return mTree; }
    /// Returns how many links have been looked at.
    [[nodiscard]] std::uint64_t GetSteps() const { return mSteps; }

private:
    [[nodiscard]] std::uint32_t Find(std::uint32_t node) const;
    bool Unite(const Link& link);
    void UndoTo(std::size_t unions);
    void Complete(std::uint32_t next);
    [[nodiscard]] bool CanBeReplaced(std::uint32_t place);

    std::uint32_t mNodeCount;
    std::span<const Link> mLinks;
    /// Union by size without path compression, so that unions can be undone.
    std::vector<std::uint32_t> mParents;
    std::vector<std::uint32_t> mSizes;
    /// The roots that were put under others, in that order; one for each link of the tree.
    std::vector<std::uint32_t> mUnions;
    std::vector<std::uint32_t> mTree;
    std::uint64_t mSteps = 0;
    bool mIsStarted = false;
};

} // namespace qe::graph

#endif
