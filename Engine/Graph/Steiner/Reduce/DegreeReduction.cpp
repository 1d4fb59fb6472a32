#include "Engine/Graph/Steiner/Reduce/DegreeReduction.h"

#include <cstdint>
#include <vector>

namespace qe::graph {

namespace {

class DegreeReduction
{
public:
    explicit DegreeReduction(Network& network) : mNetwork(network) {}

    void Run();

private:
    void Reduce(NodeIndex node);
    void Bypass(NodeIndex node);
    void Record(NodeIndex node)
    {
        if (mNetwork.GetDegree(node) <= 2)
            mOpen.push_back(node);
    }

    Network& mNetwork;
    std::vector<NodeIndex> mOpen;
};

void DegreeReduction::Run()
{
    for (std::uint32_t node = mNetwork.GetNodeLimit(); node-- > 0;)
        Record({node});
    while (!mOpen.empty() && mNetwork.GetTerminalCount() > 1) {
        const NodeIndex node = mOpen.back();
        mOpen.pop_back();
        Reduce(node);
    }
    if (mNetwork.GetTerminalCount() > 1)
        return;
    for (const EdgeIndex edge : mNetwork.GetEdgeIndices()) {
        if (mNetwork.HasEdge(edge))
            mNetwork.RemoveEdge(edge);
    }
}

void DegreeReduction::Reduce(NodeIndex node)
{
    const std::uint32_t degree = mNetwork.GetDegree(node);
    if (degree == 1) {
        const HalfEdge half = mNetwork.GetFirst(node);
        const NodeIndex target = mNetwork.GetTarget(half);
        if (mNetwork.IsTerminal(node))
            mNetwork.Contract(half);
        else
            mNetwork.RemoveEdge(half.Edge());
        Record(target);
    } else if (degree == 2 && !mNetwork.IsTerminal(node)) {
        Bypass(node);
    }
}

void DegreeReduction::Bypass(NodeIndex node)
{
    const HalfEdge half1 = mNetwork.GetFirst(node);
    const HalfEdge half2 = mNetwork.GetNext(half1);
    const NodeIndex end1 = mNetwork.GetTarget(half1);
    const NodeIndex end2 = mNetwork.GetTarget(half2);
    const std::uint64_t weight =
        mNetwork.GetWeight(half1.Edge()) + mNetwork.GetWeight(half2.Edge());
    const StrandIndex strand = mNetwork.GetStrands().AddSeries(mNetwork.GetStrand(half1.Edge()),
                                                               mNetwork.GetStrand(half2.Edge()));
    mNetwork.RemoveEdge(half1.Edge());
    mNetwork.RemoveEdge(half2.Edge());
    mNetwork.MergeEdge(end1, end2, weight, strand);
    Record(end1);
    Record(end2);
}

} // namespace

void ReduceDegrees(Network& network)
{
    DegreeReduction(network).Run();
}

} // namespace qe::graph
