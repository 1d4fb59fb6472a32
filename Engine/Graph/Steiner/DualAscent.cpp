#include "Engine/Graph/Steiner/DualAscent.h"

#include "Engine/Graph/Steiner/Budget.h"
#include "Engine/Graph/Steiner/Saturated.h"

#include <algorithm>
#include <functional>
#include <queue>

namespace qe::graph {

namespace {

/// What one needless entry of the guiding tree into a set weighs against the set's size.
constexpr std::uint64_t GuidePenalty = 1U << 20;

} // namespace

DualAscent::DualAscent(const FlatNetwork& network)
    : mNetwork(network), mIsActive(network.GetNodeCount()), mStamps(network.GetNodeCount())
{}

void DualAscent::Run(std::uint32_t root, std::span<const std::uint32_t> guide, Budget& budget,
                     CutObserver* observer)
{
    mRoot = root;
    SetGuide(guide);
    mBound = 0;
    mReduced.resize(mNetwork.GetHalfCount());
    for (std::uint32_t half = 0; half < mNetwork.GetHalfCount(); ++half)
        mReduced[half] = mNetwork.GetWeight(half / 2);
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> queue;
    for (const std::uint32_t terminal : mNetwork.GetTerminals()) {
        mIsActive[terminal] = terminal != root;
        if (terminal != root)
            queue.push({mNetwork.GetArcs(terminal).size(), terminal});
    }
    while (!queue.empty() && !budget.IsExhausted()) {
        Entry entry = queue.top();
        queue.pop();
        const std::uint64_t limit = queue.empty() ? Saturated : queue.top().cost;
        if (Ascend(entry.terminal, limit, entry.cost, observer) == EOutcome::Paused)
            queue.push(entry);
        else
            mIsActive[entry.terminal] = 0;
    }
}

void DualAscent::Resume(std::mt19937& random, Budget& budget, CutObserver& observer)
{
    std::vector<std::uint32_t> unreached = FindUnreached();
    std::shuffle(unreached.begin(), unreached.end(), random);
    for (const std::uint32_t terminal : unreached)
        mIsActive[terminal] = 1;
    for (const std::uint32_t terminal : unreached) {
        std::uint64_t cost = 0;
        if (!budget.IsExhausted())
            Ascend(terminal, Saturated, cost, &observer);
        mIsActive[terminal] = 0;
    }
}

/// Answers the terminals that the root does not reach by arcs with nothing left.
std::vector<std::uint32_t> DualAscent::FindUnreached()
{
    ++mStamp;
    mStamps[mRoot] = mStamp;
    mSet.assign(1, mRoot);
    for (std::size_t place = 0; place < mSet.size(); ++place) {
        mWork += mNetwork.GetArcs(mSet[place]).size();
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(mSet[place])) {
            if (mReduced[arc.half] != 0 || mStamps[arc.target] == mStamp)
                continue;
            mStamps[arc.target] = mStamp;
            mSet.push_back(arc.target);
        }
    }
    std::vector<std::uint32_t> unreached;
    for (const std::uint32_t terminal : mNetwork.GetTerminals()) {
        if (mStamps[terminal] != mStamp)
            unreached.push_back(terminal);
    }
    return unreached;
}

void DualAscent::TakeBack(std::span<const std::uint32_t> entering, std::uint64_t price)
{
    mBound -= price;
    for (const std::uint32_t half : entering)
        mReduced[half] += price;
}

void DualAscent::Charge(std::span<const std::uint32_t> entering, std::uint64_t price)
{
    mBound += price;
    for (const std::uint32_t half : entering)
        mReduced[half] -= price;
}

/// Turns the edges of the guiding tree away from the root.
void DualAscent::SetGuide(std::span<const std::uint32_t> guide)
{
    mIsGuide.assign(mNetwork.GetHalfCount(), 0);
    for (const std::uint32_t edge : guide) {
        mIsGuide[2 * edge] = 1;
        mIsGuide[2 * edge + 1] = 1;
    }
    if (guide.empty())
        return;
    mSet.assign(1, mRoot);
    for (std::size_t place = 0; place < mSet.size(); ++place) {
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(mSet[place])) {
            if (mIsGuide[arc.half] == 0)
                continue;
            mIsGuide[arc.half ^ 1U] = 0;
            mSet.push_back(arc.target);
        }
    }
}

/// Answers what raising the set at hand costs in later chances.
std::uint64_t DualAscent::GetCost() const
{
    std::uint64_t crossings = 0;
    for (const std::uint32_t half : mEntering)
        crossings += mIsGuide[half];
    const std::uint64_t detours = crossings > 1 ? crossings - 1 : 0;
    return detours * GuidePenalty + mEntering.size();
}

DualAscent::EOutcome DualAscent::Ascend(std::uint32_t terminal, std::uint64_t costLimit,
                                        std::uint64_t& cost, CutObserver* observer)
{
    ++mStamp;
    mStamps[terminal] = mStamp;
    mSet.assign(1, terminal);
    mSpread = 0;
    mEntering.clear();
    // A set somewhat above the limit is raised all the same: it was just built, and building it
    // again costs more than the order is worth.
    const std::uint64_t eagerLimit = costLimit == Saturated ? Saturated : costLimit * 5 / 4;
    for (bool isFirst = true;; isFirst = false) {
        if (!Spread(terminal))
            return EOutcome::Finished;
        std::erase_if(mEntering, [this](std::uint32_t half) {
            return mStamps[mNetwork.GetOrigin(half)] == mStamp;
        });
        if (mEntering.empty())
            return EOutcome::Finished;
        cost = GetCost();
        if (cost > (isFirst ? costLimit : eagerLimit))
            return EOutcome::Paused;
        RaiseCut(observer);
    }
}

/// Grows the set by all nodes that reach it by arcs with nothing left. Says false when the set
/// holds the root or another active terminal, which then speaks for it.
bool DualAscent::Spread(std::uint32_t terminal)
{
    for (; mSpread < mSet.size(); ++mSpread) {
        const std::uint32_t node = mSet[mSpread];
        mWork += mNetwork.GetArcs(node).size();
        if (node == mRoot || (node != terminal && mIsActive[node] != 0))
            return false;
        for (const FlatNetwork::Arc& arc : mNetwork.GetArcs(node)) {
            if (mStamps[arc.target] == mStamp)
                continue;
            if (mReduced[arc.half ^ 1U] != 0) {
                mEntering.push_back(arc.half ^ 1U);
                continue;
            }
            mStamps[arc.target] = mStamp;
            mSet.push_back(arc.target);
        }
    }
    return true;
}

void DualAscent::RaiseCut(CutObserver* observer)
{
    mWork += mEntering.size();
    std::uint64_t price = Saturated;
    for (const std::uint32_t half : mEntering)
        price = std::min(price, mReduced[half]);
    mBound += price;
    if (observer != nullptr)
        observer->Raise(mSet, mEntering, price);
    for (const std::uint32_t half : mEntering) {
        mReduced[half] -= price;
        const std::uint32_t origin = mNetwork.GetOrigin(half);
        if (mReduced[half] == 0 && mStamps[origin] != mStamp) {
            mStamps[origin] = mStamp;
            mSet.push_back(origin);
        }
    }
}

} // namespace qe::graph
