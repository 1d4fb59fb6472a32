#include "LearningSelector.h"

#include <algorithm>
#include <cmath>

namespace learning {

void LearningSelector::Learn(const std::vector<amd_id>& path)
{
    for (const amd_id& join : path)
        ++mUses[join];
}

double LearningSelector::Measure(const std::vector<amd_id>& path) const
{
    double sum = 0;
    for (const amd_id& join : path) {
        const auto found = mUses.find(join);
        sum += found == mUses.end() ? 0 : std::log1p(static_cast<double>(found->second));
    }
    return sum;
}

std::uint32_t
LearningSelector::SelectPath(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors)
{
    std::vector<std::vector<amd_id>> paths;
    for (const auto& descriptor : descriptors) {
        // They come in the order of their ranking, which the weight leads.
        if (descriptor->GetComputedWeight() != descriptors.front()->GetComputedWeight())
            break;
        descriptor->GetJoinPath(paths.emplace_back());
    }
    return SelectAlternative(paths);
}

std::uint32_t LearningSelector::SelectAlternative(const std::vector<std::vector<amd_id>>& paths)
{
    // Of several as good, the first, which is the best-ranked.
    const auto best =
        std::max_element(paths.begin(), paths.end(), [this](const auto& left, const auto& right) {
            return Measure(left) < Measure(right);
        });
    return static_cast<std::uint32_t>(best - paths.begin());
}

} // namespace learning
