#include "Engine/Graph/Steiner/BlockSearch.h"

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Bound/CompletionBound.h"
#include "Engine/Graph/Steiner/Exact/DijkstraSteinerSearch.h"
#include "Engine/Graph/Steiner/Exact/TableSearch.h"
#include "Engine/Graph/Steiner/List/DerivationBuilder.h"
#include "Engine/Graph/Steiner/List/DerivationWalk.h"
#include "Engine/Graph/Steiner/List/LabelDerivations.h"
#include "Engine/Graph/Steiner/List/TableDerivations.h"
#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/TerminalSet.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>

namespace qe::graph {

namespace {

/// With more terminals a block is not searched exactly.
constexpr std::size_t kMostTerminals = TerminalSet<8>::kCapacity;

/// Calls with the number of words that so many terminals take, when they are not too many.
template <typename Call>
void WithWords(std::size_t terminals, const Call& call)
{
    if (terminals <= TerminalSet<1>::kCapacity)
        call(std::integral_constant<std::size_t, 1>());
    else if (terminals <= TerminalSet<2>::kCapacity)
        call(std::integral_constant<std::size_t, 2>());
    else if (terminals <= TerminalSet<4>::kCapacity)
        call(std::integral_constant<std::size_t, 4>());
    else if (terminals <= kMostTerminals)
        call(std::integral_constant<std::size_t, 8>());
}

} // namespace

BlockSearch::BlockSearch(Network& block, std::uint64_t knownWeight, Budget& budget)
    : mBlock(block), mBudget(budget), mNetwork(block), mBounds(mNetwork, knownWeight, budget)
{}

std::size_t BlockSearch::PruneQuickly(std::size_t round)
{
    const std::span<const NodeIndex> terminals = mNetwork.GetTerminals();
    mBounds.Ascend(terminals[round % terminals.size()], {});
    return RemoveExcluded(mBlock, mNetwork, mBounds.GetStatuses());
}

std::size_t BlockSearch::PruneThoroughly()
{
    const std::span<const NodeIndex> terminals = mNetwork.GetTerminals();
    mBounds.GrowTree(terminals.front());
    const NodeIndex hub = *std::max_element(
        terminals.begin(), terminals.end(), [this](NodeIndex left, NodeIndex right) {
            return mNetwork.GetArcs(left).size() < mNetwork.GetArcs(right).size();
        });
    mBounds.Ascend(hub, {});
    const std::size_t roots = std::min(tuning::kAscentRoots, terminals.size());
    for (std::size_t root = 0; root < roots && !mBudget.IsExhausted(); ++root)
        mBounds.Ascend(terminals[root * terminals.size() / roots], {});
    mBounds.ImproveTree();
    for (std::size_t root = 0; root < roots && !mBudget.IsExhausted(); ++root)
        mBounds.Ascend(terminals[root * terminals.size() / roots], mBounds.GetTree().edges);
    if (!mBudget.IsExhausted())
        Dive();
    return RemoveExcluded(mBlock, mNetwork, mBounds.GetStatuses());
}

/// Looks for a lighter tree by an exact search that is made to run ahead.
void BlockSearch::Dive()
{
    WithWords(mNetwork.GetTerminals().size(), [this](auto words) { DiveWith<words>(); });
}

/// Dives again from each better tree, as that narrows the gap that the next one is made to jump.
void BlockSearch::DiveWhileItHelps()
{
    for (std::uint64_t before = kUnreached; mBounds.GetKnownWeight() < before;) {
        if (mBudget.IsExhausted())
            return;
        before = mBounds.GetKnownWeight();
        Dive();
    }
}

template <std::size_t Words>
void BlockSearch::DiveWith()
{
    const std::uint64_t knownWeight = mBounds.GetKnownWeight();
    if (knownWeight <= mBounds.GetLowerBound())
        return;
    std::vector<CompletionBound<Words>> bounds;
    AppendExchangedBounds(knownWeight, bounds);
    mBounds.AppendBounds(tuning::kDiveAscents, knownWeight, bounds);
    DijkstraSteinerSearch<Words> search(mNetwork, mBounds.GetRoot(), bounds, knownWeight, mBudget);
    const std::uint64_t lowerBound = mBounds.GetLowerBound();
    const double gap = static_cast<double>(knownWeight - lowerBound);
    const double inflation = tuning::kDiveInflation * gap / static_cast<double>(lowerBound);
    if (search.Dive(inflation, tuning::kDiveLabels) !=
        DijkstraSteinerSearch<Words>::EOutcome::Solved)
        return;
    std::vector<EdgeIndex> edges;
    LabelDerivations<Words>(search).AppendOneTree(edges);
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    mBounds.RegrowTree(edges);
}

bool BlockSearch::IsWorthContracting() const
{
    const EdgeStatuses& statuses = mBounds.GetStatuses();
    const auto forced = std::count(statuses.begin(), statuses.end(), EEdgeStatus::Forced);
    return tuning::kContractedShare * static_cast<std::size_t>(forced) >
           mNetwork.GetTerminals().size();
}

void BlockSearch::ContractForced()
{
    graph::ContractForced(mBlock, mNetwork, mBounds.GetStatuses());
}

std::optional<BlockSearch::Outcome> BlockSearch::SearchQuickly(TreeFamily& family)
{
    return SearchWithin(family, tuning::kQuickEffort, mBounds.GetKnownWeight());
}

std::optional<BlockSearch::Outcome> BlockSearch::SearchByTable(TreeFamily& family,
                                                               std::uint64_t mostSteps)
{
    const TableSearch::Cost cost = TableSearch::GetCost(mNetwork);
    if (cost.steps > mostSteps || cost.places > tuning::kTablePlaces ||
        !mBudget.CanAfford(cost.steps, TableDerivations::kBytesPerPlace * cost.places))
        return std::nullopt;
    TableSearch search(mNetwork, mBudget);
    if (!search.Run())
        return std::nullopt;
    TableDerivations derivations(search);
    return AddTrees(family, derivations);
}

std::optional<BlockSearch::Outcome> BlockSearch::SearchWithMoreEffort(TreeFamily& family)
{
    return SearchWithin(family, tuning::kMoreEffort, mBounds.GetKnownWeight());
}

BlockSearch::Outcome BlockSearch::Search(TreeFamily& family)
{
    std::optional<Outcome> outcome =
        CutExchange::IsFine(mNetwork) ? SearchFinely(family) : SearchTightly(family);
    if (!outcome)
        outcome = SearchWithin(family, tuning::kLastEfforts, mBounds.GetKnownWeight());
    if (outcome)
        return *outcome;
    if (mNetwork.GetTerminals().size() > kMostTerminals)
        mBudget.Hit(ELimit::Terminals);
    if (mBounds.GetTree().weight == kUnreached)
        mBounds.GrowTree(mNetwork.GetTerminals().front());
    mBounds.GrowManyTrees();
    const SteinerTree& tree = mBounds.GetTree();
    AddTree(family, tree.edges);
    return {.weight = tree.weight,
            .lowerBound = std::min(tree.weight, mBounds.GetLowerBound()),
            .hasAllTrees = false};
}

/// Improves the bound by exchanges of cuts and searches with it, for longer and longer by turns.
/// Returns nothing where exchanges close little of the gap: there it takes many different bounds.
std::optional<BlockSearch::Outcome> BlockSearch::SearchTightly(TreeFamily& family)
{
    const std::uint64_t knownWeight = mBounds.GetKnownWeight();
    const std::uint64_t gap = knownWeight - mBounds.GetLowerBound();
    if (gap == 0)
        return std::nullopt;
    CutExchange& exchange =
        mExchanges.emplace_back(mNetwork, mBounds.GetRoot(), mBounds.GetTree().edges, mBudget);
    std::optional<Outcome> outcome;
    bool isStuck = false;
    for (std::uint64_t work = tuning::kFirstExchangeWork; !outcome && !isStuck; work *= 2) {
        isStuck = exchange.Improve(knownWeight, work) == CutExchange::EOutcome::Stuck;
        const std::uint64_t bound = exchange.GetAscent().GetBoundWeight();
        if (tuning::kExchangeWorth * (knownWeight - bound) > (tuning::kExchangeWorth - 1) * gap)
            continue;
        mBounds.RaiseLowerBound(bound);
        outcome = SearchUpwards(family, isStuck ? tuning::kNoEnd : work / tuning::kWorkPerLabel);
    }
    if (!outcome)
        mExchanges.clear();
    return outcome;
}

/// Searches with bounds from exchanges of cuts that are rooted at several terminals, for longer and
/// longer by turns. Where weights are small, the least step of the limit is a large part of the
/// gap, so that each limit is worth bounds that are as tight as they get.
std::optional<BlockSearch::Outcome> BlockSearch::SearchFinely(TreeFamily& family)
{
    if (mBounds.GetKnownWeight() == mBounds.GetLowerBound())
        return std::nullopt;
    for (const NodeIndex root : mBounds.ChooseRoots(tuning::kFineExchanges))
        mExchanges.emplace_back(mNetwork, root, mBounds.GetTree().edges, mBudget);
    std::optional<Outcome> outcome;
    for (const tuning::FineEffort& effort : tuning::kFineEfforts) {
        for (CutExchange& exchange : mExchanges) {
            exchange.ImproveToTheEnd(mBounds.GetKnownWeight(), effort.work);
            mBounds.RaiseLowerBound(exchange.GetAscent().GetBoundWeight());
        }
        DiveWhileItHelps();
        outcome = SearchEachLimit(family, effort.mostSettled);
        if (outcome || mBudget.IsExhausted())
            break;
    }
    mExchanges.clear();
    return outcome;
}

/// Searches for trees of the weight of the lower bound, and of the next one where there are none.
std::optional<BlockSearch::Outcome> BlockSearch::SearchEachLimit(TreeFamily& family,
                                                                 std::size_t mostSettled)
{
    const std::array efforts{tuning::SearchEffort{.ascents = 0, .mostSettled = mostSettled}};
    std::optional<Outcome> outcome;
    for (bool isGoingUp = true; isGoingUp && !outcome && !mBudget.IsExhausted();) {
        const std::uint64_t limit = mBounds.GetLowerBound();
        outcome = SearchWithin(family, efforts, limit);
        isGoingUp = mBounds.GetLowerBound() > limit;
    }
    return outcome;
}

/// Searches for trees up to a limit that starts near the lower bound, and proves a better one
/// where there is none. So what lies above the optimum costs little, however bad the tree known.
std::optional<BlockSearch::Outcome> BlockSearch::SearchUpwards(TreeFamily& family,
                                                               std::size_t mostSettled)
{
    const std::array efforts{
        tuning::SearchEffort{.ascents = tuning::kUpwardAscents, .mostSettled = mostSettled}};
    const std::uint64_t knownWeight = mBounds.GetKnownWeight();
    std::uint64_t step = (knownWeight - mBounds.GetLowerBound()) / tuning::kFirstStep + 1;
    for (bool isGoingUp = true; isGoingUp && !mBudget.IsExhausted(); step *= 2) {
        const std::uint64_t limit = std::min(knownWeight, mBounds.GetLowerBound() + step);
        std::optional<Outcome> outcome = SearchWithin(family, efforts, limit);
        if (outcome)
            return outcome;
        isGoingUp = mBounds.GetLowerBound() > limit;
    }
    return std::nullopt;
}

/// Returns nothing when no tree within the limit was found: because there is none, which the
/// lower bound then says, or because efforts or budget ran out.
std::optional<BlockSearch::Outcome> BlockSearch::SearchWithin(TreeFamily& family, Efforts efforts,
                                                              std::uint64_t limit)
{
    std::optional<Outcome> outcome;
    WithWords(mNetwork.GetTerminals().size(),
              [&](auto words) { outcome = SearchWith<words>(family, efforts, limit); });
    return outcome;
}

template <std::size_t Words>
std::optional<BlockSearch::Outcome> BlockSearch::SearchWith(TreeFamily& family, Efforts efforts,
                                                            std::uint64_t limit)
{
    std::vector<CompletionBound<Words>> bounds;
    AppendExchangedBounds(limit, bounds);
    std::optional<DijkstraSteinerSearch<Words>> search;
    auto outcome = DijkstraSteinerSearch<Words>::EOutcome::Paused;
    for (const tuning::SearchEffort& effort : efforts) {
        if (outcome != DijkstraSteinerSearch<Words>::EOutcome::Paused)
            break;
        mBounds.AppendBounds(effort.ascents, limit, bounds);
        search.emplace(mNetwork, mBounds.GetRoot(), bounds, limit, mBudget);
        outcome = search->Run(effort.mostSettled);
        mBounds.RaiseLowerBound(search->GetBound());
    }
    if (outcome != DijkstraSteinerSearch<Words>::EOutcome::Solved)
        return std::nullopt;
    if (search->HasTree()) {
        LabelDerivations<Words> derivations(*search);
        return AddTrees(family, derivations);
    }
    mBounds.RaiseLowerBound(limit + 1);
    return std::nullopt;
}

/// Adds all trees that are derived to the family; as many as are wanted, one by one, where there
/// are too many derivations to gather.
BlockSearch::Outcome BlockSearch::AddTrees(TreeFamily& family, Derivations& derivations) const
{
    std::vector<StrandIndex> strands;
    for (const EdgeIndex edge : mNetwork.GetEdges())
        strands.push_back(mBlock.GetStrand(mNetwork.GetNetworkEdge(edge)));
    const std::uint64_t weight = derivations.GetRank(derivations.GetWhole()).weight;
    if (mBudget.GetAnswer() == EAnswer::AllTrees) {
        DerivationGraph graph(mBlock.GetStrands());
        DerivationBuilder builder(derivations, strands, mBudget);
        if (builder.Build(graph) == DerivationBuilder::EOutcome::Complete) {
            mBudget.Charge(graph.GetBytes());
            family.AddDerivations(std::move(graph), builder.GetWhole());
            return {.weight = weight, .lowerBound = weight, .hasAllTrees = true};
        }
    }
    ListTrees(family, DerivationWalk(derivations, mBlock.GetStrands(), strands));
    return {.weight = weight, .lowerBound = weight, .hasAllTrees = false};
}

/// Adds the trees of the walk to the family until there are enough, or the budget is overdrawn.
void BlockSearch::ListTrees(TreeFamily& family, DerivationWalk walk) const
{
    ListedTrees trees;
    std::uint64_t spent = 0;
    std::size_t charged = 0;
    while ((trees.GetCount() == 0 || !mBudget.IsOverdrawn()) &&
           trees.GetCount() < family.GetMostNumbered() && walk.MoveNext()) {
        trees.Add(walk.GetTree());
        mBudget.Spend(walk.GetSteps() - std::exchange(spent, walk.GetSteps()));
        mBudget.Charge(trees.GetBytes() - std::exchange(charged, trees.GetBytes()));
    }
    const std::uint64_t count = trees.GetCount();
    family.AddListed(std::move(trees), count);
}

void BlockSearch::AddTree(TreeFamily& family, std::span<const EdgeIndex> edges) const
{
    for (const EdgeIndex edge : edges)
        family.AddStrand(mBlock.GetStrand(mNetwork.GetNetworkEdge(edge)));
}

/// Appends the bounds that cuts were exchanged for, if any.
template <std::size_t Words>
void BlockSearch::AppendExchangedBounds(std::uint64_t limit,
                                        std::vector<CompletionBound<Words>>& bounds) const
{
    for (const CutExchange& exchange : mExchanges) {
        CompletionBound<Words>& bound = bounds.emplace_back(mNetwork, mBounds.GetRoot());
        exchange.Report(bound);
        bound.Finish(exchange.GetAscent(), limit);
    }
}

} // namespace qe::graph
