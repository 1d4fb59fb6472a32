#include "QEJoinTree.h"

#include "AQE_Convert2ModelQuerySubjectId.h"
#include "AQE_I_Refiner.h"
#include "JoinTree/CandidateGraph.h"
#include "JoinTree/CrossProductGovernor.h"
#include "JoinTree/ShortestPathTree.h"
#include "Joins/UserSettings.h"

#include <iostream>

namespace {

using Ids = std::vector<amd_id>;
using EShortcutUse = qe::JoinEndsReader::EShortcutUse;
using EUse = qe::JoinTreeRequest::EUse;

Ids Concatenate(const Ids& first, const Ids& second)
{
    Ids all = first;
    all.insert(all.end(), second.begin(), second.end());
    return all;
}

const Ids& OrNone(const Ids* ids)
{
    return ids == nullptr ? qe::kNoIds : *ids;
}

} // namespace

AQE_JoinTree::AQE_JoinTree(const qe::RefinerServices& services, const Ids& subjects,
                           const Ids& favouredJoins)
    : mTraceStream(&std::cout),
      mGateway(services.gateway),
      mEntities(subjects),
      mPreferredJoins(favouredJoins),
      mTree(AQE_I_UndirectedGraph::Create()),
      mShortcutInfo(services.shortcutInfo),
      mGovernors(services.governors),
      mRequestContext(services.requestContext)
{}

AQE_JoinTree::AQE_JoinTree(const qe::RefinerServices& services, const qe::JoinTreeRequest& request)
    : AQE_JoinTree(services, request.subjects, request.favouredJoins)
{
    mConnectivityOnly = request.use == EUse::ConnectivityOnly;
    if (request.subjects.empty() || request.nodes.empty())
        return;
    if (request.use != EUse::ConnectOverShortcuts)
        mFavouredSubjects.insert(request.favouredSubjects.begin(), request.favouredSubjects.end());
    Build(request, request.use == EUse::ConnectOverShortcuts ? EBuild::ConnectOverShortcuts
                                                             : EBuild::ConnectSubjects);
}

AQE_JoinTree::AQE_JoinTree(const qe::RefinerServices& services, const qe::TwoSetRequest& request,
                           const qe::TwoSetResult& result)
    : AQE_JoinTree(services, qe::kNoIds, qe::kNoIds)
{
    if (request.firstSet.empty() || request.secondSet.empty() || request.nodes.empty() ||
        request.joins.empty())
        return;
    const Ids allAvoided = Concatenate(request.avoidedJoins, request.furtherAvoidedJoins);
    Build({.subjects = qe::kNoIds,
           .favouredJoins = request.favouredJoins,
           .requiredJoins = request.requiredJoins,
           .nodes = request.nodes,
           .joins = request.joins,
           .avoidedJoins = allAvoided},
          EBuild::TwoSets);
    ShortestPathsBetween(request.firstSet, request.secondSet, result.paths, result.weight);
    result.endPairs = mEndpointPairs;
}

AQE_JoinTree::AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                           const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                           AQE_Governors* governors, AQE_RequestContext* requestContext,
                           const Ids* avoidedJoins, AQE_I_QuerySubjectShortcutInfo* shortcutInfo,
                           bool connectivityOnly, const Ids& favouredSubjects)
    : AQE_JoinTree(
          qe::RefinerServices{.gateway = gateway,
                              .governors = governors,
                              .requestContext = requestContext,
                              .shortcutInfo = shortcutInfo},
          qe::JoinTreeRequest{.subjects = subjects,
                              .favouredJoins = favouredJoins,
                              .requiredJoins = requiredJoins,
                              .nodes = nodes,
                              .joins = joins,
                              .avoidedJoins = OrNone(avoidedJoins),
                              .favouredSubjects = favouredSubjects,
                              .use = connectivityOnly ? EUse::ConnectivityOnly : EUse::Connect})
{}

