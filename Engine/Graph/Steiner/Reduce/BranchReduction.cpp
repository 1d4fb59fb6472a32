#include "Engine/Graph/Steiner/Reduce/BranchReduction.h"

#include "Engine/Graph/Steiner/Network/Network.h"
#include "Engine/Graph/Steiner/Reduce/NearDistances.h"
#include "Engine/Graph/Steiner/Reduce/SpecialDistances.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace qe::graph {

namespace {

constexpr std::uint32_t Spokes = 3;

class BranchReduction
{
public:
    BranchReduction(Network& network, const SpecialDistances& distances)
        : mNetwork(network), mDistances(distances), mNear(network)
    {}

    std::size_t Run();

private:
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
    std::array<std::array<std::uint64_t, Spokes>, Spokes> mSpecial{};
};

std::size_t BranchReduction::Run()
{
    std::size_t count = 0;
    for (const NodeIndex node : mNetwork.GetNodes()) {
        if (mNetwork.IsTerminal(node) || mNetwork.GetDegree(node) != Spokes)
            continue;
        Measure(node);
        if (!IsBranchless())
            continue;
        Bypass(node);
        ++count;
    }
    return count;
}

void BranchReduction::Measure(NodeIndex node)
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

bool BranchReduction::IsBranchless() const
{
    const std::uint64_t a = mSpecial[0][1];
    const std::uint64_t b = mSpecial[0][2];
    const std::uint64_t c = mSpecial[1][2];
    const std::uint64_t span = a + b + c - std::max({a, b, c});
    return span < mSpokes[0].weight + mSpokes[1].weight + mSpokes[2].weight;
}

void BranchReduction::Bypass(NodeIndex node)
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

} // namespace

std::size_t BypassBranchless(Network& network, const SpecialDistances& distances)
{
    return BranchReduction(network, distances).Run();
}

} // namespace qe::graph
