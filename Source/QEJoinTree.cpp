#include "QEJoinTree.h"

#include <iostream>

namespace {

using Ids = std::vector<amd_id>;

Ids Concatenate(const Ids& first, const Ids& second)
{
    Ids all = first;
    all.insert(all.end(), second.begin(), second.end());
    return all;
}

} // namespace

AQE_JoinTree::AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                           AQE_Governors* governors, AQE_RequestContext* requestContext,
                           AQE_I_QuerySubjectShortcutInfo* shortcutInfo)
    : mTraceStream(&std::cout),
      mGateway(gateway),
      mEntities(subjects),
      mPreferredJoins(favouredJoins),
      mGraph(AQE_I_UndirectedGraph::Create()),
      mTree(AQE_I_UndirectedGraph::Create()),
      mShortcutInfo(shortcutInfo),
      mGovernors(governors),
      mRequestContext(requestContext)
{}

AQE_JoinTree::AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                           const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                           AQE_Governors* governors, AQE_RequestContext* requestContext,
                           const Ids* avoidedJoins, AQE_I_QuerySubjectShortcutInfo* shortcutInfo,
                           bool connectivityOnly, const Ids& favouredSubjects)
    : AQE_JoinTree(gateway, subjects, favouredJoins, governors, requestContext, shortcutInfo)
{
    mConnectivityOnly = connectivityOnly;
    if (subjects.empty() || nodes.empty())
        return;
    mFavouredSubjects.insert(favouredSubjects.begin(), favouredSubjects.end());
    Build({subjects, favouredJoins, requiredJoins, nodes, joins, avoidedJoins},
          EUse::ConnectSubjects);
}

AQE_JoinTree::AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                           const Ids& requiredJoins, const Ids& nodes, const Ids& joins,
                           AQE_Governors* governors, AQE_RequestContext* requestContext,
                           const Ids* avoidedJoins, AQE_I_QuerySubjectShortcutInfo* shortcutInfo)
    : AQE_JoinTree(gateway, subjects, favouredJoins, governors, requestContext, shortcutInfo)
{
    if (!subjects.empty() && !nodes.empty())
        BuildWithShortcuts({subjects, favouredJoins, requiredJoins, nodes, joins, avoidedJoins});
}

AQE_JoinTree::AQE_JoinTree(amdi_gateway* gateway, const Ids& subjects, const Ids& favouredJoins,
                           const Ids& nodes, const Ids& joins, AQE_Governors* governors,
                           AQE_RequestContext* requestContext)
    : AQE_JoinTree(gateway, subjects, favouredJoins, governors, requestContext, nullptr)
{
    if (!subjects.empty() && !nodes.empty())
        Build({subjects, favouredJoins, {}, nodes, joins, nullptr}, EUse::ConnectSubjects);
}

AQE_JoinTree::AQE_JoinTree(amdi_gateway* gateway, const Ids& firstSet, const Ids& avoidedJoins,
                           const Ids& secondSet, const Ids& furtherAvoidedJoins,
                           const Ids& favouredJoins, const Ids& requiredJoins, const Ids& nodes,
                           const Ids& joins, std::vector<Ids>& resultPaths, int& resultWeight,
                           std::vector<EndPair>& resultPairs, AQE_Governors* governors,
                           AQE_RequestContext* requestContext,
                           AQE_I_QuerySubjectShortcutInfo* shortcutInfo)
    : AQE_JoinTree(gateway, {}, {}, governors, requestContext, shortcutInfo)
{
    if (firstSet.empty() || secondSet.empty() || nodes.empty() || joins.empty())
        return;
    const Ids allAvoided = Concatenate(avoidedJoins, furtherAvoidedJoins);
    Build({allAvoided, favouredJoins, requiredJoins, nodes, joins, nullptr}, EUse::TwoSets);
    ShortestPathsBetween(firstSet, secondSet, resultPaths, resultWeight);
    resultPairs = mEndpointPairs;
}

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

qe::JoinEndsReader AQE_JoinTree::GetEndsReader() const
{
    return {mGateway, mRequestContext, mShortcutInfo, mFavouredSubjects};
}
