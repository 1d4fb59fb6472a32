#ifndef SOURCE_MAINOBJECT_PATHJOINS_H
#define SOURCE_MAINOBJECT_PATHJOINS_H

#include "BMT_I_Association.h"
#include "amd_id.h"

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

class AQE_RequestContext;
class amdi_gateway;

namespace qe {

/// The joins of one join path, in path order, found by the query subjects at their ends. Joins
/// that cannot be read are left out.
class PathJoins
{
public:
    using Range = BMT_I_Association::CardinalityRange;

    /// The position of a join among those of the path that can be read.
    using Position = std::size_t;

    /// One join of the path.
    struct Join
    {
        amd_id id;
        amd_id left;
        amd_id right;
    };

    /// The cardinalities of the join between two query subjects, at the end of each.
    struct RangePair
    {
        Range first;
        Range second;
    };

    /// Reads every join once. Borrows the gateway and the context.
    PathJoins(amdi_gateway* gateway, AQE_RequestContext* requestContext,
              const std::vector<amd_id>& path);

    [[nodiscard]] std::size_t GetCount() const { return mJoins.size(); }
    [[nodiscard]] const Join& GetJoin(Position position) const { return mJoins[position]; }

    /// Returns the joins that have the query subject at an end, in path order.
    [[nodiscard]] const std::vector<Position>& GetJoinsAt(const amd_id& subject) const;

    /// Returns whether no join of the query subject is optional at its end.
    [[nodiscard]] bool HasNoOptionalEnd(const amd_id& subject) const;

    /// Returns the cardinalities of the first join between the two. Raises an ORVAssertError when
    /// there is none or it can no longer be read.
    [[nodiscard]] RangePair GetRangesBetween(const amd_id& first, const amd_id& second) const;

private:
    [[nodiscard]] amd_id FindJoinBetween(const amd_id& first, const amd_id& second) const;
    [[nodiscard]] Range GetEndCardinality(const amd_id& join, const amd_id& end) const;

    amdi_gateway* mGateway;
    AQE_RequestContext* mRequestContext;
    std::vector<Join> mJoins;
    std::map<amd_id, std::vector<Position>> mJoinsBySubject;
    /// The first join of each pair of ends, the lesser end first.
    std::map<std::pair<amd_id, amd_id>, Position> mJoinByEnds;
};

} // namespace qe

#endif
