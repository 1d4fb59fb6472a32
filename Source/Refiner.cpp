#include "Refiner.h"

#include "AQE_JoinCache.h"
#include "AQE_RequestContext.h"
#include "Joins/GatewayCalls.h"
#include "Joins/JoinInfoReader.h"
#include "Joins/JoinReader.h"
#include "Joins/UserSettings.h"
#include "PathSelection.h"
#include "QEJoinTree.h"
#include "Ranking/PathRanking.h"
#include "Ranking/PathWeigher.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <set>
#include <utility>

namespace {

using Ids = std::vector<amd_id>;

constexpr int kNoWeight = -1;

/// How one of several candidates is chosen.
struct ChoiceRules
{
    /// Chooses among the ranked paths; null takes the best-ranked one. Borrowed.
    AQE_I_PathSelector* selector = nullptr;
    qe::RankingSwitches ranking;
    /// What a wrong choice of the selector is reported as.
    const qe::host::Failure& wrongChoice;
};

std::function<int(const Ids&)> WeighIn(const AUT_RefPtr<AQE_JoinTree>& tree)
{
    return [tree](const Ids& path) { return tree->GetPathWeight(path); };
}

qe::CandidatePaths GetCandidates(const AUT_RefPtr<AQE_JoinTree>& tree, const Ids& favouredJoins,
                                 const Ids& requiredJoins)
{
    qe::CandidatePaths candidates{.paths = {},
                                  .getPathWeight = WeighIn(tree),
                                  .favouredJoins = favouredJoins,
                                  .requiredJoins = requiredJoins};
    tree->GetJoinPaths(candidates.paths);
    return candidates;
}

/// Returns the position that the selector chooses.
std::size_t SelectDescriptor(const std::vector<AUT_RefPtr<AQE_I_JoinPathDescriptor>>& descriptors,
                             const ChoiceRules& rules)
{
    if (!descriptors.empty()) {
        const std::size_t index = rules.selector->SelectPath(descriptors);
        if (index < descriptors.size())
            return index;
    }
    qe::RaiseFailure(rules.wrongChoice);
    return 0;
}

/// Returns the chosen path; there must be a candidate. A single one is taken as it is; several are
/// weighed and ranked and put before the selector.
Ids ChoosePath(const qe::CandidatePaths& candidates, const qe::RefinerServices& services,
               const qe::JoinInfoReader& joinInfos, const ChoiceRules& rules)
{
    if (candidates.paths.size() == 1)
        return candidates.paths.front();
    const auto weighted = qe::WeighPaths(candidates, services);
    const auto ranked = qe::RankPaths(weighted, rules.ranking, joinInfos);
    if (rules.selector == nullptr)
        return candidates.paths[ranked.front().candidate];
    const auto descriptors = qe::DescribePaths(weighted, ranked);
    Ids chosen;
    descriptors[SelectDescriptor(descriptors, rules)]->GetJoinPath(chosen);
    return chosen;
}

/// Weighs all candidates and returns the positions of the best, ascending.
std::vector<std::size_t> ChooseBestPaths(const qe::CandidatePaths& candidates,
                                         const qe::RefinerServices& services)
{
    return qe::SelectBestPaths(qe::WeighPaths(candidates, services), qe::JoinInfoReader(services));
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
    return {.gateway = mGateway,
            .governors = mGovernors,
            .requestContext = mRequestContext,
            .shortcutInfo = mShortcutInfo};
}

void AQE_Refiner::ComputeJoinPath(const Ids& querySubjects, const Ids& favouredJoins,
                                  const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                                  const Ids& favouredSubjects, Ids& joinPath)
{
    if (querySubjects.size() < 2)
        return;
    if (const AQE_JoinCache* const cache = FindJoinCache();
        cache != nullptr &&
        cache->GetJoinPath(querySubjects, favouredJoins, requiredJoins, joinPath))
        return;

    const AUT_RefPtr<AQE_JoinTree> tree(
        new AQE_JoinTree(GetServices(), qe::JoinTreeRequest{.subjects = querySubjects,
                                                            .favouredJoins = favouredJoins,
                                                            .requiredJoins = requiredJoins,
                                                            .nodes = nodes,
                                                            .joins = joins,
                                                            .favouredSubjects = favouredSubjects}));
    const qe::CandidatePaths candidates = GetCandidates(tree, favouredJoins, requiredJoins);
    if (LacksPath(candidates.paths))
        return;
    // Under a governor an unweighable path is still an answer: the governor has let it pass.
    if (mGovernors == nullptr && tree->GetPathWeight(candidates.paths.front()) == kNoWeight)
        return;

    const Ids chosen = ChoosePath(candidates, GetServices(), qe::JoinInfoReader(GetServices()),
                                  {.selector = mPathSelector,
                                   .ranking = {.useFactTableCount = mUseFactTableCount,
                                               .useStraightestPath = mUseStraightestPath},
                                   .wrongChoice = qe::host::kWrongChoice});
    // Read anew: the selector may have changed what can be read.
    const Ids readable = qe::JoinInfoReader(GetServices()).KeepReadableJoins(chosen);
    // What stood in the caller's vector belongs to the answer, and to what is remembered of it.
    Ids answer = joinPath;
    answer.insert(answer.end(), readable.begin(), readable.end());
    // Asked for anew: the host may have put another one into the request context.
    if (AQE_JoinCache* const cache = FindJoinCache(); cache != nullptr)
        cache->CacheJoinPath(querySubjects, favouredJoins, requiredJoins, answer);
    joinPath.swap(answer);
}

void AQE_Refiner::GetJoinedQuerySubjects(const Ids& querySubjects, const Ids& nodes,
                                         const Ids& joins, Ids& joinedQuerySubjects)
{
    const AQE_JoinTree tree(
        GetServices(), qe::JoinTreeRequest{.subjects = querySubjects,
                                           .nodes = nodes,
                                           .joins = joins,
                                           .use = qe::JoinTreeRequest::EUse::ConnectivityOnly});
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
    const AUT_RefPtr<AQE_JoinTree> tree(
        new AQE_JoinTree(GetServices(), qe::JoinTreeRequest{.subjects = querySubjects,
                                                            .favouredJoins = favouredJoins,
                                                            .requiredJoins = requiredJoins,
                                                            .nodes = nodes,
                                                            .joins = joins,
                                                            .avoidedJoins = avoidedJoins,
                                                            .favouredSubjects = favouredSubjects}));
    qe::CandidatePaths candidates = GetCandidates(tree, favouredJoins, requiredJoins);
    if (LacksPath(candidates.paths) || tree->GetPathWeight(candidates.paths.front()) == kNoWeight)
        return false;
    if (GetFFJoinsMode() == qe::settings::kFFJoinsAllCandidates) {
        bestPaths.swap(candidates.paths);
        return tree->IsConnected();
    }
    std::vector<Ids> best;
    for (const std::size_t index : ChooseBestPaths(candidates, GetServices()))
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
    std::vector<EndPair> endPairs;
    const qe::CandidatePaths candidates =
        FindPathsBetween({.firstSet = firstSet,
                          .avoidedJoins = avoidedJoins,
                          .secondSet = secondSet,
                          .furtherAvoidedJoins = furtherAvoidedJoins,
                          .favouredJoins = favouredJoins,
                          .requiredJoins = requiredJoins,
                          .nodes = nodes,
                          .joins = joins},
                         resultWeight, endPairs);
    if (candidates.paths.empty())
        return;
    // Between two groups how straight a path is plays no part.
    const Ids chosen = ChoosePath(
        candidates, GetServices(), qe::JoinInfoReader(GetServices()),
        {.selector = mPathSelector,
         .ranking = {.useFactTableCount = mUseFactTableCount, .useStraightestPath = false},
         .wrongChoice = qe::host::kWrongChoiceBetweenGroups});
    Ids readable = qe::JoinInfoReader(GetServices()).KeepReadableJoins(chosen);
    // The same path may have been found more than once; the ends are those of the first.
    const auto first = std::find(candidates.paths.begin(), candidates.paths.end(), chosen);
    const EndPair& ends =
        endPairs[first == candidates.paths.end()
                     ? 0
                     : static_cast<std::size_t>(first - candidates.paths.begin())];
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
    std::vector<EndPair> allEnds;
    const qe::CandidatePaths candidates =
        FindPathsBetween({.firstSet = firstSet,
                          .avoidedJoins = avoidedJoins,
                          .secondSet = secondSet,
                          .furtherAvoidedJoins = furtherAvoidedJoins,
                          .favouredJoins = favouredJoins,
                          .requiredJoins = requiredJoins,
                          .nodes = nodes,
                          .joins = joins},
                         resultWeight, allEnds);
    if (LacksPath(candidates.paths))
        return;
    std::vector<Ids> best;
    std::vector<EndPair> bestEnds;
    for (const std::size_t index : ChooseBestPaths(candidates, GetServices())) {
        best.push_back(candidates.paths[index]);
        bestEnds.push_back(allEnds[index]);
    }
    Append(endPairs, bestEnds);
    bestPaths.swap(best);
}

qe::CandidatePaths AQE_Refiner::FindPathsBetween(const qe::TwoSetRequest& request,
                                                 int& resultWeight,
                                                 std::vector<EndPair>& endPairs) const
{
    qe::CandidatePaths candidates{.paths = {},
                                  .getPathWeight = {},
                                  .favouredJoins = request.favouredJoins,
                                  .requiredJoins = request.requiredJoins};
    resultWeight = kNoWeight;
    candidates.getPathWeight = WeighIn(AUT_RefPtr<AQE_JoinTree>(new AQE_JoinTree(
        GetServices(), request,
        {.paths = candidates.paths, .weight = resultWeight, .endPairs = endPairs})));
    return candidates;
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
    const qe::RefinerServices services{.gateway = gateway,
                                       .governors = governors,
                                       .requestContext = requestContext,
                                       .shortcutInfo = mShortcutInfo};
    const AQE_JoinTree tree(
        services,
        qe::JoinTreeRequest{.subjects = querySubjects,
                            .favouredJoins = favouredJoins,
                            .requiredJoins = requiredJoins,
                            .nodes = nodes,
                            .joins = joins,
                            .avoidedJoins = avoidedJoins == nullptr ? qe::kNoIds : *avoidedJoins,
                            .use = qe::JoinTreeRequest::EUse::ConnectOverShortcuts});
    Ids found;
    tree.GetTreeJoins(found);
    Append(treeJoins, found);
    return !treeJoins.empty();
}
