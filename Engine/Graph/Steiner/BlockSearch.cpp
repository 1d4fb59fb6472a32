#include "Engine/Graph/Steiner/BlockSearch.h"

#include "Engine/Graph/Core/Distance.h"
#include "Engine/Graph/Steiner/Bound/CompletionBound.h"
#include "Engine/Graph/Steiner/Exact/DijkstraSteinerSearch.h"
#include "Engine/Graph/Steiner/List/DerivationBuilder.h"
#include "Engine/Graph/Steiner/Network/Budget.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

namespace qe::graph {

namespace {

/// Number of terminals that trees are grown from and ascents are rooted at.
constexpr std::size_t Starts = 4;

/// One terminal in so many must have a forced edge for these to be contracted.
constexpr std::size_t ContractedShare = 10;

/// The first of these is tried before the block is bounded thoroughly.
constexpr std::array Efforts{BlockSearch::Effort{2, 2000}, BlockSearch::Effort{8, 30000}};

/// Bounded by what the effort before was, and by more.
constexpr std::array LastEfforts{BlockSearch::Effort{8, 0},
                                 BlockSearch::Effort{32, std::numeric_limits<std::size_t>::max()}};

/// After how much work a local search is cut short, as growing trees counts it.
constexpr std::uint64_t LocalSearchWork = 100'000'000;

/// How much work goes into exchanges of cuts before the first search that they are to bound, and
/// how much of it is worth one settled label.
constexpr std::uint64_t FirstExchangeWork = 20'000'000;
constexpr std::uint64_t WorkPerLabel = 400;

/// One part in so many of the gap has to be closed by exchanges for them to be of use.
constexpr std::uint64_t ExchangeWorth = 4;

/// When the bound is tight, by one part in how many of the gap the search goes up at first, and
/// by how many ascents it is bounded.
constexpr std::uint64_t FirstStep = 8;
constexpr std::size_t UpwardAscents = 4;

/// When the search is given up, from how many terminals trees are grown and improved, and the
/// share of its time after which that is cut short.
constexpr std::size_t ManyStarts = 64;
constexpr double ManyStartsShare = 1.05;

/// How the search for a light tree is made to run ahead: by how many ascents it is bounded, how
/// much of the gap between the bounds is added to them, and after how many labels it is given up.
constexpr std::size_t DiveAscents = 4;
constexpr double DiveInflation = 0.8;
constexpr std::size_t DiveLabels = 30000;

/// Calls with the number of words that so many terminals take, when they are not too many.
template <typename Call>
void WithWords(std::size_t terminals, const Call& call)
{
    if (terminals <= TerminalSet<1>::Capacity)
        call(std::integral_constant<std::size_t, 1>());
    else if (terminals <= TerminalSet<2>::Capacity)
        call(std::integral_constant<std::size_t, 2>());
    else if (terminals <= TerminalSet<4>::Capacity)
        call(std::integral_constant<std::size_t, 4>());
    else if (terminals <= TerminalSet<8>::Capacity)
        call(std::integral_constant<std::size_t, 8>());
}

} // namespace

BlockSearch::BlockSearch(Network& block, std::uint64_t knownWeight, Budget& budget)
    : mBlock(block),
      mBudget(budget),
      mNetwork(block),
      mGrower(mNetwork),
      mAscent(mNetwork),
      mKnownWeight(knownWeight),
      mBestRoot(mNetwork.GetTerminals().front()),
      mVerdicts{EdgeMarks(mNetwork.GetEdgeCount()), EdgeMarks(mNetwork.GetEdgeCount())}
{
    mTree.weight = kUnreached;
}

void BlockSearch::FindTree(NodeIndex start, const EdgeMarks& isUsable)
{
    SteinerTree tree = mGrower.Grow(start, isUsable);
    if (tree.weight < mTree.weight)
        mTree = std::move(tree);
    mKnownWeight = std::min(mKnownWeight, mTree.weight);
}

void BlockSearch::ImproveTree(SteinerTree& tree)
{
    const std::uint64_t end = mGrower.GetWork() + LocalSearchWork;
    LocalSearch(mNetwork, mGrower).Improve(tree, [this, end] {
        return mGrower.GetWork() > end || mBudget.IsExhausted();
    });
}

/// Bounds the optimum from below with the given root, guided or not, and marks what the bound
/// excludes.
void BlockSearch::Ascend(NodeIndex root, std::span<const EdgeIndex> guide)
{
    mAscent.Run(root, guide, mBudget);
    // At the root branches are joined most cheaply, so it had better be where many meet.
    const auto getDegree = [this](NodeIndex node) { return mNetwork.GetArcs(node).size(); };
    if (std::pair(mAscent.GetBound(), getDegree(root)) >
        std::pair(mLowerBound, getDegree(mBestRoot))) {
        mLowerBound = mAscent.GetBound();
        mBestRoot = root;
    }
    if (!mBudget.IsExhausted())
        FindTreeAlong(mAscent);
    ClassifyEdges(mNetwork, mAscent, mKnownWeight, mVerdicts);
}

/// Bounds the optimum from above by a tree grown along edges that the ascent has used up.
void BlockSearch::FindTreeAlong(const DualAscent& ascent)
{
    EdgeMarks isUsable(mNetwork.GetEdgeCount());
    for (const EdgeIndex edge : mNetwork.GetEdges())
        isUsable[edge] = ascent.GetReduced(HalfEdge::Forward(edge)) == 0 ||
                         ascent.GetReduced(HalfEdge::Backward(edge)) == 0;
    FindTree(ascent.GetRoot(), isUsable);
}

/// Answers the best root and others spread over the terminals.
std::vector<NodeIndex> BlockSearch::ChooseRoots(std::size_t most) const
{
    const std::span<const NodeIndex> terminals = mNetwork.GetTerminals();
    std::vector<NodeIndex> roots{mBestRoot};
    const std::size_t count = std::min(most, terminals.size());
    for (std::size_t place = 0; place < count && roots.size() < count; ++place) {
        const NodeIndex root = terminals[place * terminals.size() / count];
        if (root != mBestRoot)
            roots.push_back(root);
    }
    return roots;
}

std::size_t BlockSearch::PruneQuickly(std::size_t round)
{
    const std::span<const NodeIndex> terminals = mNetwork.GetTerminals();
    Ascend(terminals[round % terminals.size()], {});
    return RemoveExcluded(mBlock, mNetwork, mVerdicts);
}

std::size_t BlockSearch::PruneThoroughly()
{
    const std::span<const NodeIndex> terminals = mNetwork.GetTerminals();
    FindTree(terminals.front(), {});
    const NodeIndex hub = *std::max_element(
        terminals.begin(), terminals.end(), [this](NodeIndex left, NodeIndex right) {
            return mNetwork.GetArcs(left).size() < mNetwork.GetArcs(right).size();
        });
    Ascend(hub, {});
    const std::size_t starts = std::min(Starts, terminals.size());
    for (std::size_t start = 0; start < starts && !mBudget.IsExhausted(); ++start)
        Ascend(terminals[start * terminals.size() / starts], {});
    ImproveTree(mTree);
    mKnownWeight = std::min(mKnownWeight, mTree.weight);
    for (std::size_t start = 0; start < starts && !mBudget.IsExhausted(); ++start) {
        const std::vector<EdgeIndex> guide = mTree.edges;
        Ascend(terminals[start * terminals.size() / starts], guide);
    }
    if (!mBudget.IsExhausted())
        WithWords(terminals.size(), [this](auto words) { Dive<words>(); });
    return RemoveExcluded(mBlock, mNetwork, mVerdicts);
}

bool BlockSearch::IsWorthContracting() const
{
    const auto forced = std::count(mVerdicts.isForced.begin(), mVerdicts.isForced.end(), 1);
    return ContractedShare * static_cast<std::size_t>(forced) > mNetwork.GetTerminals().size();
}

void BlockSearch::ContractForced()
{
    graph::ContractForced(mBlock, mNetwork, mVerdicts);
}

std::optional<BlockSearch::Outcome> BlockSearch::SearchQuickly(TreeFamily& family)
{
    return SearchWithin(family, std::span(Efforts).first(1), mKnownWeight);
}

std::optional<BlockSearch::Outcome> BlockSearch::SearchWithMoreEffort(TreeFamily& family)
{
    return SearchWithin(family, std::span(Efforts).subspan(1), mKnownWeight);
}

/// Grows trees from many terminals and improves each by itself.
void BlockSearch::FindTreeFromManyStarts()
{
    const std::span<const NodeIndex> terminals = mNetwork.GetTerminals();
    const std::size_t starts = std::min(ManyStarts, terminals.size());
    LocalSearch localSearch(mNetwork, mGrower);
    for (std::size_t start = 0; start < starts && mTree.weight > mLowerBound; ++start) {
        if (mBudget.IsSpent(ManyStartsShare))
            return;
        SteinerTree tree = mGrower.Grow(terminals[start * terminals.size() / starts], {});
        localSearch.Improve(tree, [this] { return mBudget.IsSpent(ManyStartsShare); });
        if (tree.weight < mTree.weight)
            mTree = std::move(tree);
        mKnownWeight = std::min(mKnownWeight, mTree.weight);
    }
}

BlockSearch::Outcome BlockSearch::Search(TreeFamily& family)
{
    std::optional<Outcome> outcome = SearchTightly(family);
    if (!outcome)
        outcome = SearchWithin(family, LastEfforts, mKnownWeight);
    if (outcome)
        return *outcome;
    if (mTree.weight == kUnreached)
        FindTree(mNetwork.GetTerminals().front(), {});
    FindTreeFromManyStarts();
    return AnswerTree(family, mTree.edges, mTree.weight, mLowerBound);
}

/// Improves the bound by exchanges of cuts and searches with it, for longer and longer by turns.
/// Answers nothing where exchanges close little of the gap: there it takes many different bounds.
std::optional<BlockSearch::Outcome> BlockSearch::SearchTightly(TreeFamily& family)
{
    const std::uint64_t gap = mKnownWeight - mLowerBound;
    if (gap == 0)
        return std::nullopt;
    mExchange.emplace(mNetwork, mBestRoot, mTree.edges, mBudget);
    std::optional<Outcome> outcome;
    bool isStuck = false;
    for (std::uint64_t work = FirstExchangeWork; !outcome && !isStuck; work *= 2) {
        isStuck = mExchange->Improve(mKnownWeight, work) == CutExchange::EOutcome::Stuck;
        const std::uint64_t bound = mExchange->GetAscent().GetBound();
        if (ExchangeWorth * (mKnownWeight - bound) > (ExchangeWorth - 1) * gap)
            continue;
        mLowerBound = std::max(mLowerBound, bound);
        constexpr std::size_t NoEnd = std::numeric_limits<std::size_t>::max();
        outcome = SearchUpwards(family, isStuck ? NoEnd : work / WorkPerLabel);
    }
    if (!outcome)
        mExchange.reset();
    return outcome;
}

/// Searches for trees up to a limit that starts near the lower bound, and proves a better one
/// where there is none. So what lies above the optimum costs little, however bad the tree known.
std::optional<BlockSearch::Outcome> BlockSearch::SearchUpwards(TreeFamily& family,
                                                               std::size_t mostSettled)
{
    const std::array efforts{Effort{UpwardAscents, mostSettled}};
    std::uint64_t step = (mKnownWeight - mLowerBound) / FirstStep + 1;
    for (bool isGoingUp = true; isGoingUp && !mBudget.IsExhausted(); step *= 2) {
        const std::uint64_t limit = std::min(mKnownWeight, mLowerBound + step);
        std::optional<Outcome> outcome = SearchWithin(family, efforts, limit);
        if (outcome)
            return outcome;
        isGoingUp = mLowerBound > limit;
    }
    return std::nullopt;
}

/// Answers nothing when no tree within the limit was found: because there is none, which the
/// lower bound then says, or because efforts or budget ran out.
std::optional<BlockSearch::Outcome>
BlockSearch::SearchWithin(TreeFamily& family, std::span<const Effort> efforts, std::uint64_t limit)
{
    std::optional<Outcome> outcome;
    WithWords(mNetwork.GetTerminals().size(),
              [&](auto words) { outcome = SearchWith<words>(family, efforts, limit); });
    return outcome;
}

/// Looks for a lighter tree by an exact search that is made to run ahead.
template <std::size_t Words>
void BlockSearch::Dive()
{
    if (mKnownWeight <= mLowerBound)
        return;
    std::vector<CompletionBound<Words>> bounds;
    AddBounds(DiveAscents, mKnownWeight, bounds);
    DijkstraSteinerSearch<Words> search(mNetwork, mBestRoot, bounds, mKnownWeight, mBudget);
    const double gap = static_cast<double>(mKnownWeight - mLowerBound);
    const double inflation = DiveInflation * gap / static_cast<double>(mLowerBound);
    if (search.Dive(inflation, DiveLabels) != DijkstraSteinerSearch<Words>::EOutcome::Solved)
        return;
    std::vector<EdgeIndex> edges;
    DerivationBuilder<Words>(search, {}, mBudget).AppendOneTree(edges);
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    SteinerTree tree = mGrower.Regrow(edges, mBestRoot);
    ImproveTree(tree);
    if (tree.weight >= mTree.weight)
        return;
    mTree = std::move(tree);
    mKnownWeight = std::min(mKnownWeight, mTree.weight);
    ClassifyEdges(mNetwork, mAscent, mKnownWeight, mVerdicts);
}

BlockSearch::Outcome BlockSearch::AnswerTree(TreeFamily& family,
                                             const std::vector<EdgeIndex>& edges,
                                             std::uint64_t weight, std::uint64_t lowerBound) const
{
    for (const EdgeIndex edge : edges)
        family.AddStrand(mBlock.GetStrand(mNetwork.GetNetworkEdge(edge)));
    return {weight, std::min(weight, lowerBound), ECount::AtLeast};
}

/// Adds bounds until there are so many, or every terminal was root twice: every other root is
/// guided, and the second round changes places.
template <std::size_t Words>
void BlockSearch::AddBounds(std::size_t most, std::uint64_t limit,
                            std::vector<CompletionBound<Words>>& bounds)
{
    const std::vector<NodeIndex> roots = ChooseRoots(most);
    most = std::min(most, 2 * roots.size());
    while (bounds.size() < most && !mBudget.IsExhausted()) {
        const std::size_t round = bounds.size() / roots.size();
        const std::size_t place = bounds.size() % roots.size();
        std::vector<EdgeIndex> guide;
        if ((round + place) % 2 == 0)
            guide = mTree.edges;
        CompletionBound<Words>& bound = bounds.emplace_back(mNetwork, mBestRoot);
        mAscent.Run(roots[place], guide, mBudget, &bound);
        bound.Finish(mAscent, limit);
        mLowerBound = std::max(mLowerBound, mAscent.GetBound());
    }
}

/// Adds the bound that cuts were exchanged for, if any.
template <std::size_t Words>
void BlockSearch::AddExchangedBound(std::uint64_t limit,
                                    std::vector<CompletionBound<Words>>& bounds)
{
    if (!mExchange)
        return;
    CompletionBound<Words>& bound = bounds.emplace_back(mNetwork, mBestRoot);
    mExchange->Report(bound);
    bound.Finish(mExchange->GetAscent(), limit);
}

template <std::size_t Words>
std::optional<BlockSearch::Outcome>
BlockSearch::SearchWith(TreeFamily& family, std::span<const Effort> efforts, std::uint64_t limit)
{
    std::vector<CompletionBound<Words>> bounds;
    AddExchangedBound(limit, bounds);
    std::optional<DijkstraSteinerSearch<Words>> search;
    auto outcome = DijkstraSteinerSearch<Words>::EOutcome::Paused;
    for (const Effort& effort : efforts) {
        if (outcome != DijkstraSteinerSearch<Words>::EOutcome::Paused)
            break;
        AddBounds(effort.ascents, limit, bounds);
        search.emplace(mNetwork, mBestRoot, bounds, limit, mBudget);
        outcome = search->Run(effort.mostSettled);
        mLowerBound = std::max(mLowerBound, search->GetBound());
    }
    if (outcome != DijkstraSteinerSearch<Words>::EOutcome::Solved)
        return std::nullopt;
    if (!search->HasTree()) {
        mLowerBound = limit + 1;
        return std::nullopt;
    }
    std::vector<StrandIndex> strands;
    for (const EdgeIndex edge : mNetwork.GetEdges())
        strands.push_back(mBlock.GetStrand(mNetwork.GetNetworkEdge(edge)));
    const std::uint64_t weight = search->GetBound();
    DerivationGraph graph(mBlock.GetStrands());
    DerivationBuilder<Words> builder(*search, strands, mBudget);
    if (builder.Build(graph) == DerivationBuilder<Words>::EOutcome::Exhausted) {
        std::vector<EdgeIndex> edges;
        builder.AppendOneTree(edges);
        return AnswerTree(family, edges, weight, weight);
    }
    family.AddDerivations(std::move(graph), builder.GetWhole());
    return Outcome{weight, weight, ECount::Exact};
}

} // namespace qe::graph
