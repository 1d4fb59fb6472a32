#ifndef ENGINE_GRAPH_STEINER_NETWORK_STRANDPOOL_H
#define ENGINE_GRAPH_STEINER_NETWORK_STRANDPOOL_H

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Core/SaturatingCount.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// Names one strand of a StrandPool.
struct StrandIndex
{
    std::uint32_t value = kNoIndex;

    [[nodiscard]] bool IsValid() const { return value != kNoIndex; }
};

/// Remembers what the edges of a reduced network stand for in the graph.
///
/// A strand is one edge of the graph, or two strands one after the other, or a choice between
/// two strands of equal weight. So it stands for a number of edge lists, which are counted at
/// once and listed only when they are wanted: the first of parallel edges and of merged paths
/// is searched with, the others come back here. Strands are never taken back.
class StrandPool
{
public:
    /// Makes room for so many strands more.
    void Reserve(std::size_t count) { mStrands.reserve(mStrands.size() + count); }

    /// Adds the strand that is the one edge.
    StrandIndex AddEdge(EdgeIndex edge);
    /// Adds the strand that runs through both.
    StrandIndex AddSeries(StrandIndex first, StrandIndex second);
    /// Adds the strand that is either; the two have no edge list in common.
    StrandIndex AddChoice(StrandIndex first, StrandIndex second);

    /// Returns how many edge lists the strand stands for, at most 2^64 - 1.
    [[nodiscard]] std::uint64_t GetCount(StrandIndex strand) const
    {
        return mStrands[strand.value].count;
    }

    /// Appends the edge list number `rank`, which is below the count.
    void AppendEdges(StrandIndex strand, std::uint64_t rank, std::vector<EdgeIndex>& edges) const;

    [[nodiscard]] std::size_t GetBytes() const { return mStrands.size() * sizeof(Strand); }

private:
    enum class EKind : std::uint8_t
    {
        Edge,
        Series,
        Choice,
    };
    struct Strand
    {
        EKind kind;
        std::uint32_t first;
        std::uint32_t second;
        std::uint64_t count;
    };

    StrandIndex Add(const Strand& strand);

    std::vector<Strand> mStrands;
};

} // namespace qe::graph

#endif
