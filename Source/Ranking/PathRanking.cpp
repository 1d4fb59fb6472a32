#include "Ranking/PathRanking.h"

#include "I18NString.h"
#include "Joins/GatewayCalls.h"
#include "Joins/HostNumbers.h"
#include "QERes.h"
#include "Rules/PathMeasure.h"
#include "Rules/RankingCriteria.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>
#include <set>
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

namespace {

/// Positions in the list of paths to rank.
using Indices = std::vector<std::size_t>;
using PathSignature = std::set<I18NString>;

/// Reads the joins of candidates, and raises what keeps their fact tables from being counted.
class CandidateJoins : public PathJoinSource
{
public:
    explicit CandidateJoins(const JoinInfoReader& joinInfos) : mJoinInfos(joinInfos) {}

    [[nodiscard]] std::optional<PathJoin> ReadPathJoin(const amd_id& join) const override
    {
        const auto info = mJoinInfos.LookUpJoinInfo(join);
        if (!info)
            return std::nullopt;
        return PathJoin{.ends = {info->leftQuerySubject, info->rightQuerySubject},
                        .leftCardinality = info->leftCardinality,
                        .rightCardinality = info->rightCardinality};
    }

    void ReportUncountable(EFactJoin problem) const override { RaiseUnlessAdded(problem); }

private:
    const JoinInfoReader& mJoinInfos;
};

Indices ListAll(std::size_t count)
{
    Indices all(count);
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

std::int32_t FindDivisor(std::span<const WeightedPath> paths)
{
    constexpr std::int32_t kDivisorOfWeightless = 10000;
    std::int32_t maxWeight = -1;
    for (const WeightedPath& path : paths)
        maxWeight = std::max(maxWeight, path.weight);
    return maxWeight == 0 ? kDivisorOfWeightless : maxWeight;
}

/// Measures candidates by one criterion after the other.
class Measurer
{
public:
    Measurer(std::span<const WeightedPath> paths, const JoinInfoReader& joinInfos)
        : mPaths(paths), mJoins(joinInfos), mMeasures(paths.size())
    {
        for (std::size_t index = 0; index < paths.size(); ++index)
            mMeasures[index].weight = paths[index].weight;
    }

    [[nodiscard]] const PathMeasure& Get(std::size_t index) const { return mMeasures[index]; }

    [[nodiscard]] std::int32_t MeasureKey(const RankingCriterion& criterion, std::size_t index)
    {
        if (criterion.measure != nullptr)
            criterion.measure(mPaths[index].path, mJoins, mMeasures[index]);
        return criterion.getKey(mMeasures[index]);
    }

private:
    std::span<const WeightedPath> mPaths;
    CandidateJoins mJoins;
    std::vector<PathMeasure> mMeasures;
};

/// One ranking under way.
class RankingRun
{
public:
    RankingRun(std::span<const WeightedPath> paths, const RankingSwitches& switches,
               const JoinInfoReader& joinInfos)
        : mPaths(paths),
          mSwitches(switches),
          mJoinInfos(joinInfos),
          mMeasurer(paths, joinInfos),
          mLog(joinInfos),
          mDivisor(FindDivisor(paths))
    {}

    [[nodiscard]] std::vector<RankedPath> RankAll();

private:
    void RankBy(std::span<const RankingCriterion> criteria, const Indices& members);
    [[nodiscard]] Indices MoveDuplicatesLast(const Indices& members) const;
    [[nodiscard]] PathSignature GetSignature(std::size_t index) const;
    void Emit(std::size_t index);

    std::span<const WeightedPath> mPaths;
    const RankingSwitches& mSwitches;
    const JoinInfoReader& mJoinInfos;
    Measurer mMeasurer;
    RankingLog mLog;
    std::int32_t mDivisor;
    std::vector<RankedPath> mRanked;
};

std::vector<RankedPath> RankingRun::RankAll()
{
    RankBy(GetRankingCriteria(), ListAll(mPaths.size()));
    mLog.LogEnd(mPaths.size());
    return std::move(mRanked);
}

/// Ranks members that are equal in all criteria before the first of `criteria`.
void RankingRun::RankBy(std::span<const RankingCriterion> criteria, const Indices& members)
{
    if (criteria.empty()) {
        for (const std::size_t index : MoveDuplicatesLast(members))
            Emit(index);
        return;
    }
    const RankingCriterion& criterion = criteria.front();
    if (!criterion.isOn(mSwitches))
        return RankBy(criteria.subspan(1), members);
    std::map<std::int32_t, Indices> groups;
    for (const std::size_t member : members)
        groups[mMeasurer.MeasureKey(criterion, member)].push_back(member);
    for (const auto& group : groups)
        RankBy(criteria.subspan(1), group.second);
}

Indices RankingRun::MoveDuplicatesLast(const Indices& members) const
{
    std::map<PathSignature, std::size_t> distinct;
    Indices duplicates;
    for (const std::size_t index : members) {
        if (!distinct.emplace(GetSignature(index), index).second)
            duplicates.push_back(index);
    }
    Indices ordered;
    for (const auto& entry : distinct)
        ordered.push_back(entry.second);
    ordered.insert(ordered.end(), duplicates.begin(), duplicates.end());
    return ordered;
}

PathSignature RankingRun::GetSignature(std::size_t index) const
{
    const auto lookUpName = [this](const amd_id& join) {
        auto info = mJoinInfos.LookUpJoinInfo(join);
        return info ? std::optional(std::move(info->name)) : std::nullopt;
    };
    return GetPathSignature<I18NString>(mPaths[index].path, lookUpName);
}

void RankingRun::Emit(std::size_t index)
{
    const WeightedPath& path = mPaths[index];
    const std::int32_t ranking =
        SubtractWrapping(100, DivideWrapping(MultiplyWrapping(path.weight, 100), mDivisor));
    mRanked.push_back({.candidate = index, .ranking = ranking});
    mLog.LogRankedPath(path.path, mMeasurer.Get(index), ranking);
}

/// Returns the members with the least key, in their order.
Indices KeepLeast(const RankingCriterion& criterion, const Indices& members, Measurer& measurer)
{
    Indices kept;
    std::int32_t least = 0;
    for (const std::size_t member : members) {
        const std::int32_t key = measurer.MeasureKey(criterion, member);
        if (kept.empty() || key < least) {
            kept.clear();
            least = key;
        }
        if (key == least)
            kept.push_back(member);
    }
    return kept;
}

} // namespace

std::vector<RankedPath> RankPaths(std::span<const WeightedPath> paths,
                                  const RankingSwitches& switches, const JoinInfoReader& joinInfos)
{
    return RankingRun(paths, switches, joinInfos).RankAll();
}

std::vector<std::size_t> SelectBestPaths(std::span<const WeightedPath> paths,
                                         const JoinInfoReader& joinInfos)
{
    Measurer measurer(paths, joinInfos);
    Indices best = ListAll(paths.size());
    for (const RankingCriterion& criterion : GetRankingCriteria()) {
        if (criterion.countsForBest)
            best = KeepLeast(criterion, best, measurer);
    }
    return best;
}

} // namespace qe
