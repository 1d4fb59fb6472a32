#ifndef ENGINE_GRAPH_STEINER_LIST_TREEFAMILY_H
#define ENGINE_GRAPH_STEINER_LIST_TREEFAMILY_H

#include "Engine/Graph/Steiner/List/DerivationGraph.h"
#include "Engine/Graph/Steiner/Network/StrandPool.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe::graph {

/// All trees that take one piece from each of several independent families: fixed strands, and
/// the lightest trees of the blocks. Trees are numbered by mixed radix over the pieces.
class TreeFamily
{
public:
    explicit TreeFamily(const StrandPool& strands) : mStrands(&strands) {}

    void AddStrand(StrandIndex strand);
    /// Adds the ways to make one part of the graph.
    void AddDerivations(DerivationGraph&& graph, std::uint32_t part);

    /// Answers the number of trees, at most 2^64 - 1.
    [[nodiscard]] std::uint64_t GetCount() const { return mCount; }

    /// Answers the edges of the tree number `rank`, which is below the count, in ascending order.
    [[nodiscard]] std::vector<EdgeIndex> GetTree(std::uint64_t rank) const;

private:
    struct Block
    {
        DerivationGraph graph;
        std::uint32_t part;
    };

    const StrandPool* mStrands;
    std::vector<StrandIndex> mFixed;
    std::vector<Block> mBlocks;
    std::uint64_t mCount = 1;
};

} // namespace qe::graph

#endif
