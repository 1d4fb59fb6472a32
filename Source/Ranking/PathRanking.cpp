#include "Ranking/PathRanking.h"

#include "PathSelection.h"
#include "Ranking/PathShape.h"
#include "Ranking/RankingLog.h"
#include "Ranking/WrappingArithmetic.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <numeric>

namespace qe {

namespace {

/// Positions in the list of paths to rank.
using Indices = std::vector<std::size_t>;

/// Sorts the members by a key, and keeps their order among equals.
template <typename GetKey>
std::map<std::int32_t, Indices> GroupBy(const Indices& members, GetKey getKey)
{
    std::map<std::int32_t, Indices> groups;
    for (const std::size_t member : members)
        groups[getKey(member)].push_back(member);
    return groups;
}

std::int32_t FindDivisor(const std::vector<WeightedPath>& paths)
{
    std::int32_t maxWeight = -1;
    for (const WeightedPath& path : paths)
        maxWeight = std::max(maxWeight, path.weight);
    return maxWeight == 0 ? 10000 : maxWeight;
}

/// One ranking under way.
class RankingRun
{
public:
    using Descriptors = std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>;

    RankingRun(const std::vector<WeightedPath>& paths, const RankingCriteria& criteria,
               const JoinInfoReader& joinInfos, Descriptors& descriptors)
        : mPaths(paths),
          mCriteria(criteria),
          mJoinInfos(joinInfos),
          mDescriptors(descriptors),
          mLog(joinInfos),
          mDivisor(FindDivisor(paths))
    {}

    void RankAll();

private:
    void RankEqualWeights(const Indices& members);
    void RankEqualFactTables(const Indices& members, std::int32_t factTableKey);
    [[nodiscard]] Indices SetRepeatsBack(const Indices& members) const;
    void Emit(const WeightedPath& path, std::int32_t factTableKey, std::int32_t straightnessKey);

    const std::vector<WeightedPath>& mPaths;
    const RankingCriteria& mCriteria;
    const JoinInfoReader& mJoinInfos;
    Descriptors& mDescriptors;
    RankingLog mLog;
    std::int32_t mDivisor;
};

void RankingRun::RankAll()
{
    Indices all(mPaths.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    const auto byWeight = GroupBy(all, [&](std::size_t index) { return mPaths[index].weight; });
    for (const auto& group : byWeight)
        RankEqualWeights(group.second);
    mLog.LogEnd(mPaths.size());
}

void RankingRun::RankEqualWeights(const Indices& members)
{
    const auto byFactTables = GroupBy(members, [&](std::size_t index) {
        return mCriteria.useFactTableCount ? CountFactTables(mPaths[index].path, mJoinInfos) : 1;
    });
    for (const auto& group : byFactTables)
        RankEqualFactTables(group.second, group.first);
}

void RankingRun::RankEqualFactTables(const Indices& members, std::int32_t factTableKey)
{
    const auto byStraightness = GroupBy(members, [&](std::size_t index) {
        const WeightedPath& path = mPaths[index];
        return mCriteria.useStraightestPath
                   ? AdjustWeightForStraightness(path.path, path.weight, mJoinInfos)
                   : path.weight;
    });
    for (const auto& group : byStraightness) {
        for (const std::size_t index : SetRepeatsBack(group.second))
            Emit(mPaths[index], factTableKey, group.first);
    }
}

Indices RankingRun::SetRepeatsBack(const Indices& members) const
{
    std::map<PathSignature, std::size_t> distinct;
    Indices repeats;
    for (const std::size_t index : members) {
        if (!distinct.emplace(GetPathSignature(mPaths[index].path, mJoinInfos), index).second)
            repeats.push_back(index);
    }
    Indices ordered;
    for (const auto& entry : distinct)
        ordered.push_back(entry.second);
    ordered.insert(ordered.end(), repeats.begin(), repeats.end());
    return ordered;
}

void RankingRun::Emit(const WeightedPath& path, std::int32_t factTableKey,
                      std::int32_t straightnessKey)
{
    const std::int32_t ranking =
        SubtractWrapping(100, DivideWrapping(MultiplyWrapping(path.weight, 100), mDivisor));
    const AUT_RefPtr<AQE_I_JoinPathDescriptor> descriptor(
        new AQE_JoinPathDescriptor(path.path, ranking, path.weight));
    mDescriptors.push_back(descriptor);
    mLog.LogRankedPath({path.path, path.weight, factTableKey, straightnessKey, ranking});
}

} // namespace

void RankPaths(const std::vector<WeightedPath>& paths, const RankingCriteria& criteria,
               const JoinInfoReader& joinInfos,
               std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors)
{
    RankingRun(paths, criteria, joinInfos, descriptors).RankAll();
}

} // namespace qe
