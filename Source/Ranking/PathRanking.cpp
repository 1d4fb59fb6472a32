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
#include <string>

namespace qe {
namespace {

constexpr int kRankingLevel = 5;
constexpr int kMaxLoggedPaths = 30;

std::string InParentheses(std::int64_t number)
{
    return "(" + std::to_string(number) + ")";
}

} // namespace

RankingLog::RankingLog(const JoinInfoReader& joinInfos)
    : mJoinInfos(joinInfos),
      mFile(QERes::getString(host::kComponentNameText)),
      mIsOn(mFile.GetLogLevel() >= kRankingLevel)
{
    if (mIsOn)
        mFile.Log(kRankingLevel, "AQE_Refiner::RankPaths -> START LOGGING COMPUTED JOIN PATHS\n");
}

void RankingLog::LogRankedPath(std::span<const amd_id> path, const PathMeasure& measure,
                               std::int32_t ranking)
{
    if (!mIsOn || mLoggedCount >= kMaxLoggedPaths)
        return;
    ++mLoggedCount;
    std::string text = "\nPath " + std::to_string(mLoggedCount) + ": ";
    for (const amd_id& join : path) {
        if (const auto* const info = mJoinInfos.LookUpJoinInfo(join))
            text.append(info->name.View()).append(", ");
    }
    text += '\n';
    for (const RankingCriterion& criterion : GetRankingCriteria())
        text.append(criterion.logText)
            .append(" " + InParentheses(criterion.getKey(measure)) + ", ");
    text += "ranking using computed weight " + InParentheses(ranking) + "\n";
    mFile.Log(kRankingLevel, I18NString(text));
}

void RankingLog::LogEnd(std::size_t pathCount)
{
    if (!mIsOn)
        return;
    mFile.Log(kRankingLevel,
              I18NString("AQE_Refiner::RankPaths -> Logged " + InParentheses(mLoggedCount) +
                         " paths out of " + InParentheses(static_cast<std::int64_t>(pathCount)) +
                         " paths\n"));
}

namespace {

/// Positions in the list of paths to rank.
using Indices = std::vector<std::size_t>;
/// The numbers of the joins of a candidate.
using JoinNumbers = std::span<const std::uint32_t>;

/// Raises what keeps the fact tables of a path from being counted.
class FailingListener : public MeasureListener
{
public:
    void ReportUncountable(EFactJoin problem) const override { RaiseUnlessAdded(problem); }
};

/// The joins of the candidates, numbered in the order in which they are met, each read once.
class CandidateJoins
{
public:
    CandidateJoins(std::span<const WeightedPath> paths, const JoinInfoReader& joinInfos,
                   MeasureTools& tools)
        : mPaths(paths), mJoinInfos(joinInfos), mTools(tools), mFirstNumbers(paths.size(), kNone)
    {}

    /// Returns the numbers of the joins of a candidate; good until the next call.
    [[nodiscard]] JoinNumbers GetNumbers(std::size_t index);
    /// Returns those that can be read; good until the next call.
    [[nodiscard]] MeasuredJoins GetReadJoins(std::size_t index);
    /// Returns the place of the name of each join met so far in the order of all their names, by
    /// the number of the join. Equal names have one place.
    [[nodiscard]] const std::vector<std::uint32_t>& OrderNames();

private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    struct Join
    {
        bool isReadable;
        MeasuredJoin join;
        const I18NString* name;
    };

    [[nodiscard]] std::uint32_t GetNumber(const amd_id& id);

