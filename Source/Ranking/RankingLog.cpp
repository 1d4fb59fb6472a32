#include "Ranking/RankingLog.h"

#include "Joins/HostNumbers.h"
#include "QERes.h"
#include "Rules/RankingCriteria.h"

#include <string>

namespace qe {

namespace {

constexpr int kLevel = 5;
constexpr int kMaxLoggedPaths = 30;

std::string InParentheses(std::int64_t number)
{
    return "(" + std::to_string(number) + ")";
}

} // namespace

RankingLog::RankingLog(const JoinInfoReader& joinInfos)
    : mJoinInfos(joinInfos),
      mFile(QERes::getString(host::kComponentNameText)),
      mIsOn(mFile.GetLogLevel() >= kLevel)
{
    if (mIsOn)
        mFile.Log(kLevel, "AQE_Refiner::RankPaths -> START LOGGING COMPUTED JOIN PATHS\n");
}

void RankingLog::LogRankedPath(const std::vector<amd_id>& path, const PathMeasure& measure,
                               std::int32_t ranking)
{
    if (!mIsOn || mLoggedCount >= kMaxLoggedPaths)
        return;
    ++mLoggedCount;
    std::string text = "\nPath " + std::to_string(mLoggedCount) + ": ";
    for (const amd_id& join : path) {
        if (const auto info = mJoinInfos.LookUpJoinInfo(join))
            text.append(info->name.View()).append(", ");
    }
    text += '\n';
    for (const RankingCriterion& criterion : GetRankingCriteria())
        text.append(criterion.logText)
            .append(" " + InParentheses(criterion.getKey(measure)) + ", ");
    text += "ranking using computed weight " + InParentheses(ranking) + "\n";
    mFile.Log(kLevel, I18NString(text));
}

void RankingLog::LogEnd(std::size_t pathCount)
{
    if (!mIsOn)
        return;
    mFile.Log(kLevel, I18NString("AQE_Refiner::RankPaths -> Logged " + InParentheses(mLoggedCount) +
                                 " paths out of " +
                                 InParentheses(static_cast<std::int64_t>(pathCount)) + " paths\n"));
}

} // namespace qe