AQE_JoinTree::AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                           const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                           AQE_Governors* governors, AQE_RequestContext* requestContext,
                           const Ids* avoidedJoins, AQE_I_QuerySubjectShortcutInfo* shortcutInfo)
    : AQE_JoinTree(qe::RefinerServices{.gateway = gateway,
                                       .governors = governors,
                                       .requestContext = requestContext,
                                       .shortcutInfo = shortcutInfo},
                   qe::JoinTreeRequest{.subjects = subjects,
                                       .favouredJoins = favouredJoins,
                                       .requiredJoins = requiredJoins,
                                       .nodes = nodes,
                                       .joins = joins,
                                       .avoidedJoins = OrNone(avoidedJoins),
                                       .use = EUse::ConnectOverShortcuts})
{}

AQE_JoinTree::AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                           const Ids& nodes, const Ids& joins, AQE_Governors* governors,
                           AQE_RequestContext* requestContext)
    : AQE_JoinTree(
          qe::RefinerServices{
              .gateway = gateway, .governors = governors, .requestContext = requestContext},
          qe::JoinTreeRequest{
              .subjects = subjects, .favouredJoins = favouredJoins, .nodes = nodes, .joins = joins})
{}

AQE_JoinTree::AQE_JoinTree(amdi_gateway* gateway, const Ids& firstSet, const Ids& avoidedJoins,
                           const Ids& secondSet, const Ids& furtherAvoidedJoins,
                           const Ids& favouredJoins, const Ids& requiredJoins, const Ids& nodes,
                           const Ids& joins, std::vector<Ids>& resultPaths, int& resultWeight,
                           std::vector<EndPair>& resultPairs, AQE_Governors* governors,
                           AQE_RequestContext* requestContext,
                           AQE_I_QuerySubjectShortcutInfo* shortcutInfo)
    : AQE_JoinTree(
          qe::RefinerServices{.gateway = gateway,
                              .governors = governors,
                              .requestContext = requestContext,
                              .shortcutInfo = shortcutInfo},
          qe::TwoSetRequest{.firstSet = firstSet,
                            .avoidedJoins = avoidedJoins,
                            .secondSet = secondSet,
                            .furtherAvoidedJoins = furtherAvoidedJoins,
                            .favouredJoins = favouredJoins,
                            .requiredJoins = requiredJoins,
                            .nodes = nodes,
                            .joins = joins},
          qe::TwoSetResult{.paths = resultPaths, .weight = resultWeight, .endPairs = resultPairs})
{}

AQE_JoinTree::AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                           const Ids& nodes, const Ids& joins, std::ostream& traceStream,
                           AQE_Governors* governors, AQE_RequestContext* requestContext)
    : AQE_JoinTree(gateway, subjects, favouredJoins, nodes, joins, governors, requestContext)
{
    mTraceStream = &traceStream;
    mTrace = true;
}

AQE_JoinTree::~AQE_JoinTree()
{
    mGateway = nullptr;
}

void AQE_JoinTree::GetTreeJoins(Ids& joins) const
{
    mTree->GetEdges(joins);
}

int AQE_JoinTree::GetPathWeight(const Ids& path) const
{
    if (!mNewAlgo)
        return mTree->GetPathWeight(path);
    return mJoinPathsWeight == -1 ? -1 : mGraph->GetPathWeight(path);
}

void AQE_JoinTree::GetConnectingJoins(Ids& joins) const
{
    joins = mConnectingJoins;
}

void AQE_JoinTree::GetJoinPaths(std::vector<Ids>& paths) const
{
    if (mNewAlgo) {
        paths = mJoinPaths;
        return;
    }
    if (mTree->IsConnected()) {
        mTree->GetPaths(paths);
        return;
    }
    Ids edges;
    mTree->GetEdges(edges);
    if (!edges.empty())
        paths.push_back(std::move(edges));
}

void AQE_JoinTree::Build(const qe::JoinTreeRequest& request, EBuild build)
{
    mNewAlgo = build != EBuild::ConnectOverShortcuts && qe::settings::IsNewAlgoOn();
    mJoinPaths.clear();
    mJoinPathsWeight = -1;
    mConnected = false;

    const qe::JoinEndsReader endsReader(
        GetServices(), mFavouredSubjects,
        build == EBuild::ConnectOverShortcuts ? EShortcutUse::Consult : EShortcutUse::Ignore);
    qe::CandidateGraph candidates(endsReader, *mTree);
    candidates.Load({.nodes = request.nodes,
                     .joins = request.joins,
                     .requiredJoins = request.requiredJoins,
                     .hasShortcutJoins = !mConnectivityOnly});
    mGraph = candidates.GetGraph();
    if (mConnectivityOnly)
        mGraph->GetTreeEdges(request.subjects, mConnectingJoins);
    else
        Connect(request, build, candidates);
    mLoan = candidates.TakeLoan();
    mLoan.Complete();
}

