#include "Toolkit/Check/CheapestPaths.h"

#include <cstdint>
#include <utility>

namespace qe::tool {

namespace {

graph::NodeIndex ToNode(std::size_t subject)
{
    return {static_cast<std::uint32_t>(subject)};
}

} // namespace

CheapestPaths::CheapestPaths(const ModelGraph& model, int maximumWeight)
    : mModel(model),
      mMaximumWeight(maximumWeight),
      mLabels(model.GetSubjects().size()),
      mSearch(static_cast<std::uint32_t>(model.GetSubjects().size()))
{}

void CheapestPaths::Search(std::size_t source)
{
    for (const std::size_t subject : mReached)
        mLabels[subject] = {};
    mReached.clear();
    mSource = source;
    mLabels[source].dominator = source;
    mSearch.Reset();
    mSearch.Reach(ToNode(source), 0);
    mSearch.Run([this](graph::NodeIndex node, std::uint64_t weight) {
        Settle(node.value, static_cast<int>(weight));
        return graph::DijkstraSearch::EStep::Continue;
    });
}

void CheapestPaths::Settle(std::size_t subject, int weight)
{
    mLabels[subject].weight = weight;
    mReached.push_back(subject);
    if (subject != mSource)
        FindDominator(subject);
    for (const ModelGraph::Step& step : mModel.GetSteps(subject)) {
        ++mSteps;
        const int next = weight + mModel.GetJoins()[step.join].weight;
        if (next <= mMaximumWeight)
            mSearch.Reach(ToNode(step.subject), static_cast<std::uint64_t>(next));
    }
}

bool CheapestPaths::IsLastStep(std::size_t end, const ModelGraph::Step& step) const
{
    const Label& before = mLabels[step.subject];
    return before.weight >= 0 &&
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
