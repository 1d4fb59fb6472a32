#include "Toolkit/Ask/SubjectGroups.h"

#include <cstddef>
#include <utility>

namespace qe::tool {

void SubjectGroups::AddJoin(const amd_id& left, const amd_id& right)
{
    const amd_id leftRoot = FindRoot(left);
    const amd_id rightRoot = FindRoot(right);
    if (leftRoot != rightRoot)
        mParents[rightRoot] = leftRoot;
}

std::vector<std::vector<amd_id>> SubjectGroups::Split(const std::vector<amd_id>& subjects)
{
    std::vector<std::vector<amd_id>> groups;
    std::map<amd_id, std::size_t> positions;
    for (const amd_id& subject : subjects) {
        const auto [found, isNew] = positions.emplace(FindRoot(subject), groups.size());
        if (isNew)
            groups.emplace_back();
        groups[found->second].push_back(subject);
    }
    return groups;
}

amd_id SubjectGroups::FindRoot(const amd_id& subject)
{
    amd_id current = subject;
    // Halving the path to the root keeps later walks short.
    for (auto parent = mParents.find(current); parent != mParents.end();
         parent = mParents.find(current)) {
        const auto above = mParents.find(parent->second);
        if (above != mParents.end())
            parent->second = above->second;
        current = parent->second;
    }
    return current;
}

Separation DescribeSeparation(std::vector<std::vector<amd_id>> groups)
{
    Separation separation{std::move(groups), {}};
    if (separation.groups.size() > 1) {
        for (const auto& group : separation.groups)
            separation.bridge.push_back(group.front());
    }
    return separation;
}

} // namespace qe::tool
