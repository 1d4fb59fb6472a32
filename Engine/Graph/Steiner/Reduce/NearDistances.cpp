#include "Engine/Graph/Steiner/Reduce/NearDistances.h"

#include "Engine/Graph/Core/Distance.h"
#include "Engine/Graph/Steiner/Network/Network.h"

#include <algorithm>
#include <functional>

namespace qe::graph {

namespace {

/// After so many nodes a run is given up; ways worth knowing are short.
constexpr std::size_t MostSettled = 40;

} // namespace

NearDistances::NearDistances(const Network& network)
    : mNetwork(network), mDistances(network.GetNodeLimit(), kUnreached)
{}

void NearDistances::Run(NodeIndex source, std::uint64_t most)
{
    for (const NodeIndex node : mTouched)
        mDistances[node] = kUnreached;
    mTouched.clear();
    mQueue.clear();
    Push(0, source);
    for (std::size_t settled = 0; !mQueue.empty() && settled < MostSettled;) {
        const auto [distance, node] = mQueue.front();
        std::pop_heap(mQueue.begin(), mQueue.end(), std::greater<>());
        mQueue.pop_back();
        if (distance > mDistances[node])
            continue;
        ++settled;
        for (HalfEdge half = mNetwork.GetFirst(node); half.IsValid();
             half = mNetwork.GetNext(half)) {
            const std::uint64_t next = distance + mNetwork.GetWeight(half.Edge());
            if (next <= most && next < mDistances[mNetwork.GetTarget(half)])
                Push(next, mNetwork.GetTarget(half));
        }
    }
}

void NearDistances::Push(std::uint64_t distance, NodeIndex node)
{
    if (mDistances[node] == kUnreached)
        mTouched.push_back(node);
    mDistances[node] = distance;
    mQueue.emplace_back(distance, node);
    std::push_heap(mQueue.begin(), mQueue.end(), std::greater<>());
}

} // namespace qe::graph
