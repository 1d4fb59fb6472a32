#ifndef SOURCE_RANKING_PATHWEIGHER_H
#define SOURCE_RANKING_PATHWEIGHER_H

#include "Joins/JoinInfoReader.h"
#include "Ranking/PathRanking.h"
#include "amd_id.h"

#include <functional>
#include <vector>

namespace qe {

/// The candidate paths of one operation, with all that is needed to weigh them.
struct CandidatePaths
{
    using Ids = std::vector<amd_id>;

    std::vector<Ids> paths;
    /// Returns the weight that a path has in the graph in which the paths were found.
    std::function<int(const Ids& path)> getPathWeight;
    /// The joins that no folder distance is added to. Borrowed.
    const Ids& favouredJoins;
    const Ids& requiredJoins;
};

/// Returns the candidates with their weights, in their order; less is better.
///
/// A path weighs the sum of the weights that its joins have in the graph. With the setting
/// "AdjustWeightByFolder" each of them counts a thousandfold, and joins that are kept far from what
/// they join get their folder distance on top, so that the distance decides only between paths of
/// equal weight. The favoured and the required joins, joins of the query and synthetic joins are
/// exempt from the distance. Sums wrap around at 32 bits.
[[nodiscard]] std::vector<WeightedPath> WeighPaths(const CandidatePaths& candidates,
                                                   const RefinerServices& services);

} // namespace qe

#endif
