#ifndef SOURCE_RANKING_RANKINGLOG_H
#define SOURCE_RANKING_RANKINGLOG_H

#include "AQE_LogFile.h"
#include "Joins/JoinInfoReader.h"
#include "Rules/PathMeasure.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
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
    void LogRankedPath(const std::vector<amd_id>& path, const PathMeasure& measure,
                       std::int32_t ranking);
    void LogEnd(std::size_t pathCount);

private:
    const JoinInfoReader& mJoinInfos;
    AQE_LogFile mFile;
    bool mIsOn;
    int mLoggedCount = 0;
};

} // namespace qe

#endif
