#ifndef SOURCE_RULES_JOINENDS_H
#define SOURCE_RULES_JOINENDS_H

#include "amd_id.h"

#include <cstddef>

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

} // namespace qe

#endif
