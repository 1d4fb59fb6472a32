#include "Engine/Graph/Steiner/List/TreeFamily.h"

#include "Engine/Graph/Steiner/Network/StrandPool.h"

#include <algorithm>
#include <utility>

namespace qe::graph {

PartIndex DerivationGraph::AddPart()
{
    mParts.push_back({.firstChoice = mChoices.size(), .count = 0});
    return {static_cast<std::uint32_t>(mParts.size() - 1)};
}

void DerivationGraph::AddStep(StrandIndex strand, PartIndex part)
{
    AddChoice(strand, part, {});
}

void DerivationGraph::AddJoin(PartIndex first, PartIndex second)
{
    AddChoice({}, first, second);
}

void DerivationGraph::AddEmpty()
{
    AddChoice({}, {}, {});
}

void DerivationGraph::AddChoice(StrandIndex strand, PartIndex first, PartIndex second)
{
    std::uint64_t count = strand.IsValid() ? mStrands->GetCount(strand) : 1;
    if (first.IsValid())
        count = MultiplyCounts(count, GetCount(first));
    if (second.IsValid())
        count = MultiplyCounts(count, GetCount(second));
    if (count == 0)
        return;
    mChoices.push_back({strand, first, second, count});
    mParts.back().count = AddCounts(mParts.back().count, count);
}

void DerivationGraph::AppendEdges(PartIndex part, std::uint64_t rank,
                                  std::vector<EdgeIndex>& edges) const
{
    std::vector<std::pair<PartIndex, std::uint64_t>> open{{part, rank}};
    while (!open.empty()) {
        auto [current, number] = open.back();
        open.pop_back();
        std::size_t place = mParts[current.value].firstChoice;
        while (number >= mChoices[place].count)
            number -= mChoices[place++].count;
        const Choice& choice = mChoices[place];
        if (choice.strand.IsValid()) {
            const std::uint64_t count = mStrands->GetCount(choice.strand);
            mStrands->AppendEdges(choice.strand, number % count, edges);
            number /= count;
        }
        if (choice.second.IsValid()) {
            const std::uint64_t count = GetCount(choice.second);
            open.emplace_back(choice.second, number % count);
            number /= count;
        }
        if (choice.first.IsValid())
            open.emplace_back(choice.first, number);
    }
}

void TreeFamily::AddStrand(StrandIndex strand)
{
    mCount = MultiplyCounts(mCount, mStrands->GetCount(strand));
    mFixed.push_back(strand);
}

void TreeFamily::AddDerivations(DerivationGraph&& graph, PartIndex part)
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
