#ifndef SOURCE_RULES_FAVOUREDWEIGHT_H
#define SOURCE_RULES_FAVOUREDWEIGHT_H

#include "Rules/JoinEnds.h"
#include "amd_id.h"

#include <functional>
#include <set>

namespace qe {

/// What a join weighs by how many of its ends are favoured.
struct FavouredWeights
{
    int oneEnd = 0;
    int bothEnds = 0;
};

/// The query subjects and shortcuts that a request favours.
struct FavouredSubjects
{
    /// Borrowed.
    const std::set<amd_id>& ids;
    /// Returns the query subject that a shortcut finally stands for, or the empty id. Called only
    /// for shortcuts, and only when it matters.
    std::function<amd_id(const amd_id& shortcut)> resolve;
};

/// Returns what favouring the subjects makes of the weight of a join: `weights.bothEnds` or
/// `weights.oneEnd` when so many of its ends are favoured, and its own weight otherwise. A join
/// that weighs no more than one with both ends favoured keeps its weight. What a shortcut stands
/// for counts only when neither end is favoured as it stands. What `resolve` throws passes through.
[[nodiscard]] int AdjustJoinWeight(const WeighedJoin& join, const FavouredSubjects& favoured,
                                   const FavouredWeights& weights);

} // namespace qe

#endif
