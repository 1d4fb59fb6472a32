#include "Toolkit/Check/FactSets.h"

#include <algorithm>

namespace qe::tool {

FactSets::FactSets(const ModelGraph& model)
    : mDetails(model.GetSubjects().size()), mIsFact(model.GetSubjects().size(), false)
{
    for (const ModelJoin& join : model.GetJoins()) {
        const bool leftIsMany = IsMany(join.leftCardinality);
        if (leftIsMany == IsMany(join.rightCardinality) || join.left == join.right)
            continue;
        const std::size_t fact = leftIsMany ? join.left : join.right;
        mDetails[join.OtherEnd(fact)].push_back(fact);
        mIsFact[fact] = true;
    }
    for (std::size_t i = 0; i < mDetails.size(); ++i) {
        std::vector<std::size_t>& details = mDetails[i];
        if (!details.empty())
            mIsFact[i] = false;
        std::sort(details.begin(), details.end());
        details.erase(std::unique(details.begin(), details.end()), details.end());
    }
}

std::vector<std::size_t> FactSets::FindAbove(std::size_t subject) const
{
    std::vector<bool> isSeen(mDetails.size(), false);
    std::vector<std::size_t> above{subject};
    isSeen[subject] = true;
    for (std::size_t next = 0; next < above.size(); ++next) {
        for (const std::size_t detail : mDetails[above[next]]) {
            if (!isSeen[detail])
                above.push_back(detail);
            isSeen[detail] = true;
        }
    }
    std::sort(above.begin(), above.end());
    return above;
}

std::vector<std::size_t> FactSets::FindFacts(std::size_t subject) const
{
    std::vector<std::size_t> facts = FindAbove(subject);
    facts.erase(std::remove_if(facts.begin(), facts.end(),
                               [this](std::size_t member) { return !mIsFact[member]; }),
                facts.end());
    return facts;
}

} // namespace qe::tool
