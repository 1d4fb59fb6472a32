#ifndef SOURCE_RANKING_PATHRANKING_H
#define SOURCE_RANKING_PATHRANKING_H

#include "AQE_LogFile.h"
#include "Joins/JoinInfoReader.h"
#include "Rules/PathMeasure.h"
#include "Rules/RankingCriteria.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace qe {

/// Writes one ranking to the log, at level 5: an opening entry, the first 30 paths in rank order,
/// and how many there were. When that level is off nothing is composed or read.
class RankingLog
{
public:
    /// Opens the log and writes the opening entry.
    explicit RankingLog(const JoinInfoReader& joinInfos);

    /// Writes the next path, with its keys in all criteria of the ranking.
    void LogRankedPath(std::span<const amd_id> path, const PathMeasure& measure,
                       std::int32_t ranking);
    void LogEnd(std::size_t pathCount);

private:
    const JoinInfoReader& mJoinInfos;
    AQE_LogFile mFile;
    bool mIsOn;
    int mLoggedCount = 0;
};

/// One candidate path, borrowed, with its weight.
struct WeightedPath
{
    std::span<const amd_id> path;
    std::int32_t weight = 0;
};

/// The place of one candidate in a ranking.
struct RankedPath
{
    /// The position of the candidate among those that were ranked.
    std::size_t candidate = 0;
    /// 100 for weight 0 and 0 for the largest weight; negative weights lead outside that range.
    std::int32_t ranking = 0;
};

/// Returns every candidate once, best first, and writes the ranking to the log.
///
/// Paths are ordered by the ranking's criteria as far as these are on. Among equals they come in
/// the order of their signatures, where only the first path with a signature counts; the others
/// follow behind all of them in the order in which they were given.
///
/// Raises an HBNException when fact tables are to be counted and the joins of a path do not let
/// them be; what the gateway throws passes through.
[[nodiscard]] std::vector<RankedPath> RankPaths(std::span<const WeightedPath> paths,
                                                const RankingSwitches& switches,
                                                const JoinInfoReader& joinInfos);

/// Returns the positions of the best candidates, ascending: those with the least weight and, among
/// these, the fewest fact tables. Raises what RankPaths raises.
[[nodiscard]] std::vector<std::size_t> SelectBestPaths(std::span<const WeightedPath> paths,
                                                       const JoinInfoReader& joinInfos);

} // namespace qe

#endif
