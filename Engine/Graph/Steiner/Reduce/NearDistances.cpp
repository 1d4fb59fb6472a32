#include "Engine/Graph/Steiner/Reduce/NearDistances.h"

#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/Network/Saturated.h"

#include <algorithm>
#include <functional>

namespace qe::graph {

namespace {

/// After so many nodes a run is given up; ways worth knowing are short.
constexpr std::size_t MostSettled = 40;

} // namespace

NearDistances::NearDistances(const Network& network)
    : mNetwork(network), mDistances(network.GetNodeLimit(), Unreached)
{}

void NearDistances::Run(std::uint32_t source, std::uint64_t most)
{
    for (const std::uint32_t node : mTouched)
        mDistances[node] = Unreached;
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
        for (std::uint32_t half = mNetwork.GetFirst(node); half != Network::None;
             half = mNetwork.GetNext(half)) {
            const std::uint64_t next = distance + mNetwork.GetWeight(half / 2);
            if (next <= most && next < mDistances[mNetwork.GetTarget(half)])
                Push(next, mNetwork.GetTarget(half));
        }
    }
}

void NearDistances::Push(std::uint64_t distance, std::uint32_t node)
{
    if (mDistances[node] == Unreached)
        mTouched.push_back(node);
    mDistances[node] = distance;
    mQueue.emplace_back(distance, node);
    std::push_heap(mQueue.begin(), mQueue.end(), std::greater<>());
}

} // namespace qe::graph