    std::span<const WeightedPath> mPaths;
    const JoinInfoReader& mJoinInfos;
    MeasureTools& mTools;
    /// The numbers of one candidate after the other, and where those of each begin.
    std::vector<std::uint32_t> mNumbers;
    std::vector<std::size_t> mFirstNumbers;
    std::size_t mLastNumbered = kNone;
    std::map<amd_id, std::uint32_t> mNumberById;
    std::vector<Join> mJoins;
    std::vector<std::uint32_t> mPlaceOfName;
    std::vector<MeasuredJoin> mReadJoins;
};

JoinNumbers CandidateJoins::GetNumbers(std::size_t index)
{
    const std::span<const amd_id> path = mPaths[index].path;
    if (mFirstNumbers[index] == kNone) {
        const std::size_t first = mNumbers.size();
        // Candidates that follow each other differ in few of their joins.
        std::span<const amd_id> last;
        if (mLastNumbered != kNone)
            last = mPaths[mLastNumbered].path;
        for (std::size_t place = 0; place < path.size(); ++place) {
            const bool isSame = place < last.size() && last[place] == path[place];
            mNumbers.push_back(isSame ? mNumbers[mFirstNumbers[mLastNumbered] + place]
                                      : GetNumber(path[place]));
        }
        mFirstNumbers[index] = first;
        mLastNumbered = index;
    }
    return JoinNumbers(mNumbers).subspan(mFirstNumbers[index], path.size());
}

std::uint32_t CandidateJoins::GetNumber(const amd_id& id)
{
    static const I18NString kDummy = kUnreadableName;
    const auto known = mNumberById.find(id);
    if (known != mNumberById.end())
        return known->second;
    const AQE_I_Refiner::QEjoinInfo* const info = mJoinInfos.LookUpJoinInfo(id);
    const auto number = static_cast<std::uint32_t>(mJoins.size());
    if (info == nullptr)
        mJoins.push_back({.isReadable = false, .join = {}, .name = &kDummy});
    else
        mJoins.push_back(
            {.isReadable = true,
             .join = mTools.Prepare({.ends = {info->leftQuerySubject, info->rightQuerySubject},
                                     .leftCardinality = info->leftCardinality,
                                     .rightCardinality = info->rightCardinality}),
             .name = &info->name});
    mNumberById.emplace(id, number);
    return number;
}

const std::vector<std::uint32_t>& CandidateJoins::OrderNames()
{
    if (mPlaceOfName.size() == mJoins.size())
        return mPlaceOfName;
    const auto getName = [this](std::uint32_t number) -> const I18NString& {
        return *mJoins[number].name;
    };
    std::vector<std::uint32_t> order(mJoins.size());
    std::iota(order.begin(), order.end(), 0U);
    std::ranges::sort(order, {}, getName);
    mPlaceOfName.assign(order.size(), 0);
    for (std::size_t i = 1; i < order.size(); ++i) {
        const bool isSame = getName(order[i]) == getName(order[i - 1]);
        mPlaceOfName[order[i]] = mPlaceOfName[order[i - 1]] + (isSame ? 0 : 1);
    }
    return mPlaceOfName;
}

MeasuredJoins CandidateJoins::GetReadJoins(std::size_t index)
{
    mReadJoins.clear();
    for (const std::uint32_t number : GetNumbers(index)) {
        if (mJoins[number].isReadable)
            mReadJoins.push_back(mJoins[number].join);
    }
    return mReadJoins;
}

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

/// The sets of the names of the joins of some candidates, by position among these.
class Signatures
{
public:
    Signatures(std::span<const std::size_t> members, CandidateJoins& joins);

    [[nodiscard]] std::span<const std::uint32_t> Get(std::size_t position) const
    {
        const std::size_t first = mFirsts[position];
        return std::span(mPlaces).subspan(first, mFirsts[position + 1] - first);
    }
    [[nodiscard]] bool IsLess(std::size_t left, std::size_t right) const
    {
        return std::ranges::lexicographical_compare(Get(left), Get(right));
    }
    [[nodiscard]] bool IsSame(std::size_t left, std::size_t right) const
    {
        return std::ranges::equal(Get(left), Get(right));
    }

private:
    /// The places of the names in their order, one candidate after the other.
    std::vector<std::uint32_t> mPlaces;
    std::vector<std::size_t> mFirsts{0};
};

Signatures::Signatures(std::span<const std::size_t> members, CandidateJoins& joins)
{
    const std::vector<std::uint32_t>& placeOfName = joins.OrderNames();
    mFirsts.reserve(members.size() + 1);
    for (const std::size_t index : members) {
        for (const std::uint32_t number : joins.GetNumbers(index))
            mPlaces.push_back(placeOfName[number]);
        const auto first = mPlaces.begin() + static_cast<std::ptrdiff_t>(mFirsts.back());
        std::sort(first, mPlaces.end());
        mPlaces.erase(std::unique(first, mPlaces.end()), mPlaces.end());
        mFirsts.push_back(mPlaces.size());
    }
}

/// Orders members by the sets of the names of their joins, where only the first with a set counts;
/// the others follow in the order in which they were given.
Indices OrderBySignature(std::span<const std::size_t> members, CandidateJoins& joins)
{
    for (const std::size_t index : members)
        static_cast<void>(joins.GetNumbers(index));
    if (members.size() == 1)
        return {members.front()};
    const Signatures signatures(members, joins);
    Indices order = ListAll(members.size());
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return signatures.IsLess(left, right);
    });
    Indices ordered;
    Indices duplicates;
    for (std::size_t i = 0; i < order.size(); ++i) {
        const bool isFirst = i == 0 || !signatures.IsSame(order[i], order[i - 1]);
        (isFirst ? ordered : duplicates).push_back(order[i]);
    }
    std::sort(duplicates.begin(), duplicates.end());
    ordered.insert(ordered.end(), duplicates.begin(), duplicates.end());
    for (std::size_t& position : ordered)
        position = members[position];
    return ordered;
}

