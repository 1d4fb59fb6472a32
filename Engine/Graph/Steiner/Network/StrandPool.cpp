#include "Engine/Graph/Steiner/Network/StrandPool.h"

#include <tuple>
#include <utility>

namespace qe::graph {

StrandIndex StrandPool::Add(const Strand& strand)
{
    mStrands.push_back(strand);
    return {static_cast<std::uint32_t>(mStrands.size() - 1)};
}

StrandIndex StrandPool::AddEdge(EdgeIndex edge)
{
    return Add({EKind::Edge, edge.value, 0, 1});
}

StrandIndex StrandPool::AddSeries(StrandIndex first, StrandIndex second)
{
    return Add({EKind::Series, first.value, second.value,
                MultiplyCounts(GetCount(first), GetCount(second))});
}

StrandIndex StrandPool::AddChoice(StrandIndex first, StrandIndex second)
{
    return Add(
        {EKind::Choice, first.value, second.value, AddCounts(GetCount(first), GetCount(second))});
}

void StrandPool::AppendEdges(StrandIndex strand, std::uint64_t rank,
                             std::vector<EdgeIndex>& edges) const
{
    std::vector<std::pair<std::uint32_t, std::uint64_t>> open;
    for (std::uint32_t current = strand.value;;) {
        const Strand& what = mStrands[current];
        if (what.kind == EKind::Choice) {
            const std::uint64_t count = mStrands[what.first].count;
            current = rank < count ? what.first : what.second;
            rank = rank < count ? rank : rank - count;
            continue;
        }
        if (what.kind == EKind::Series) {
            const std::uint64_t count = mStrands[what.first].count;
            open.emplace_back(what.second, rank / count);
            current = what.first;
            rank %= count;
            continue;
        }
        edges.push_back({what.first});
        if (open.empty())
            return;
        std::tie(current, rank) = open.back();
        open.pop_back();
    }
}

} // namespace qe::graph
