#ifndef SOURCE_JOINTREE_JOINDISTANCE_H
#define SOURCE_JOINTREE_JOINDISTANCE_H

#include "amd_id.h"

#include <cstdint>
#include <vector>

namespace qe {

/// One shortest path between two nodes of the candidate graph.
struct JoinDistance
{
    amd_id from;
    amd_id to;
    /// The joins of the path in walking order.
    std::vector<amd_id> path;
    std::int32_t weight = 0;
    /// Positions of the two nodes in the label array; -1 for a node outside it.
    std::int32_t fromIndex = -1;
    std::int32_t toIndex = -1;

    /// Tells whether both lead from the same node to the same node, by whatever path.
    [[nodiscard]] bool IsSameDistance(const JoinDistance& other) const
    {
        return from == other.from && to == other.to;
    }
};

} // namespace qe

#endif