/// Measures candidates by one criterion after the other.
class Measurer
{
public:
    Measurer(std::span<const WeightedPath> paths, const JoinInfoReader& joinInfos)
        : mJoins(paths, joinInfos, mTools), mMeasures(paths.size())
    {
        for (std::size_t index = 0; index < paths.size(); ++index)
            mMeasures[index].weight = paths[index].weight;
    }

    [[nodiscard]] const PathMeasure& Get(std::size_t index) const { return mMeasures[index]; }
    [[nodiscard]] CandidateJoins& GetJoins() { return mJoins; }

    [[nodiscard]] std::int32_t MeasureKey(const RankingCriterion& criterion, std::size_t index)
    {
        if (criterion.measure != nullptr)
            criterion.measure(mJoins.GetReadJoins(index), mTools, mMeasures[index]);
        return criterion.getKey(mMeasures[index]);
    }

private:
    FailingListener mListener;
    MeasureTools mTools{.listener = mListener};
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
          mMeasurer(paths, joinInfos),
          mLog(joinInfos),
          mDivisor(FindDivisor(paths)),
          mKeys(paths.size())
    {}

    [[nodiscard]] std::vector<RankedPath> RankAll();

private:
    void RankBy(std::span<const RankingCriterion> criteria, std::span<std::size_t> members);
    void Emit(std::size_t index);

    std::span<const WeightedPath> mPaths;
    const RankingSwitches& mSwitches;
    Measurer mMeasurer;
    RankingLog mLog;
    std::int32_t mDivisor;
    /// What each candidate was last measured at.
    std::vector<std::int32_t> mKeys;
    std::vector<RankedPath> mRanked;
};

std::vector<RankedPath> RankingRun::RankAll()
{
    Indices all = ListAll(mPaths.size());
    RankBy(GetRankingCriteria(), all);
    mLog.LogEnd(mPaths.size());
    return std::move(mRanked);
}

/// Ranks members that are equal in all criteria before the first of `criteria`; puts them in order.
void RankingRun::RankBy(std::span<const RankingCriterion> criteria, std::span<std::size_t> members)
{
    if (criteria.empty()) {
        for (const std::size_t index : OrderBySignature(members, mMeasurer.GetJoins()))
            Emit(index);
        return;
    }
    const RankingCriterion& criterion = criteria.front();
    if (!criterion.isOn(mSwitches))
        return RankBy(criteria.subspan(1), members);
    const auto getKey = [this](std::size_t member) { return mKeys[member]; };
    for (const std::size_t member : members)
        mKeys[member] = mMeasurer.MeasureKey(criterion, member);
    if (!std::ranges::is_sorted(members, {}, getKey))
        std::ranges::stable_sort(members, {}, getKey);
    while (!members.empty()) {
        // Further criteria measure the equal ones again.
        const std::int32_t key = getKey(members.front());
        const auto end = std::ranges::find_if(
            members, [key](std::int32_t other) { return other != key; }, getKey);
        const auto count = static_cast<std::size_t>(end - members.begin());
        RankBy(criteria.subspan(1), members.first(count));
        members = members.subspan(count);
    }
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
