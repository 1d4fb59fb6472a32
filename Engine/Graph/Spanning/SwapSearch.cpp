#include "Engine/Graph/Spanning/SwapSearch.h"

#include "Engine/Graph/Spanning/MinimumSpanningTree.h"

namespace qe::graph {

namespace {

// The step at which required edges are added; edge mByWeight[i] has step i + 1.
constexpr std::uint32_t kRequiredStep = 0;

} // namespace

SwapSearch::SwapSearch(std::uint32_t nodeCount, std::span<const Edge> edges)
    : mNodeCount(nodeCount), mEdges(edges), mByWeight(SortByWeight(edges)), mForest(nodeCount)
{}

void SwapSearch::BuildRootedForest(std::span<const EEdgeUse> uses)
{
    mForest.Reset(mNodeCount);
    for (const EdgeIndex index : mByWeight) {
        const Edge& edge = mEdges[index.value];
        if (uses[index.value] == EEdgeUse::Required)
            mForest.Unite(edge.end1.value, edge.end2.value, kRequiredStep);
    }
    std::uint32_t step = kRequiredStep;
    for (const EdgeIndex index : mByWeight) {
        const Edge& edge = mEdges[index.value];
        ++step;
        if (uses[index.value] == EEdgeUse::In)
            mForest.Unite(edge.end1.value, edge.end2.value, step);
    }
}

// The heaviest edge on the cycle that `in` closes is the one to take out; of equal ones the last,
// as the edges of the result then come earlier.
std::optional<EdgeSwap> SwapSearch::FindSwapFor(EdgeIndex in) const
{
    const Edge& edge = mEdges[in.value];
    const std::uint32_t step = mForest.FindLastStep(edge.end1.value, edge.end2.value);
    if (step == kRequiredStep || step == BottleneckForest::kNotConnected)
        return std::nullopt;
    return MakeSwap(mEdges, mByWeight[step - 1], in);
}

std::optional<EdgeSwap> SwapSearch::FindBest(std::span<const EEdgeUse> uses)
{
    BuildRootedForest(uses);
    std::optional<EdgeSwap> best;
    for (const EdgeIndex in : mByWeight) {
        if (uses[in.value] != EEdgeUse::Out)
            continue;
        const std::optional<EdgeSwap> swap = FindSwapFor(in);
        if (swap && (!best || IsSwapLess(*swap, *best)))
            best = swap;
    }
    return best;
}

std::vector<EdgeSwap> SwapSearch::FindAll(std::span<const EEdgeUse> uses)
{
    BuildRootedForest(uses);
    std::vector<EdgeSwap> swaps;
    for (const EdgeIndex in : mByWeight) {
        if (uses[in.value] != EEdgeUse::Out)
            continue;
        if (const std::optional<EdgeSwap> swap = FindSwapFor(in))
            swaps.push_back(*swap);
    }
    return swaps;
}

} // namespace qe::graph
