#ifndef SOURCE_RULES_JOINENDS_H
#define SOURCE_RULES_JOINENDS_H

#include "amd_id.h"

#include <cstddef>
#include <functional>
#include <set>

namespace qe {

/// The two ends of a join, each a query subject or a shortcut.
struct JoinEnds
{
    amd_id left;
    amd_id right;
};

/// A join as the join graph takes it: its ends and its weight.
struct WeighedJoin
{
    JoinEnds ends;
    int weight = 0;
};

/// Returns how many of the references of a condition belong to the left end of its join when the
/// references themselves do not tell: the first half in reading order, rounded down. The others
/// belong to the right end. This is what tells the two sides of a self-join apart.
[[nodiscard]] constexpr std::size_t CountLeftReferences(std::size_t referenceCount)
{
    return referenceCount / 2;
}

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