void AQE_JoinTree::Connect(const qe::JoinTreeRequest& request, EBuild build,
                           qe::CandidateGraph& candidates)
{
    for (const amd_id& subject : request.subjects)
        mTree->AddNode(subject);
    candidates.Favour(request.favouredJoins);
    if (build != EBuild::TwoSets)
        candidates.Require(request.requiredJoins, mEntities);
    candidates.AddShortcutJoins();
    // Avoided joins come last: what is favoured or required as well is avoided all the same.
    candidates.Avoid(request.avoidedJoins);

    if (build == EBuild::TwoSets)
        return;
    if (mNewAlgo) {
        CheapestTreesStep();
        return;
    }
    NumberNodes(request.nodes);
    GrowUnlessConnected(candidates.GetEndsReader());
}

void AQE_JoinTree::NumberNodes(const Ids& nodes)
{
    for (const amd_id& node : nodes)
        mNodeIndex.emplace(node, static_cast<std::int32_t>(mNodeIndex.size()));
}

void AQE_JoinTree::GrowUnlessConnected(const qe::JoinEndsReader& endsReader)
{
    if (mTree->IsConnected())
        return;
    qe::ShortestPathTree growth(GetServices(), {.full = *mGraph, .tree = *mTree}, endsReader);
    if (endsReader.GetShortcutUse() == EShortcutUse::Consult) {
        growth.GrowByGraph(mEntities);
    } else {
        qe::SpanningTree spanningTree = growth.GrowPairwise(mEntities, mNodeIndex);
        mTreeJoins = std::move(spanningTree.joins);
        mTreeWeight = spanningTree.weight;
        mMinimumSpanningTreeEntities = std::move(spanningTree.entities);
    }
    if (mTree->IsConnected())
        growth.CloseTree(mMinimumSpanningTreeEntities);
}

void AQE_JoinTree::CheapestTreesStep()
{
    if (mTree->IsConnected()) {
        Ids edges;
        mTree->GetEdges(edges);
        if (!edges.empty()) {
            mJoinPathsWeight = mTree->GetPathWeight(edges);
            mJoinPaths.push_back(std::move(edges));
        }
        return;
    }
    Ids modelIds;
    modelIds.reserve(mEntities.size());
    for (const amd_id& entity : mEntities)
        modelIds.push_back(AQE_Convert2ModelQuerySubjectId(entity, mGateway));
    mConnected = mGraph->GetCheapestTrees(modelIds, mJoinPaths, mJoinPathsWeight);
    if (!mConnected)
        qe::CrossProductGovernor(GetServices()).CheckCheapestTrees(modelIds);
}

void AQE_JoinTree::ShortestPathsBetween(const Ids& firstSet, const Ids& secondSet,
                                        std::vector<Ids>& paths, int& minWeight)
{
    const int unreachable = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeNone);
    minWeight = unreachable;
    mEndpointPairs.clear();
    std::vector<Ids> found;
    for (const amd_id& first : firstSet) {
        for (const amd_id& second : secondSet) {
            if (first == second)
                continue;
            Ids path;
            int weight = -1;
            mGraph->GetShortestPath(first, second, path, weight);
            if (weight < 0 || weight >= unreachable || weight > minWeight)
                continue;
            if (weight < minWeight) {
                minWeight = weight;
                found.clear();
                mEndpointPairs.clear();
            }
            found.push_back(std::move(path));
            mEndpointPairs.emplace_back(first, second);
        }
    }
    paths.insert(paths.end(), found.begin(), found.end());
}

qe::RefinerServices AQE_JoinTree::GetServices() const
{
    return {.gateway = mGateway,
            .governors = mGovernors,
            .requestContext = mRequestContext,
            .shortcutInfo = mShortcutInfo};
}
