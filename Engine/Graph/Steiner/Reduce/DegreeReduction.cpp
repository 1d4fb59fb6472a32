#include "Engine/Graph/Steiner/Reduce/DegreeReduction.h"

#include <vector>

namespace qe::graph {

namespace {

class DegreeReduction
{
public:
    explicit DegreeReduction(Network& network) : mNetwork(network) {}

    void Run();

private:
    void Reduce(std::uint32_t node);
    void Bypass(std::uint32_t node);
    void Note(std::uint32_t node)
    {
        if (mNetwork.GetDegree(node) <= 2)
            mOpen.push_back(node);
    }

    Network& mNetwork;
    std::vector<std::uint32_t> mOpen;
};

void DegreeReduction::Run()
{
    for (std::uint32_t node = mNetwork.GetNodeLimit(); node-- > 0;)
        Note(node);
    while (!mOpen.empty() && mNetwork.GetTerminalCount() > 1) {
        const std::uint32_t node = mOpen.back();
        mOpen.pop_back();
        Reduce(node);
    }
    if (mNetwork.GetTerminalCount() > 1)
        return;
    for (std::uint32_t edge = 0; edge < mNetwork.GetEdgeLimit(); ++edge) {
        if (mNetwork.HasEdge(edge))
            mNetwork.RemoveEdge(edge);
    }
}

void DegreeReduction::Reduce(std::uint32_t node)
{
    const std::uint32_t degree = mNetwork.GetDegree(node);
    if (degree == 1) {
        const std::uint32_t half = mNetwork.GetFirst(node);
        const std::uint32_t target = mNetwork.GetTarget(half);
        if (mNetwork.IsTerminal(node))
            mNetwork.Contract(half);
        else
            mNetwork.RemoveEdge(half / 2);
        Note(target);
    } else if (degree == 2 && !mNetwork.IsTerminal(node)) {
        Bypass(node);
    }
}

void DegreeReduction::Bypass(std::uint32_t node)
{
    const std::uint32_t half1 = mNetwork.GetFirst(node);
    const std::uint32_t half2 = mNetwork.GetNext(half1);
    const std::uint32_t end1 = mNetwork.GetTarget(half1);
    const std::uint32_t end2 = mNetwork.GetTarget(half2);
    const std::uint64_t weight = mNetwork.GetWeight(half1 / 2) + mNetwork.GetWeight(half2 / 2);
    const StrandIndex strand = mNetwork.GetStrands().AddSeries(mNetwork.GetStrand(half1 / 2),
                                                               mNetwork.GetStrand(half2 / 2));
    mNetwork.RemoveEdge(half1 / 2);
    mNetwork.RemoveEdge(half2 / 2);
    mNetwork.MergeEdge(end1, end2, weight, strand);
    Note(end1);
    Note(end2);
}

} // namespace

void ReduceDegrees(Network& network)
{
    DegreeReduction(network).Run();
}

} // namespace qe::graph
