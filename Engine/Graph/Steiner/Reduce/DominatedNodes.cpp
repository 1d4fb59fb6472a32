#include "Engine/Graph/Steiner/Reduce/DominatedNodes.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace qe::graph {

namespace {

class DominanceTest
{
public:
    explicit DominanceTest(Network& network) : mNetwork(network), mReach(network.GetNodeLimit(), 0)
    {}

    std::size_t Run();

private:
    [[nodiscard]] bool IsDominated(NodeIndex node);
    [[nodiscard]] bool IsJoinedToOthers(NodeIndex neighbour) const;

    Network& mNetwork;
    /// Weight of the edge from the node at hand to each of its neighbours, 0 for other nodes.
    IndexedVector<NodeIndex, std::uint64_t> mReach;
    std::vector<NodeIndex> mNeighbours;
};

std::size_t DominanceTest::Run()
{
    std::size_t count = 0;
    for (const NodeIndex node : mNetwork.GetNodes()) {
        if (mNetwork.IsTerminal(node) || mNetwork.GetDegree(node) == 0 || !IsDominated(node))
            continue;
        while (mNetwork.GetFirst(node).IsValid())
            mNetwork.RemoveEdge(mNetwork.GetFirst(node).Edge());
        ++count;
    }
    return count;
}

bool DominanceTest::IsDominated(NodeIndex node)
{
    mNeighbours.clear();
    for (HalfEdge half = mNetwork.GetFirst(node); half.IsValid(); half = mNetwork.GetNext(half)) {
        mNeighbours.push_back(mNetwork.GetTarget(half));
        mReach[mNeighbours.back()] = mNetwork.GetWeight(half.Edge());
    }
    std::sort(mNeighbours.begin(), mNeighbours.end(), [this](NodeIndex left, NodeIndex right) {
        return mNetwork.GetDegree(left) < mNetwork.GetDegree(right);
    });
    const bool isDominated =
        std::all_of(mNeighbours.begin(), mNeighbours.end(),
                    [this](NodeIndex neighbour) { return IsJoinedToOthers(neighbour); });
    for (const NodeIndex neighbour : mNeighbours)
        mReach[neighbour] = 0;
    return isDominated;
}

/// Returns whether light enough edges join the neighbour of the node at hand to all others.
bool DominanceTest::IsJoinedToOthers(NodeIndex neighbour) const
{
    const std::size_t others = mNeighbours.size() - 1;
    if (mNetwork.GetDegree(neighbour) <= others)
        return false;
    std::size_t joined = 0;
    for (HalfEdge half = mNetwork.GetFirst(neighbour); half.IsValid();
         half = mNetwork.GetNext(half)) {
        const std::uint64_t reach = mReach[mNetwork.GetTarget(half)];
        if (reach == 0)
            continue;
        if (mNetwork.GetWeight(half.Edge()) > std::max(reach, mReach[neighbour]))
            return false;
        ++joined;
    }
    return joined == others;
}

} // namespace

std::size_t RemoveDominatedNodes(Network& network)
{
    return DominanceTest(network).Run();
}

} // namespace qe::graph
