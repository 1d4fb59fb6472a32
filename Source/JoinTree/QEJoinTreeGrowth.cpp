#include "QEJoinTree.h"

#include "AQE_Convert2ModelQuerySubjectId.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "JoinTree/CrossProductGovernor.h"
#include "JoinTree/JoinTreeLog.h"
#include "JoinTree/PairwiseGrowth.h"
#include "Joins/RaiseFailure.h"

namespace {

using Ids = std::vector<amd_id>;

} // namespace

void AQE_JoinTree::GetShortestPathTree()
{
    const qe::JoinEndsReader reader = GetEndsReader();
    qe::JoinTreeLog log(mGateway, reader);
    log.LogEntities(mEntities);
    const qe::CrossProductGovernor governor(mGateway, mGovernors, mRequestContext);
    qe::PairwiseGrowth growth(*mGraph, *mTree, mNodeIndex, reader, log);
    growth.Grow(mEntities, [&](const amd_id& first, const amd_id& second) {
        governor.CheckCrossProduct([&] { return governor.GetPairNames(first, second); },
                                   qe::host::kCrossProductOfPair);
    });
    if (!mTree->IsConnected())
        return;
    mTree->GetMinimumSpanningTree(mTreeJoins, mTreeWeight);
    CollectSpanningTreeEntities();
}

void AQE_JoinTree::CollectSpanningTreeEntities()
{
    const qe::JoinEndsReader reader = GetEndsReader();
    std::set<amd_id> present;
    for (const amd_id& join : mTreeJoins) {
        const auto ends = reader.GetJoinEnds(join, EShortcutUse::Ignore);
        if (!ends)
            continue;
        for (const amd_id& end : {ends->right, ends->left})
            if (present.insert(end).second)
                mMinimumSpanningTreeEntities.push_back(end);
    }
}

void AQE_JoinTree::GetShortestPathTreeOfLibrary()
{
    const qe::JoinEndsReader reader = GetEndsReader();
    qe::JoinTreeLog log(mGateway, reader);
    log.LogEntities(mEntities);
    Ids nodes;
    Ids edges;
    int treeWeight = 0;
    mGraph->GetShortestPathTree(mEntities, nodes, edges, treeWeight);
    log.LogLibraryTree(nodes.size(), edges.size());
    if (mEntities.size() > 1 && edges.empty()) {
        const qe::CrossProductGovernor governor(mGateway, mGovernors, mRequestContext);
        governor.CheckCrossProduct([&] { return governor.JoinSubjectNames(mEntities); },
                                   qe::host::kCrossProductOfShortestPaths);
    }
    for (std::size_t position = 0; position < edges.size(); ++position) {
        const auto ends = reader.GetJoinEnds(edges[position], EShortcutUse::Consult);
        if (!ends)
            continue;
        // The weight asked for is that of the node at the edge's position, not of the edge.
        const int weight =
            mGraph->GetPathWeight(position < nodes.size() ? Ids{nodes[position]} : Ids{});
        AddTreeEdge(edges[position], *ends, weight);
    }
}

void AQE_JoinTree::AddTreeEdge(const amd_id& join, const qe::JoinEnds& ends, int weight)
{
    mTree->AddNode(ends.left);
    mTree->AddNode(ends.right);
    mTree->AddEdge(join, ends.right, ends.left, weight, 0);
}

void AQE_JoinTree::CloseTree(EShortcutUse shortcutUse)
{
    const qe::JoinEndsReader reader = GetEndsReader();
    qe::JoinTreeLog log(mGateway, reader);
    const std::set<amd_id> entities(mMinimumSpanningTreeEntities.begin(),
                                    mMinimumSpanningTreeEntities.end());
    const auto isReached = [&](const amd_id& id) {
        return entities.count(id) != 0 || (shortcutUse == EShortcutUse::Consult &&
                                           entities.count(mShortcutInfo->GetGroupKey(id)) != 0);
    };
    for (const amd_id& entity : mMinimumSpanningTreeEntities) {
        Ids joins;
        mGraph->GetNodeEdges(entity, joins);
        log.LogClosingAt(entity, joins.size());
        for (const amd_id& join : joins) {
            const auto ends = reader.GetJoinEnds(join, shortcutUse).value_or(qe::JoinEnds());
            if (ends.right != entity && ends.left != entity)
                qe::RaiseBrokenInvariant(qe::host::kStrayJoinAtEntity);
            if (!isReached(ends.right == entity ? ends.left : ends.right))
                continue;
            log.LogClosingJoin(ends);
            AddTreeEdge(join, ends, mGraph->GetPathWeight({join}));
        }
    }
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
        qe::CrossProductGovernor(mGateway, mGovernors, mRequestContext)
            .CheckCheapestTrees(modelIds);
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
