#include "Engine/Graph/Steiner/List/DerivationGraph.h"

#include "Engine/Graph/Steiner/Network/SaturatingCount.h"

#include <utility>

namespace qe::graph {

std::uint32_t DerivationGraph::AddPart()
{
    mParts.push_back({static_cast<std::uint32_t>(mChoices.size()), 0});
    return static_cast<std::uint32_t>(mParts.size() - 1);
}

void DerivationGraph::AddStep(StrandIndex strand, std::uint32_t part)
{
    AddChoice(strand.value, part, None);
}

void DerivationGraph::AddJoin(std::uint32_t first, std::uint32_t second)
{
    AddChoice(None, first, second);
}

void DerivationGraph::AddEmpty()
{
    AddChoice(None, None, None);
}

void DerivationGraph::AddChoice(std::uint32_t strand, std::uint32_t first, std::uint32_t second)
{
    std::uint64_t count = strand == None ? 1 : mStrands->GetCount({strand});
    if (first != None)
        count = MultiplyCounts(count, GetCount(first));
    if (second != None)
        count = MultiplyCounts(count, GetCount(second));
    if (count == 0)
        return;
    mChoices.push_back({strand, first, second, count});
    mParts.back().count = AddCounts(mParts.back().count, count);
}

void DerivationGraph::AppendEdges(std::uint32_t part, std::uint64_t rank,
                                  std::vector<EdgeIndex>& edges) const
{
    std::vector<std::pair<std::uint32_t, std::uint64_t>> open{{part, rank}};
    while (!open.empty()) {
        auto [current, number] = open.back();
        open.pop_back();
        std::uint32_t place = mParts[current].firstChoice;
        while (number >= mChoices[place].count)
            number -= mChoices[place++].count;
        const Choice& choice = mChoices[place];
        if (choice.strand != None) {
            const std::uint64_t count = mStrands->GetCount({choice.strand});
            mStrands->AppendEdges({choice.strand}, number % count, edges);
            number /= count;
        }
        if (choice.second != None) {
            const std::uint64_t count = GetCount(choice.second);
            open.emplace_back(choice.second, number % count);
            number /= count;
        }
        if (choice.first != None)
            open.emplace_back(choice.first, number);
    }
}

} // namespace qe::graph
