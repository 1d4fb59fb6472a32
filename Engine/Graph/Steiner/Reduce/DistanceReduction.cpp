#include "Engine/Graph/Steiner/Reduce/DistanceReduction.h"

#include "Engine/Graph/Core/Dijkstra.h"
#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/Reduce/DegreeReduction.h"
#include "Engine/Graph/Steiner/Reduce/SpecialDistances.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace qe::graph {

namespace {

/// Measures distances around a node of a network that may change between two runs: Dijkstra's
/// algorithm, given up after a few nodes, as paths worth knowing are short.
class NearDistances
{
public:
    explicit NearDistances(const Network& network)
        : mNetwork(network), mSearch(network.GetNodeLimit())
    {}

    /// Measures from the node as far as the given distance, and forgets what was known.
    void Run(NodeIndex source, std::uint64_t most);

    /// Returns the weight of some path to the node, kUnreached when none was found.
    [[nodiscard]] std::uint64_t Get(NodeIndex node) const { return mSearch.GetDistance(node); }

private:
    static constexpr std::size_t kMostSettled = 40;

    const Network& mNetwork;
    DijkstraSearch mSearch;
};

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

/// Removes those of the node's edges to later nodes that weigh more than `getBound` of the other
/// end. Returns the weight of the heaviest one left.
template <typename GetBound>
std::uint64_t RemoveLongEdgesAt(Network& network, NodeIndex node, const GetBound& getBound)
{
    std::uint64_t heaviest = 0;
    for (HalfEdge half = network.GetFirst(node); half.IsValid();) {
        const EdgeIndex edge = half.Edge();
        const NodeIndex target = network.GetTarget(half);
        half = network.GetNext(half);
        if (target < node)
            continue;
        if (getBound(target) < network.GetWeight(edge))
            network.RemoveEdge(edge);
        else
            heaviest = std::max(heaviest, network.GetWeight(edge));
    }
    return heaviest;
}

class DegreeThreeTest
{
public:
    DegreeThreeTest(Network& network, const SpecialDistances& distances)
        : mNetwork(network), mDistances(distances), mNear(network)
    {}

    std::size_t Run();

private:
    static constexpr std::uint32_t kSpokes = 3;

    struct Spoke
    {
        NodeIndex end;
        std::uint64_t weight;
        StrandIndex strand;
    };

    void Measure(NodeIndex node);
    [[nodiscard]] bool IsBranchless() const;
    [[nodiscard]] bool IsPassed(std::uint32_t spoke1, std::uint32_t spoke2) const
    {
        return mSpecial[spoke1][spoke2] >= mSpokes[spoke1].weight + mSpokes[spoke2].weight;
    }
    void Bypass(NodeIndex node);

    Network& mNetwork;
    const SpecialDistances& mDistances;
    NearDistances mNear;
    /// The edges of the node at hand, and the special distances of their other ends.
    std::vector<Spoke> mSpokes;
    std::array<std::array<std::uint64_t, kSpokes>, kSpokes> mSpecial{};
};

std::size_t DegreeThreeTest::Run()
{
    std::size_t count = 0;
    for (const NodeIndex node : mNetwork.GetNodes()) {
        if (mNetwork.IsTerminal(node) || mNetwork.GetDegree(node) != kSpokes)
            continue;
        Measure(node);
        if (!IsBranchless())
            continue;
        Bypass(node);
        ++count;
    }
    return count;
}

void DegreeThreeTest::Measure(NodeIndex node)
{
    mSpokes.clear();
    std::uint64_t heaviest = 0;
    for (HalfEdge half = mNetwork.GetFirst(node); half.IsValid(); half = mNetwork.GetNext(half)) {
        const std::uint64_t weight = mNetwork.GetWeight(half.Edge());
        mSpokes.push_back({mNetwork.GetTarget(half), weight, mNetwork.GetStrand(half.Edge())});
        heaviest = std::max(heaviest, weight);
    }
    for (std::uint32_t left = 0; left + 1 < mSpokes.size(); ++left) {
        mNear.Run(mSpokes[left].end, mSpokes[left].weight + heaviest);
        for (std::uint32_t right = left + 1; right < mSpokes.size(); ++right) {
            mSpecial[left][right] = mSpecial[right][left] =
                std::min(mNear.Get(mSpokes[right].end),
                         mDistances.GetBound(mSpokes[left].end, mSpokes[right].end));
        }
    }
}

bool DegreeThreeTest::IsBranchless() const
{
    const std::uint64_t a = mSpecial[0][1];
    const std::uint64_t b = mSpecial[0][2];
    const std::uint64_t c = mSpecial[1][2];
    const std::uint64_t span = a + b + c - std::max({a, b, c});
    return span < mSpokes[0].weight + mSpokes[1].weight + mSpokes[2].weight;
}

void DegreeThreeTest::Bypass(NodeIndex node)
{
    while (mNetwork.GetFirst(node).IsValid())
        mNetwork.RemoveEdge(mNetwork.GetFirst(node).Edge());
    for (std::uint32_t left = 0; left < mSpokes.size(); ++left) {
        for (std::uint32_t right = left + 1; right < mSpokes.size(); ++right) {
            if (!IsPassed(left, right))
                continue;
            const Spoke& first = mSpokes[left];
            const Spoke& second = mSpokes[right];
            mNetwork.MergeEdge(first.end, second.end, first.weight + second.weight,
                               mNetwork.GetStrands().AddSeries(first.strand, second.strand));
        }
    }
}

/// Returns the half-edge by which every minimum Steiner tree leaves the terminal; an invalid one
/// when none is known.
HalfEdge FindNeeded(const Network& network, const SpecialDistances& distances, NodeIndex terminal)
{
    HalfEdge lightest;
    std::uint64_t weight = kUnreached;
    std::uint64_t nextWeight = kUnreached;
    for (HalfEdge half = network.GetFirst(terminal); half.IsValid(); half = network.GetNext(half)) {
        const std::uint64_t other = network.GetWeight(half.Edge());
        if (other < weight) {
            nextWeight = weight;
            weight = other;
            lightest = half;
        } else if (other < nextWeight) {
            nextWeight = other;
        }
    }
    if (nextWeight == kUnreached)
        return {};
    for (const auto& near : distances.GetNearest(network.GetTarget(lightest))) {
        if (near.terminal != terminal)
            return weight + near.distance < nextWeight ? lightest : HalfEdge{};
    }
    return {};
}

} // namespace

