#include "Ranking/RankingLog.h"

#include "QERes.h"

#include <string>

namespace qe {

namespace {

constexpr int kLevel = 5;
constexpr int kMaxLoggedPaths = 30;
constexpr long kLogName = 340;

std::string InParentheses(std::int64_t number)
{
    return "(" + std::to_string(number) + ")";
}

} // namespace

RankingLog::RankingLog(const JoinInfoReader& joinInfos)
    : mJoinInfos(joinInfos), mFile(QERes::getString(kLogName)), mIsOn(mFile.GetLogLevel() >= kLevel)
{
    if (mIsOn)
        mFile.Log(kLevel, "AQE_Refiner::RankPaths -> START LOGGING COMPUTED JOIN PATHS\n");
}

void RankingLog::LogRankedPath(const RankedPath& ranked)
{
    if (!mIsOn || mLoggedCount >= kMaxLoggedPaths)
        return;
    ++mLoggedCount;
    std::string text = "\nPath " + std::to_string(mLoggedCount) + ": ";
    for (const amd_id& join : ranked.path) {
        if (const auto info = mJoinInfos.LookUpJoinInfo(join))
            text.append(info->name.View()).append(", ");
    }
    text += "\nComputed weight " + InParentheses(ranked.weight) + ", ";
    text += "computed number of fact tables " + InParentheses(ranked.factTableKey) + ", ";
    text += "adjusted weight considering straightest path " +
            InParentheses(ranked.straightnessKey) + ", ";
    text += "ranking using computed weight " + InParentheses(ranked.ranking) + "\n";
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
