#include "Engine/Graph/Steiner/Bound/DualAscent.h"

#include "Engine/Graph/Core/GraphView.h"
#include "Engine/Graph/Steiner/Network/Budget.h"
#include "Engine/Graph/Steiner/Network/SearchTuning.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <queue>
#include <utility>

namespace qe::graph {

namespace {

/// The limit of costs below which every set is raised.
constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

} // namespace

DualAscent::DualAscent(const FlatNetwork& network, std::uint32_t grainShift)
    : mNetwork(network),
      mGrainShift(grainShift),
      mSlots(network.GetHalfCount()),
      mIsActive(network.GetNodeCount()),
      mStamps(network.GetNodeCount())
{
    mFirstSlot.reserve(network.GetNodeCount() + 1);
    mFirstSlot.push_back(0);
    for (const NodeIndex node : network.GetNodes()) {
        for (const FlatNetwork::Arc& arc : network.GetArcs(node)) {
            mSlots[arc.half.Reversed()] = {mOrigins.size()};
            mOrigins.push_back(arc.target);
        }
        mFirstSlot.push_back(mOrigins.size());
    }
}

void DualAscent::Run(NodeIndex root, std::span<const EdgeIndex> guide, Budget& budget,
                     CutObserver* observer)
{
    mRoot = root;
    SetGuide(guide);
    mBound = 0;
    mReduced.resize(mNetwork.GetHalfCount());
    for (const HalfEdge half : mNetwork.GetHalves())
        mReduced[mSlots[half]] = mNetwork.GetWeight(half.Edge()) << mGrainShift;
    mIsReached.assign(mNetwork.GetNodeCount(), 0);
    mIsReached[root] = 1;
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> queue;
    for (const NodeIndex terminal : mNetwork.GetTerminals()) {
        mIsActive[terminal] = terminal != root;
        if (terminal != root)
            queue.push({mNetwork.GetArcs(terminal).size(), terminal});
    }
    std::uint64_t spent = mWork;
    mWork += mNetwork.GetHalfCount();
    while (!queue.empty() && !budget.IsExhausted()) {
        Entry entry = queue.top();
        queue.pop();
        const std::uint64_t limit = queue.empty() ? kNoLimit : queue.top().cost;
        if (Ascend(entry, limit, observer) == EOutcome::Paused)
            queue.push(entry);
        else
            mIsActive[entry.terminal] = 0;
        budget.Spend(mWork - std::exchange(spent, mWork));
    }
}

void DualAscent::Resume(std::mt19937& random, Budget& budget, CutObserver& observer)
{
    std::uint64_t spent = mWork;
    mIsReached.assign(mNetwork.GetNodeCount(), 0);
    MarkFrom(mRoot, mIsReached);
    const std::vector<NodeIndex> representatives = ChooseRepresentatives(random);
    for (const NodeIndex terminal : representatives)
        mIsActive[terminal] = 1;
    for (const NodeIndex terminal : representatives) {
        Entry entry{.cost = 0, .terminal = terminal};
        if (!budget.IsExhausted())
            Ascend(entry, kNoLimit, &observer);
        mIsActive[terminal] = 0;
        budget.Spend(mWork - std::exchange(spent, mWork));
    }
}

/// Returns the terminals that the root does not reach by arcs with nothing left, in random order,
/// without those that a later one reaches so: in their turn, the later one would represent them.
std::vector<NodeIndex> DualAscent::ChooseRepresentatives(std::mt19937& random)
{
    std::vector<NodeIndex> unreached;
    for (const NodeIndex terminal : mNetwork.GetTerminals()) {
        if (mIsReached[terminal] == 0)
            unreached.push_back(terminal);
    }
    std::shuffle(unreached.begin(), unreached.end(), random);
    mIsRepresented = mIsReached;
    std::vector<NodeIndex> representatives;
    for (const NodeIndex terminal : unreached) {
        if (mIsRepresented[terminal] == 0) {
            representatives.push_back(terminal);
            MarkFrom(terminal, mIsRepresented);
        }
    }
    std::reverse(representatives.begin(), representatives.end());
    return representatives;
}

/// Marks the node and what it reaches by arcs with nothing left and over nodes without a mark.
void DualAscent::MarkFrom(NodeIndex node, NodeMarks& marks)
{
    marks[node] = 1;
    mOpen.assign(1, node);
    while (!mOpen.empty()) {
        const NodeIndex current = mOpen.back();
        mOpen.pop_back();
        mWork += mNetwork.GetArcs(current).size();
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(current)) {
            if (marks[arc.target] != 0 || GetReduced(arc.half) != 0)
                continue;
            marks[arc.target] = 1;
            mOpen.push_back(arc.target);
        }
    }
}

