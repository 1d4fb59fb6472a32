#ifndef SOURCE_RANKING_PATHRANKING_H
#define SOURCE_RANKING_PATHRANKING_H

#include "AQE_I_JoinPathDescriptor.h"
#include "AUT_RefPtr.h"
#include "Joins/JoinInfoReader.h"
#include "amd_id.h"

#include <cstdint>
#include <vector>

namespace qe {

/// One candidate path with its weight.
struct WeightedPath
{
    std::vector<amd_id> path;
    std::int32_t weight = 0;
};

/// What orders paths of equal weight, in this sequence.
struct RankingCriteria
{
    bool useFactTableCount = false;
    bool useStraightestPath = false;
};

/// Appends one descriptor for each path to `descriptors`, best first.
///
/// Paths are ordered by weight, then by number of fact tables and by straightness as far as the
/// criteria want these. Among equals the paths come in the order of their signatures, where only
/// the first path with a signature counts; the others follow behind all of them in the order in
/// which they were given. The ranking is 100 for weight 0 and 0 for the largest weight; negative
/// weights lead outside that range.
///
/// Errors of the fact finder and of the gateway pass through; what was appended before stays.
void RankPaths(const std::vector<WeightedPath>& paths, const RankingCriteria& criteria,
               const JoinInfoReader& joinInfos,
               std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors);

} // namespace qe

#endif
