#include "Engine/Graph/Steiner/Reduce/NearDistances.h"

#include "Engine/Graph/Steiner/Network/Network.h"

#include <cstddef>

namespace qe::graph {

namespace {

/// After so many nodes a run is given up; paths worth knowing are short.
constexpr std::size_t kMostSettled = 40;

} // namespace

NearDistances::NearDistances(const Network& network)
    : mNetwork(network), mSearch(network.GetNodeLimit())
{}

void NearDistances::Run(NodeIndex source, std::uint64_t most)
{
    std::size_t settled = 0;
    mSearch.Reset();
    mSearch.Reach(source, 0);
    mSearch.Run([&](NodeIndex node, std::uint64_t distance) {
        for (HalfEdge half = mNetwork.GetFirst(node); half.IsValid();
             half = mNetwork.GetNext(half)) {
            const std::uint64_t next = distance + mNetwork.GetWeight(half.Edge());
            if (next <= most)
                mSearch.Reach(mNetwork.GetTarget(half), next);
        }
        return ++settled < kMostSettled ? DijkstraSearch::EStep::Continue
                                        : DijkstraSearch::EStep::Stop;
    });
}

} // namespace qe::graph