void DualAscent::TakeBack(std::span<const ArcSlot> entering, std::uint64_t price)
{
    mBound -= price;
    for (const ArcSlot slot : entering)
        mReduced[slot] += price;
}

void DualAscent::Charge(std::span<const ArcSlot> entering, std::uint64_t price)
{
    mBound += price;
    for (const ArcSlot slot : entering)
        mReduced[slot] -= price;
}

/// Turns the edges of the guiding tree away from the root.
void DualAscent::SetGuide(std::span<const EdgeIndex> guide)
{
    mIsGuide.assign(mNetwork.GetHalfCount(), 0);
    for (const EdgeIndex edge : guide) {
        mIsGuide[mSlots[HalfEdge::Forward(edge)]] = 1;
        mIsGuide[mSlots[HalfEdge::Backward(edge)]] = 1;
    }
    if (guide.empty())
        return;
    mSet.assign(1, mRoot);
    for (std::size_t place = 0; place < mSet.size(); ++place) {
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(mSet[place])) {
            if (mIsGuide[mSlots[arc.half]] == 0)
                continue;
            mIsGuide[mSlots[arc.half.Reversed()]] = 0;
            mSet.push_back(arc.target);
        }
    }
}

/// Returns what raising the set at hand costs in later chances.
std::uint64_t DualAscent::GetCost() const
{
    std::uint64_t crossings = 0;
    for (const ArcSlot slot : mEntering)
        crossings += mIsGuide[slot];
    const std::uint64_t detours = crossings > 1 ? crossings - 1 : 0;
    return detours * tuning::kGuidePenalty + mEntering.size();
}

/// Raises sets around the entry's terminal up to the limit of costs. Updates the entry's cost when
/// it pauses there.
DualAscent::EOutcome DualAscent::Ascend(Entry& entry, std::uint64_t costLimit,
                                        CutObserver* observer)
{
    ++mStamp;
    mStamps[entry.terminal] = mStamp;
    mSet.assign(1, entry.terminal);
    mSpread = 0;
    mRaisedBefore = 0;
    mEntering.clear();
    const std::uint64_t eagerLimit =
        costLimit == kNoLimit ? kNoLimit : costLimit * tuning::kEagerQuarters / 4;
    for (bool isFirst = true;; isFirst = false) {
        if (!Spread(entry.terminal))
            return EOutcome::Finished;
        std::erase_if(mEntering,
                      [this](ArcSlot slot) { return mStamps[mOrigins[slot]] == mStamp; });
        if (mEntering.empty())
            return EOutcome::Finished;
        entry.cost = GetCost();
        if (entry.cost > (isFirst ? costLimit : eagerLimit))
            return EOutcome::Paused;
        RaiseCut(observer);
    }
}

/// Grows the set by all nodes that reach it by arcs with nothing left. Returns false when one of
/// them is reached from the root, or is another active terminal, which then represents the set.
bool DualAscent::Spread(NodeIndex terminal)
{
    for (; mSpread < mSet.size(); ++mSpread) {
        const NodeIndex node = mSet[mSpread];
        if (mIsReached[node] != 0) {
            MarkFrom(node, mIsReached);
            return false;
        }
        if (node != terminal && mIsActive[node] != 0)
            return false;
        mWork += mFirstSlot[node.value + 1] - mFirstSlot[node.value];
        for (std::uint32_t place = mFirstSlot[node.value]; place < mFirstSlot[node.value + 1];
             ++place) {
            const ArcSlot slot{place};
            const NodeIndex origin = mOrigins[slot];
            if (mStamps[origin] == mStamp)
                continue;
            if (mReduced[slot] != 0) {
                mEntering.push_back(slot);
                continue;
            }
            mStamps[origin] = mStamp;
            mSet.push_back(origin);
        }
    }
    return true;
}

void DualAscent::RaiseCut(CutObserver* observer)
{
    mWork += mEntering.size();
    std::uint64_t price = kUnreached;
    for (const ArcSlot slot : mEntering)
        price = std::min(price, mReduced[slot]);
    mBound += price;
    if (observer != nullptr)
        observer->Raise({.nodes = mSet,
                         .raisedBefore = std::exchange(mRaisedBefore, mSet.size()),
                         .entering = mEntering,
                         .price = price});
    for (const ArcSlot slot : mEntering) {
        mReduced[slot] -= price;
        const NodeIndex origin = mOrigins[slot];
        if (mReduced[slot] == 0 && mStamps[origin] != mStamp) {
            mStamps[origin] = mStamp;
            mSet.push_back(origin);
        }
    }
}

} // namespace qe::graph
