#ifndef SOURCE_JOINTREE_JOINTREEREQUEST_H
#define SOURCE_JOINTREE_JOINTREEREQUEST_H

#include "amd_id.h"

#include <utility>
#include <vector>

namespace qe {

/// The list that stands for one that a request does not have.
inline const std::vector<amd_id> kNoIds;

/// What a join tree over some query subjects is asked for. All lists are borrowed.
struct JoinTreeRequest
{
    using Ids = std::vector<amd_id>;

    /// What the tree is for.
    enum class EUse
    {
        /// Connects the subjects: by all trees of least weight or, with "NewAlgo" off, by shortest
        /// paths.
        Connect,
        /// Finds nothing but the joins of one light tree; favoured, required and avoided
        /// joins and synthetic shortcut joins do not count.
        ConnectivityOnly,
        /// Connects the subjects by shortest paths that also pass over synthetic shortcut joins,
        /// whatever "NewAlgo" is.
        ConnectOverShortcuts,
    };

    const Ids& subjects;
    /// Joins that weigh as little as any.
    const Ids& favouredJoins = kNoIds;
    /// Joins that every tree contains; their ends are to be connected as well.
    const Ids& requiredJoins = kNoIds;
    /// The candidate graph. Joins that leave the nodes do not count.
    const Ids& nodes;
    const Ids& joins;
    /// Joins that no path uses that could do without; they count last.
    const Ids& avoidedJoins = kNoIds;
    /// Query subjects whose joins are made cheaper.
    const Ids& favouredSubjects = kNoIds;
    EUse use = EUse::Connect;
};

/// A request for the least-weight paths from a member of the first set to a member of the second
/// that use no avoided join. All lists are borrowed.
struct TwoSetRequest
{
    using Ids = std::vector<amd_id>;

    const Ids& firstSet;
    const Ids& avoidedJoins;
    const Ids& secondSet;
    const Ids& furtherAvoidedJoins;
    const Ids& favouredJoins;
    /// Known to the shortcut information only: a path between two sets need not use them.
    const Ids& requiredJoins;
    const Ids& nodes;
    const Ids& joins;
};

/// What a two-set request finds. Nothing is touched when a set, the nodes or the joins are empty.
struct TwoSetResult
{
    using Ids = std::vector<amd_id>;

    /// Appended to.
    std::vector<Ids>& paths;
    /// Set to the weight of the paths, or to the unreachable distance when there is none.
    int& weight;
    /// Replaced by the ends of each path, the member of the first set first.
    std::vector<std::pair<amd_id, amd_id>>& endPairs;
};

} // namespace qe

#endif
