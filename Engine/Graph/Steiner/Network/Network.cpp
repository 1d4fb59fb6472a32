#include "Engine/Graph/Steiner/Network/Network.h"

#include <cstddef>

namespace qe::graph {

Network::Network(std::uint32_t nodeCount, StrandPool& strands)
    : mStrands(&strands), mNodes(nodeCount)
{}

void Network::MakeTerminal(NodeIndex node)
{
    mTerminalCount += mNodes[node].isTerminal ? 0U : 1U;
    mNodes[node].isTerminal = true;
}

void Network::Reserve(std::size_t edges)
{
    mEdges.reserve(edges);
    mHalves.reserve(2 * edges);
}

void Network::Link(HalfEdge half, NodeIndex origin)
{
    Node& node = mNodes[origin];
    mHalves[half] = {origin, node.first, {}};
    if (node.first.IsValid())
        mHalves[node.first].previous = half;
    node.first = half;
    ++node.degree;
}

void Network::Unlink(HalfEdge half)
{
    const Half& what = mHalves[half];
    Node& node = mNodes[what.origin];
    if (what.previous.IsValid())
        mHalves[what.previous].next = what.next;
    else
        node.first = what.next;
    if (what.next.IsValid())
        mHalves[what.next].previous = what.previous;
    --node.degree;
}

void Network::AppendEdge(NodeIndex end1, NodeIndex end2, std::uint64_t weight, StrandIndex strand)
{
    EdgeIndex edge{GetEdgeLimit()};
    if (mFreeEdges.empty()) {
        mEdges.push_back({});
        mHalves.resize(std::size_t{mHalves.size()} + 2);
    } else {
        edge = mFreeEdges.back();
        mFreeEdges.pop_back();
    }
    mEdges[edge] = {weight, strand, true};
    Link(HalfEdge::Forward(edge), end1);
    Link(HalfEdge::Backward(edge), end2);
    ++mEdgeCount;
}

EdgeIndex Network::FindEdge(NodeIndex end1, NodeIndex end2) const
{
    if (GetDegree(end1) > GetDegree(end2))
        return FindEdge(end2, end1);
    for (HalfEdge half = GetFirst(end1); half.IsValid(); half = GetNext(half)) {
        if (GetTarget(half) == end2)
            return half.Edge();
    }
    return {};
}

void Network::MergeInto(EdgeIndex edge, std::uint64_t weight, StrandIndex strand)
{
    NetworkEdge& present = mEdges[edge];
    if (weight < present.weight)
        present = {weight, strand, true};
    else if (weight == present.weight)
        present.strand = mStrands->AddChoice(present.strand, strand);
}

void Network::MergeEdge(NodeIndex end1, NodeIndex end2, std::uint64_t weight, StrandIndex strand)
{
    const EdgeIndex edge = FindEdge(end1, end2);
    if (edge.IsValid())
        MergeInto(edge, weight, strand);
    else
        AppendEdge(end1, end2, weight, strand);
}

void Network::RemoveEdge(EdgeIndex edge)
{
    Unlink(HalfEdge::Forward(edge));
    Unlink(HalfEdge::Backward(edge));
    mEdges[edge].isPresent = false;
    mFreeEdges.push_back(edge);
    --mEdgeCount;
}

void Network::Contract(HalfEdge half)
{
    const NodeIndex from = GetOrigin(half);
    const NodeIndex into = GetTarget(half);
    mFixedStrands.push_back(GetStrand(half.Edge()));
    mFixedWeight += GetWeight(half.Edge());
    RemoveEdge(half.Edge());
    while (GetFirst(from).IsValid()) {
        const HalfEdge moved = GetFirst(from);
        const NodeIndex target = GetTarget(moved);
        const NetworkEdge edge = mEdges[moved.Edge()];
        RemoveEdge(moved.Edge());
        MergeEdge(into, target, edge.weight, edge.strand);
    }
    if (mNodes[from].isTerminal) {
        mNodes[from].isTerminal = false;
        --mTerminalCount;
    }
    MakeTerminal(into);
}

} // namespace qe::graph
