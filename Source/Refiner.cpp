#include "Refiner.h"

#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Joins/JoinInfoReader.h"
#include "Joins/JoinedQuerySubjects.h"
#include "QEJoinTree.h"
#include "Ranking/PathChoice.h"
#include "Ranking/TwoGroupPaths.h"

#include <cstddef>
#include <iterator>
#include <set>

namespace {

using Ids = std::vector<amd_id>;

constexpr int kNoWeight = -1;
constexpr int kAllCandidatesMode = 3;
constexpr int kChoiceLine = 185;
constexpr int kChoiceBetweenLine = 303;

qe::CandidatePaths GetCandidates(const AUT_RefPtr<AQE_JoinTree>& tree, const Ids& favouredJoins,
                                 const Ids& requiredJoins)
{
    qe::CandidatePaths candidates{tree, {}, favouredJoins, requiredJoins};
    tree->GetJoinPaths(candidates.paths);
    return candidates;
}

bool LacksPath(const std::vector<Ids>& paths)
{
    return paths.empty() || paths.front().empty();
}

/// Appends all or, when memory runs out, nothing.
template <typename T>
void Append(std::vector<T>& target, std::vector<T>& added)
{
    target.reserve(target.size() + added.size());
    target.insert(target.end(), std::make_move_iterator(added.begin()),
                  std::make_move_iterator(added.end()));
}

} // namespace

AQE_Refiner::AQE_Refiner(amdi_gateway* gateway, AQE_I_PathSelector* pathSelector,
                         AQE_Governors* governors, AQE_RequestContext* requestContext,
                         bool useFactTableCount, bool useStraightestPath)
    : mGateway(gateway),
      mPathSelector(pathSelector),
      mUseFactTableCount(useFactTableCount),
      mUseStraightestPath(useStraightestPath),
      mGovernors(governors),
      mRequestContext(requestContext)
{}

AQE_Refiner::~AQE_Refiner() = default;

AQE_JoinCache* AQE_Refiner::FindJoinCache() const
{
    return mRequestContext == nullptr ? nullptr : mRequestContext->GetJoinCache();
}

qe::RefinerServices AQE_Refiner::GetServices() const
{
    return {mGateway, mGovernors, mRequestContext, mShortcutInfo};
}

void AQE_Refiner::ComputeJoinPath(const Ids& querySubjects, const Ids& favouredJoins,
                                  const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                                  const Ids& favouredSubjects, Ids& joinPath)
{
    if (querySubjects.size() < 2)
        return;
    AQE_JoinCache* const cache = FindJoinCache();
    if (cache != nullptr &&
        cache->GetJoinPath(querySubjects, favouredJoins, requiredJoins, joinPath))
        return;

    const AUT_RefPtr<AQE_JoinTree> tree(new AQE_JoinTree(
        mGateway, querySubjects, favouredJoins, requiredJoins, nodes, joins, mGovernors,
        mRequestContext, nullptr, mShortcutInfo, false, favouredSubjects));
    const qe::CandidatePaths candidates = GetCandidates(tree, favouredJoins, requiredJoins);
    if (LacksPath(candidates.paths))
        return;
    // Under a governor an unweighable path is still an answer: the governor has let it pass.
    if (mGovernors == nullptr && tree->GetPathWeight(candidates.paths.front()) == kNoWeight)
        return;

    const Ids chosen =
        qe::ChoosePath(candidates, GetServices(),
                       {mPathSelector, {mUseFactTableCount, mUseStraightestPath}, kChoiceLine});
    const Ids readable = qe::JoinInfoReader(GetServices()).KeepReadableJoins(chosen);
    // What stood in the caller's vector belongs to the answer, and to what is remembered of it.
    Ids answer = joinPath;
    answer.insert(answer.end(), readable.begin(), readable.end());
    if (cache != nullptr)
        cache->CacheJoinPath(querySubjects, favouredJoins, requiredJoins, answer);
    joinPath.swap(answer);
}

void AQE_Refiner::GetJoinedQuerySubjects(const Ids& querySubjects, const Ids& nodes,
                                         const Ids& joins, Ids& joinedQuerySubjects)
{
    const AQE_JoinTree tree(mGateway, querySubjects, {}, {}, nodes, joins, mGovernors,
                            mRequestContext, nullptr, mShortcutInfo, true, {});
    Ids connectingJoins;
    tree.GetConnectingJoins(connectingJoins);
    std::set<amd_id> subjects = qe::CollectJoinEnds(mGateway, connectingJoins);
    subjects.insert(querySubjects.begin(), querySubjects.end());
    joinedQuerySubjects.insert(joinedQuerySubjects.end(), subjects.begin(), subjects.end());
}

