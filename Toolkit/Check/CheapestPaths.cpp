#include "Toolkit/Check/CheapestPaths.h"

#include <algorithm>
#include <functional>

namespace qe::tool {

CheapestPaths::CheapestPaths(const ModelGraph& model, int maximumWeight)
    : mModel(model), mMaximumWeight(maximumWeight), mLabels(model.GetSubjects().size())
{}

void CheapestPaths::Search(std::size_t source)
{
    for (const std::size_t subject : mTouched)
        mLabels[subject] = {};
    mReached.clear();
    mTouched.assign(1, source);
    mSource = source;
    mLabels[source].weight = 0;
    mLabels[source].dominator = source;
    mQueue.assign(1, {0, source});
    while (!mQueue.empty()) {
        std::pop_heap(mQueue.begin(), mQueue.end(), std::greater<>());
        const std::size_t subject = mQueue.back().second;
        mQueue.pop_back();
        if (!mLabels[subject].isSettled)
            Settle(subject);
    }
}

void CheapestPaths::Settle(std::size_t subject)
{
    mLabels[subject].isSettled = true;
    mReached.push_back(subject);
    if (subject != mSource)
        FindDominator(subject);
    for (const ModelGraph::Step& step : mModel.GetSteps(subject)) {
        ++mSteps;
        const int weight = mLabels[subject].weight + mModel.GetJoins()[step.join].weight;
        Label& label = mLabels[step.subject];
        if (weight > mMaximumWeight || (label.weight >= 0 && label.weight <= weight))
            continue;
        if (label.weight < 0)
            mTouched.push_back(step.subject);
        label.weight = weight;
        mQueue.emplace_back(weight, step.subject);
        std::push_heap(mQueue.begin(), mQueue.end(), std::greater<>());
    }
}

bool CheapestPaths::IsLastStep(std::size_t end, const ModelGraph::Step& step) const
{
    const Label& before = mLabels[step.subject];
    return before.isSettled &&
           before.weight + mModel.GetJoins()[step.join].weight == mLabels[end].weight;
}

void CheapestPaths::FindDominator(std::size_t subject)
{
    Label& label = mLabels[subject];
    for (const ModelGraph::Step& step : mModel.GetSteps(subject)) {
        if (!IsLastStep(subject, step))
            continue;
        label.dominator =
            label.lastJoins == 0 ? step.subject : CommonDominator(label.dominator, step.subject);
        ++label.lastJoins;
    }
    label.depth = mLabels[label.dominator].depth + 1;
}

std::size_t CheapestPaths::CommonDominator(std::size_t a, std::size_t b) const
{
    while (a != b) {
        if (mLabels[a].depth < mLabels[b].depth)
            std::swap(a, b);
        a = mLabels[a].dominator;
    }
    return a;
}

bool CheapestPaths::HasSeparatePaths(std::size_t subject) const
{
    const Label& label = mLabels[subject];
    return subject != mSource && label.lastJoins > 1 && label.dominator == mSource;
}

std::vector<std::vector<std::size_t>> CheapestPaths::ListPaths(std::size_t target,
                                                               std::size_t limit) const
{
    struct Place
    {
        std::size_t subject;
        std::size_t nextStep;
    };
    std::vector<std::vector<std::size_t>> paths;
    // Goes back from the target, depth first; joins[i] leads from places[i] to places[i + 1].
    std::vector<Place> places{{target, 0}};
    std::vector<std::size_t> joins;
    while (!places.empty() && paths.size() < limit) {
        Place& place = places.back();
        const auto steps = mModel.GetSteps(place.subject);
        if (place.subject == mSource)
            paths.emplace_back(joins.rbegin(), joins.rend());
        if (place.subject == mSource || place.nextStep == steps.size()) {
            places.pop_back();
            if (!joins.empty())
                joins.pop_back();
            continue;
        }
        const ModelGraph::Step& step = steps[place.nextStep++];
        if (IsLastStep(place.subject, step)) {
            joins.push_back(step.join);
            places.push_back({step.subject, 0});
        }
    }
    return paths;
}

} // namespace qe::tool