std::size_t RemoveLongEdges(Network& network, const SpecialDistances& distances)
{
    NearDistances near(network);
    const std::uint32_t edgesBefore = network.GetEdgeCount();
    for (const NodeIndex node : network.GetNodes()) {
        const std::uint64_t heaviest = RemoveLongEdgesAt(
            network, node, [&](NodeIndex target) { return distances.GetBound(node, target); });
        if (heaviest < 2)
            continue;
        near.Run(node, heaviest - 1);
        RemoveLongEdgesAt(network, node, [&](NodeIndex target) { return near.Get(target); });
    }
    return edgesBefore - network.GetEdgeCount();
}

std::size_t BypassDegreeThreeNodes(Network& network, const SpecialDistances& distances)
{
    return DegreeThreeTest(network, distances).Run();
}

std::size_t ContractNearestVertices(Network& network, const SpecialDistances& distances)
{
    // What was measured before a contraction says nothing of its ends.
    IndexedVector<NodeIndex, std::uint8_t> isTouched(network.GetNodeLimit(), 0);
    std::size_t count = 0;
    for (const NodeIndex node : network.GetNodes()) {
        if (!network.IsTerminal(node) || isTouched[node] != 0 || network.GetTerminalCount() == 1)
            continue;
        const HalfEdge half = FindNeeded(network, distances, node);
        if (!half.IsValid() || isTouched[network.GetTarget(half)] != 0)
            continue;
        isTouched[node] = 1;
        isTouched[network.GetTarget(half)] = 1;
        network.Contract(half);
        ++count;
    }
    return count;
}

void ReduceByDistances(Network& network, Budget& budget)
{
    // A round that takes out less than this share of the edges is the last.
    constexpr std::size_t kWorthwhileShare = 50;
    // What a round looks at, about: for each node those near it, for each edge its ends and theirs.
    constexpr std::uint64_t kStepsPerNode = 100;
    constexpr std::uint64_t kStepsPerEdge = 20;
    ReduceDegrees(network);
    for (bool isWorthwhile = true; isWorthwhile && !budget.IsExhausted();) {
        if (network.GetTerminalCount() <= 1)
            return;
        const std::uint32_t edgesBefore = network.GetEdgeCount();
        budget.Spend(kStepsPerNode * network.GetNodeLimit() + kStepsPerEdge * edgesBefore);
        // All three speak of the minimum Steiner trees of what was measured, so they fit together.
        const SpecialDistances distances(network);
        RemoveLongEdges(network, distances);
        BypassDegreeThreeNodes(network, distances);
        ContractNearestVertices(network, distances);
        ReduceDegrees(network);
        isWorthwhile = kWorthwhileShare * (edgesBefore - network.GetEdgeCount()) > edgesBefore;
    }
}

} // namespace qe::graph
