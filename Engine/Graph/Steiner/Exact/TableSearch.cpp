#include "Engine/Graph/Steiner/Exact/TableSearch.h"

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Network/Budget.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace qe::graph {

namespace {

/// With more terminals the table would not fit.
constexpr std::size_t kMostTerminals = 20;

} // namespace

TableSearch::Cost TableSearch::GetCost(const FlatNetwork& network)
{
    constexpr std::uint64_t kTooMuch = std::numeric_limits<std::uint64_t>::max();
    if (network.GetTerminals().size() > kMostTerminals)
        return {.steps = kTooMuch, .places = kTooMuch};
    std::uint64_t joins = network.GetNodeCount() / 2 + 1;
    std::uint64_t sets = 1;
    for (std::size_t bit = 1; bit < network.GetTerminals().size(); ++bit) {
        joins *= 3;
        sets *= 2;
    }
    const std::uint64_t places = sets * network.GetNodeCount();
    return {.steps = joins + places + sets * network.GetHalfCount(), .places = places};
}

TableSearch::TableSearch(const FlatNetwork& network, Budget& budget)
    : mNetwork(network),
      mBudget(budget),
      mSetLimit(Set{1} << (network.GetTerminals().size() - 1)),
      mBits(network.GetNodeCount(), 0),
      mWeights(std::size_t{network.GetNodeCount()} * mSetLimit, kUnreached),
      mSearch(network.GetNodeCount())
{
    Set bit = 1;
    for (const NodeIndex terminal : network.GetTerminals()) {
        mBits[terminal] = bit;
        bit *= 2;
    }
    mBudget.Charge(mWeights.size() * sizeof(std::uint64_t));
}

TableSearch::~TableSearch()
{
    mBudget.Release(mWeights.size() * sizeof(std::uint64_t));
}

bool TableSearch::Run()
{
    for (const NodeIndex terminal :
         mNetwork.GetTerminals().first(mNetwork.GetTerminals().size() - 1))
        GetWeights(terminal)[mBits[terminal]] = 0;
    std::vector<std::vector<Set>> setsBySize(mNetwork.GetTerminals().size());
    for (Set set = 1; set < mSetLimit; ++set)
        setsBySize[static_cast<std::size_t>(std::popcount(set))].push_back(set);
    for (const std::vector<Set>& sets : setsBySize) {
        Join(sets);
        for (const Set set : sets) {
            if (mBudget.IsExhausted())
                return false;
            Grow(set);
        }
    }
    return true;
}

/// Joins at every node the parts of each of the sets, which are all of one size.
void TableSearch::Join(std::span<const Set> sets)
{
    for (const NodeIndex node : mNetwork.GetNodes()) {
        const std::span<std::uint64_t> weights = GetWeights(node);
        for (const Set set : sets) {
            const Set others = set & (set - 1);
            std::uint64_t least = weights[set];
            for (Set rest = others; rest != 0; rest = (rest - 1) & others)
                least = std::min(least, weights[rest] + weights[set ^ rest]);
            weights[set] = least;
        }
    }
}

/// Grows what was joined along the edges, as far as the nearest end.
void TableSearch::Grow(Set set)
{
    std::uint64_t most = kUnreached - 1;
    for (const NodeIndex terminal : mNetwork.GetTerminals()) {
        if (IsEnd(terminal, set))
            most = std::min(most, GetWeights(terminal)[set]);
    }
    mSearch.Reset();
    for (const NodeIndex node : mNetwork.GetNodes()) {
        std::uint64_t& weight = GetWeights(node)[set];
        if (weight <= most)
            mSearch.Reach(node, weight);
        weight = kUnreached;
    }
    std::uint64_t steps = std::uint64_t{mNetwork.GetNodeCount()}
                          << static_cast<unsigned>(std::popcount(set) - 1);
    mSearch.Run([&](NodeIndex node, std::uint64_t distance) {
        if (distance > most)
            return DijkstraSearch::EStep::Stop;
        GetWeights(node)[set] = distance;
        if (IsEnd(node, set)) {
            most = distance;
            return DijkstraSearch::EStep::Continue;
        }
        steps += mNetwork.GetArcs(node).size();
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(node))
            mSearch.Reach(arc.target, distance + arc.weight);
        return DijkstraSearch::EStep::Continue;
    });
    mBudget.Spend(steps);
}

} // namespace qe::graph
