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

void ListedTrees::Add(std::span<const EdgeIndex> edges)
{
    mEdges.insert(mEdges.end(), edges.begin(), edges.end());
    mEnds.push_back(mEdges.size());
}

std::span<const EdgeIndex> ListedTrees::GetTree(std::size_t place) const
{
    const std::size_t begin = place == 0 ? 0 : mEnds[place - 1];
    return std::span(mEdges).subspan(begin, mEnds[place] - begin);
}

void TreeFamily::AddStrand(StrandIndex strand)
{
    const std::uint64_t count = mStrands->GetCount(strand);
    mCount = MultiplyCounts(mCount, count);
    mNumberedCount = MultiplyCounts(mNumberedCount, count);
    mFixed.push_back(strand);
}

void TreeFamily::AddDerivations(DerivationGraph&& graph, PartIndex part)
{
    const std::uint64_t count = graph.GetCount(part);
    AddBlock(Derived{std::move(graph), part}, count);
}

void TreeFamily::AddListed(ListedTrees&& trees, std::uint64_t count)
{
    AddBlock(std::move(trees), count);
}

void TreeFamily::AddBlock(Block&& block, std::uint64_t count)
{
    mCount = MultiplyCounts(mCount, count);
    mNumberedCount = MultiplyCounts(mNumberedCount, GetNumberedCount(block));
    mBlocks.push_back(std::move(block));
}

std::uint64_t TreeFamily::GetNumberedCount(const Block& block)
{
    if (const auto* listed = std::get_if<ListedTrees>(&block))
        return listed->GetCount();
    const auto& derived = std::get<Derived>(block);
    return derived.graph.GetCount(derived.part);
}

void TreeFamily::AppendEdges(const Block& block, std::uint64_t number,
                             std::vector<EdgeIndex>& edges)
{
    if (const auto* listed = std::get_if<ListedTrees>(&block)) {
        const std::span<const EdgeIndex> tree = listed->GetTree(number);
        edges.insert(edges.end(), tree.begin(), tree.end());
        return;
    }
    const auto& derived = std::get<Derived>(block);
    derived.graph.AppendEdges(derived.part, number, edges);
}

std::vector<EdgeIndex> TreeFamily::GetTree(std::uint64_t number) const
{
    std::vector<EdgeIndex> edges;
    for (const StrandIndex strand : mFixed) {
        const std::uint64_t count = mStrands->GetCount(strand);
        mStrands->AppendEdges(strand, number % count, edges);
        number /= count;
    }
    for (const Block& block : mBlocks) {
        const std::uint64_t count = GetNumberedCount(block);
        AppendEdges(block, number % count, edges);
        number /= count;
    }
    std::sort(edges.begin(), edges.end());
    return edges;
}

} // namespace qe::graph
