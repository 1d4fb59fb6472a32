#include "Engine/Graph/Steiner/Network/Network.h"

namespace qe::graph {

Network::Network(std::uint32_t nodeCount, StrandPool& strands)
    : mStrands(&strands), mNodes(nodeCount)
{}

void Network::MakeTerminal(std::uint32_t node)
{
    mTerminalCount += mNodes[node].isTerminal ? 0U : 1U;
    mNodes[node].isTerminal = true;
}

void Network::Link(std::uint32_t half, std::uint32_t origin)
{
    Node& node = mNodes[origin];
    mHalves[half] = {origin, node.first, None};
    if (node.first != None)
        mHalves[node.first].previous = half;
    node.first = half;
    ++node.degree;
}

void Network::Unlink(std::uint32_t half)
{
    const Half& what = mHalves[half];
    Node& node = mNodes[what.origin];
    if (what.previous == None)
        node.first = what.next;
    else
        mHalves[what.previous].next = what.next;
    if (what.next != None)
        mHalves[what.next].previous = what.previous;
    --node.degree;
}

void Network::AppendEdge(std::uint32_t end1, std::uint32_t end2, std::uint64_t weight,
                         StrandIndex strand)
{
    std::uint32_t edge = GetEdgeLimit();
    if (mFreeEdges.empty()) {
        mEdges.push_back({});
        mHalves.resize(mHalves.size() + 2);
    } else {
        edge = mFreeEdges.back();
        mFreeEdges.pop_back();
    }
    mEdges[edge] = {weight, strand, true};
    Link(2 * edge, end1);
    Link(2 * edge + 1, end2);
    ++mEdgeCount;
}

std::uint32_t Network::FindEdge(std::uint32_t end1, std::uint32_t end2) const
{
    if (GetDegree(end1) > GetDegree(end2))
        return FindEdge(end2, end1);
    for (std::uint32_t half = GetFirst(end1); half != None; half = GetNext(half)) {
        if (GetTarget(half) == end2)
            return half / 2;
    }
    return None;
}

void Network::MergeInto(std::uint32_t edge, std::uint64_t weight, StrandIndex strand)
{
    NetworkEdge& present = mEdges[edge];
    if (weight < present.weight)
        present = {weight, strand, true};
    else if (weight == present.weight)
        present.strand = mStrands->AddChoice(present.strand, strand);
}

void Network::MergeEdge(std::uint32_t end1, std::uint32_t end2, std::uint64_t weight,
                        StrandIndex strand)
{
    const std::uint32_t edge = FindEdge(end1, end2);
    if (edge == None)
        AppendEdge(end1, end2, weight, strand);
    else
        MergeInto(edge, weight, strand);
}

void Network::RemoveEdge(std::uint32_t edge)
{
    Unlink(2 * edge);
    Unlink(2 * edge + 1);
    mEdges[edge].isPresent = false;
    mFreeEdges.push_back(edge);
    --mEdgeCount;
}

void Network::Contract(std::uint32_t half)
{
    const std::uint32_t from = GetOrigin(half);
    const std::uint32_t into = GetTarget(half);
    mFixedStrands.push_back(GetStrand(half / 2));
    mFixedWeight += GetWeight(half / 2);
    RemoveEdge(half / 2);
    while (GetFirst(from) != None) {
        const std::uint32_t moved = GetFirst(from);
        const std::uint32_t target = GetTarget(moved);
        const NetworkEdge edge = mEdges[moved / 2];
        RemoveEdge(moved / 2);
        MergeEdge(into, target, edge.weight, edge.strand);
    }
    if (mNodes[from].isTerminal) {
        mNodes[from].isTerminal = false;
        --mTerminalCount;
    }
    MakeTerminal(into);
}

} // namespace qe::graph
