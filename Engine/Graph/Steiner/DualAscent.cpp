#include "Engine/Graph/Steiner/DualAscent.h"

#include "Engine/Graph/Steiner/Budget.h"
#include "Engine/Graph/Steiner/Saturated.h"

#include <algorithm>
#include <functional>
#include <queue>

namespace qe::graph {

DualAscent::DualAscent(const FlatNetwork& network)
    : mNetwork(network), mIsActive(network.GetNodeCount()), mStamps(network.GetNodeCount())
{}

void DualAscent::Run(std::uint32_t root, Budget& budget, CutObserver* observer)
{
    mRoot = root;
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
        const std::uint64_t limit = queue.empty() ? Saturated : queue.top().size;
        if (Ascend(entry.terminal, limit, entry.size, observer) == EOutcome::Paused)
            queue.push(entry);
        else
            mIsActive[entry.terminal] = 0;
    }
}

DualAscent::EOutcome DualAscent::Ascend(std::uint32_t terminal, std::uint64_t sizeLimit,
                                        std::uint64_t& size, CutObserver* observer)
{
    ++mStamp;
    mStamps[terminal] = mStamp;
    mSet.assign(1, terminal);
    mSpread = 0;
    mEntering.clear();
    // A set somewhat above the limit is raised all the same: it was just built, and building it
    // again costs more than the order is worth.
    const std::uint64_t eagerLimit = sizeLimit == Saturated ? Saturated : sizeLimit * 5 / 4;
    for (bool isFirst = true;; isFirst = false) {
        if (!Spread(terminal))
            return EOutcome::Finished;
        std::erase_if(mEntering, [this](std::uint32_t half) {
            return mStamps[mNetwork.GetOrigin(half)] == mStamp;
        });
        size = mEntering.size();
        if (size == 0)
            return EOutcome::Finished;
        if (size > (isFirst ? sizeLimit : eagerLimit))
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
    std::uint64_t price = Saturated;
    for (const std::uint32_t half : mEntering)
        price = std::min(price, mReduced[half]);
    mBound += price;
    if (observer != nullptr)
        observer->Raise(mSet, price);
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
