#include "Engine/Graph/Steiner/Bound/CutExchange.h"

#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qe::graph {

CutExchange::CutExchange(const FlatNetwork& network, NodeIndex root,
                         std::span<const EdgeIndex> guide, Budget& budget)
    : mNetwork(network),
      mBudget(budget),
      mAscent(network, IsFine(network) ? tuning::kGrainShift : 0),
      mMostPrice(IsFine(network) ? tuning::kMostGrains : kUnreached),
      mMostChosen(IsFine(network) ? tuning::kMostChosenFinely : tuning::kMostChosen),
      mSearch(network.GetNodeCount()),
      mNearest(network.GetTerminals().size()),
      mIsChosen(network.GetNodeCount(), 0)
{
    mAscent.Run(root, guide, mBudget, this);
}

CutExchange::~CutExchange()
{
    mBudget.Release(mCharged);
}

bool CutExchange::IsFine(const FlatNetwork& network)
{
    std::uint64_t sum = 0;
    for (const EdgeIndex edge : network.GetEdges()) {
        const std::uint64_t weight = network.GetWeight(edge);
        if (weight > tuning::kFineWeight * network.GetEdgeCount())
            return false;
        sum += weight;
    }
    return sum <= tuning::kFineWeight * network.GetEdgeCount();
}

CutExchange::EOutcome CutExchange::Improve(std::uint64_t knownWeight, std::uint64_t work)
{
    const std::uint64_t known = knownWeight << mAscent.GetGrainShift();
    const std::uint64_t end = mAscent.GetWork() + work;
    while (mAscent.GetWork() < end) {
        const std::uint64_t before = mAscent.GetBound();
        if (ExchangeBatch(knownWeight) == EOutcome::Stuck ||
            tuning::kWorthwhileShare * (mAscent.GetBound() - before) < known - before)
            return EOutcome::Stuck;
    }
    return EOutcome::Promising;
}

void CutExchange::ImproveToTheEnd(std::uint64_t knownWeight, std::uint64_t work)
{
    const std::uint64_t end = mAscent.GetWork() + work;
    while (mAscent.GetWork() < end && mAscent.GetBoundWeight() < knownWeight &&
           !mBudget.IsExhausted())
        Exchange();
}

CutExchange::EOutcome CutExchange::ExchangeBatch(std::uint64_t knownWeight)
{
    const std::uint64_t end = mAscent.GetWork() + tuning::kBatchWork;
    for (int count = 0; count < tuning::kBatchSize || mAscent.GetWork() < end; ++count) {
        if (mAscent.GetBoundWeight() >= knownWeight || mBudget.IsExhausted())
            return EOutcome::Stuck;
        Exchange();
    }
    return EOutcome::Promising;
}

void CutExchange::Report(CutObserver& observer) const
{
    for (const Cut& cut : mCuts)
        observer.Raise(
            {.nodes = cut.nodes, .raisedBefore = 0, .entering = cut.entering, .price = cut.price});
}

void CutExchange::Raise(const RaisedCut& raised)
{
    Cut cut{.nodes = {raised.nodes.begin(), raised.nodes.end()},
            .entering = {raised.entering.begin(), raised.entering.end()},
            .terminals = {},
            .price = raised.price};
    std::copy_if(cut.nodes.begin(), cut.nodes.end(), std::back_inserter(cut.terminals),
                 [this](NodeIndex node) { return mNetwork.IsTerminal(node); });
    for (; cut.price > mMostPrice; cut.price -= mMostPrice) {
        Cut piece = cut;
        piece.price = mMostPrice;
        Keep(std::move(piece));
    }
    Keep(std::move(cut));
}

void CutExchange::Keep(Cut cut)
{
    mBudget.Charge(GetBytes(cut));
    mCharged += GetBytes(cut);
    mCuts.push_back(std::move(cut));
}

std::size_t CutExchange::GetBytes(const Cut& cut)
{
    const std::size_t numbers = cut.nodes.size() + cut.entering.size() + cut.terminals.size();
    return sizeof(Cut) + numbers * sizeof(std::uint32_t);
}

void CutExchange::Exchange()
{
    const std::uint64_t before = mAscent.GetBound();
    mBudget.Spend(mCuts.size() + mNetwork.GetNodeCount());
    ChooseTerminals();
    SetAside();
    const std::size_t kept = mCuts.size();
    mAscent.Resume(mRandom, mBudget, *this);
    if (mAscent.GetBound() < before)
        Restore(kept);
    for (const Cut& cut : mAside)
        Discharge(cut);
    mAside.clear();
}

/// Chooses a terminal and some of those nearest to it.
void CutExchange::ChooseTerminals()
{
    const std::span<const NodeIndex> terminals = mNetwork.GetTerminals();
    mIsChosen.assign(mNetwork.GetNodeCount(), 0);
    const std::size_t centre = mRandom() % terminals.size();
    if (mNearest[centre].empty())
        mNearest[centre] = FindNearest(terminals[centre]);
    const std::size_t count = 1 + mRandom() % mNearest[centre].size();
    for (const NodeIndex terminal : std::span(mNearest[centre]).first(count))
        mIsChosen[terminal] = 1;
}

std::vector<NodeIndex> CutExchange::FindNearest(NodeIndex terminal)
{
    std::vector<NodeIndex> nearest;
    mSearch.Reset();
    mSearch.Reach(terminal, 0);
    mSearch.Run([&](NodeIndex node, std::uint64_t distance) {
        if (mNetwork.IsTerminal(node))
            nearest.push_back(node);
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(node))
            mSearch.Reach(arc.target, distance + arc.weight);
        return nearest.size() < mMostChosen ? DijkstraSearch::EStep::Continue
                                            : DijkstraSearch::EStep::Stop;
    });
    return nearest;
}

/// Takes back most of the cuts that hold a chosen terminal.
void CutExchange::SetAside()
{
    const auto isKept = [this](const Cut& cut) {
        return std::none_of(cut.terminals.begin(), cut.terminals.end(),
                            [this](NodeIndex node) { return mIsChosen[node] != 0; }) ||
               mRandom() % 10 >= tuning::kTakenOfTen;
    };
    const auto first = std::partition(mCuts.begin(), mCuts.end(), isKept);
    std::move(first, mCuts.end(), std::back_inserter(mAside));
    mCuts.erase(first, mCuts.end());
    for (const Cut& cut : mAside)
        mAscent.TakeBack(cut.entering, cut.price);
}

/// Puts what was set aside in the place of what was raised since.
void CutExchange::Restore(std::size_t kept)
{
    const auto raised = mCuts.begin() + static_cast<std::ptrdiff_t>(kept);
    std::vector<Cut> dropped(std::make_move_iterator(raised), std::make_move_iterator(mCuts.end()));
    mCuts.erase(raised, mCuts.end());
    for (const Cut& cut : dropped)
        mAscent.TakeBack(cut.entering, cut.price);
    for (const Cut& cut : mAside)
        mAscent.Charge(cut.entering, cut.price);
    std::move(mAside.begin(), mAside.end(), std::back_inserter(mCuts));
    mAside = std::move(dropped);
}

void CutExchange::Discharge(const Cut& cut)
{
    mBudget.Release(GetBytes(cut));
    mCharged -= GetBytes(cut);
}

} // namespace qe::graph
