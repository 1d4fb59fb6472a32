#include "Engine/Graph/Steiner/List/Derivations.h"

namespace qe::graph {

void Derivations::Expand(LabelIndex label)
{
    if (mExpansions[label].firstStep != kNoIndex)
        return;
    Expansion expansion{.firstStep = static_cast<std::uint32_t>(mSteps.size()),
                        .firstJoin = static_cast<std::uint32_t>(mJoins.size())};
    mLookups += FindSteps(label) + FindJoins(label);
    expansion.stepCount = static_cast<std::uint32_t>(mSteps.size()) - expansion.firstStep;
    expansion.joinCount = static_cast<std::uint32_t>(mJoins.size()) - expansion.firstJoin;
    mExpansions[label] = expansion;
}

std::span<const Derivations::Step> Derivations::GetSteps(LabelIndex label) const
{
    return std::span(mSteps).subspan(mExpansions[label].firstStep, mExpansions[label].stepCount);
}

std::span<const Derivations::Join> Derivations::GetJoins(LabelIndex label) const
{
    return std::span(mJoins).subspan(mExpansions[label].firstJoin, mExpansions[label].joinCount);
}

void Derivations::AppendOneTree(std::vector<EdgeIndex>& edges)
{
    std::vector<LabelIndex> open{GetWhole()};
    while (!open.empty()) {
        const LabelIndex label = open.back();
        open.pop_back();
        if (IsEmpty(label))
            continue;
        Expand(label);
        const std::span<const Step> steps = GetSteps(label);
        if (!steps.empty()) {
            edges.push_back(steps.front().edge);
            open.push_back(steps.front().label);
            continue;
        }
        const Join& join = GetJoins(label).front();
        open.push_back(join.branch);
        open.push_back(join.others);
    }
}

} // namespace qe::graph
