#include "Engine/Graph/Steiner/List/TreeFamily.h"

#include "Engine/Graph/Steiner/Network/SaturatingCount.h"

#include <algorithm>
#include <utility>

namespace qe::graph {

void TreeFamily::AddStrand(StrandIndex strand)
{
    mCount = MultiplyCounts(mCount, mStrands->GetCount(strand));
    mFixed.push_back(strand);
}

void TreeFamily::AddDerivations(DerivationGraph&& graph, std::uint32_t part)
{
    mCount = MultiplyCounts(mCount, graph.GetCount(part));
    mBlocks.push_back({std::move(graph), part});
}

std::vector<EdgeIndex> TreeFamily::GetTree(std::uint64_t rank) const
{
    std::vector<EdgeIndex> edges;
    for (const StrandIndex strand : mFixed) {
        const std::uint64_t count = mStrands->GetCount(strand);
        mStrands->AppendEdges(strand, rank % count, edges);
        rank /= count;
    }
    for (const Block& block : mBlocks) {
        const std::uint64_t count = block.graph.GetCount(block.part);
        block.graph.AppendEdges(block.part, rank % count, edges);
        rank /= count;
    }
    std::sort(edges.begin(), edges.end());
    return edges;
}

} // namespace qe::graph