bool AQE_Refiner::ComputeBestJoinPaths(const Ids& querySubjects, const Ids& favouredJoins,
                                       const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                                       std::vector<Ids>& bestPaths, const Ids& avoidedJoins,
                                       const Ids& favouredSubjects)
{
    if (querySubjects.size() < 2)
        return true;
    const AUT_RefPtr<AQE_JoinTree> tree(new AQE_JoinTree(
        mGateway, querySubjects, favouredJoins, requiredJoins, nodes, joins, mGovernors,
        mRequestContext, avoidedJoins.empty() ? nullptr : &avoidedJoins, mShortcutInfo, false,
        favouredSubjects));
    qe::CandidatePaths candidates = GetCandidates(tree, favouredJoins, requiredJoins);
    if (LacksPath(candidates.paths) || tree->GetPathWeight(candidates.paths.front()) == kNoWeight)
        return false;
    if (GetFFJoinsMode() == kAllCandidatesMode) {
        bestPaths.swap(candidates.paths);
        return tree->IsConnected();
    }
    std::vector<Ids> best;
    for (const std::size_t index : qe::ChooseBestPaths(candidates, GetServices()))
        best.push_back(candidates.paths[index]);
    Append(bestPaths, best);
    return true;
}

void AQE_Refiner::ComputeJoinPathBetween(const Ids& firstSet, const Ids& avoidedJoins,
                                         const Ids& secondSet, const Ids& furtherAvoidedJoins,
                                         const Ids& favouredJoins, const Ids& requiredJoins,
                                         const Ids& nodes, const Ids& joins, Ids& joinPath,
                                         int& resultWeight, Ids& endPair)
{
    joinPath.clear();
    const qe::TwoGroupPaths paths({firstSet, avoidedJoins, secondSet, furtherAvoidedJoins,
                                   favouredJoins, requiredJoins, nodes, joins},
                                  GetServices(), resultWeight);
    if (paths.GetPaths().empty())
        return;
    // Between two groups how straight a path is plays no part.
    const Ids chosen =
        paths.Choose({mPathSelector, {mUseFactTableCount, false}, kChoiceBetweenLine});
    Ids readable = qe::JoinInfoReader(GetServices()).KeepReadableJoins(chosen);
    const EndPair& ends = paths.GetEndPair(paths.GetIndex(chosen));
    Ids endIds{ends.first, ends.second};
    Append(endPair, endIds);
    joinPath.swap(readable);
}

void AQE_Refiner::ComputeBestJoinPathsBetween(const Ids& firstSet, const Ids& avoidedJoins,
                                              const Ids& secondSet, const Ids& furtherAvoidedJoins,
                                              const Ids& favouredJoins, const Ids& requiredJoins,
                                              const Ids& nodes, const Ids& joins,
                                              std::vector<Ids>& bestPaths, int& resultWeight,
                                              std::vector<EndPair>& endPairs)
{
    bestPaths.clear();
    const qe::TwoGroupPaths paths({firstSet, avoidedJoins, secondSet, furtherAvoidedJoins,
                                   favouredJoins, requiredJoins, nodes, joins},
                                  GetServices(), resultWeight);
    if (LacksPath(paths.GetPaths()))
        return;
    std::vector<Ids> best;
    std::vector<EndPair> bestEnds;
    for (const std::size_t index : paths.ChooseBest()) {
        best.push_back(paths.GetPaths()[index]);
        bestEnds.push_back(paths.GetEndPair(index));
    }
    Append(endPairs, bestEnds);
    bestPaths.swap(best);
}

void AQE_Refiner::SetShortcutInfo(AQE_I_QuerySubjectShortcutInfo* shortcutInfo)
{
    mShortcutInfo = shortcutInfo;
}

bool AQE_Refiner::GetJoinTreeJoins(amdi_gateway* gateway, const Ids& querySubjects,
                                   const Ids& favouredJoins, const Ids& requiredJoins,
                                   const Ids& nodes, const Ids& joins, AQE_Governors* governors,
                                   AQE_RequestContext* requestContext, const Ids* avoidedJoins,
                                   Ids& treeJoins)
{
    const AQE_JoinTree tree(gateway, querySubjects, favouredJoins, requiredJoins, nodes, joins,
                            governors, requestContext, avoidedJoins, mShortcutInfo);
    Ids found;
    tree.GetTreeJoins(found);
    Append(treeJoins, found);
    return !treeJoins.empty();
}
