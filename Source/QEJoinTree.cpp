#include "QEJoinTree.h"

#include "AQE_Convert2ModelQuerySubjectId.h"
#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AUT_I_UserConfiguration.h"
#include "CrossProductGovernor.h"
#include "IdClass.h"
#include "JoinTreeLog.h"
#include "ORVAssertError.h"
#include "PairwiseGrowth.h"
#include "QERes.h"
#include "amdi_gateway.h"
#include "amdi_object.h"

#include <algorithm>
#include <iostream>

namespace {

using Ids = std::vector<amd_id>;

constexpr int kPairwiseCheckLine = 1088;
constexpr int kLibraryCheckLine = 935;
constexpr long kSeparatorText = 29;

int TakeFirstWeight()
{
    return AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeRelationship136);
}

int UnreachableWeight()
{
    return AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeNone);
}

bool IsCheapestTreesSearchOn()
{
    const auto configuration = AUT_I_UserConfiguration::Create(RootKeyUser);
    return configuration->GetInt("General Options", "NewAlgo", 1) != 0;
}

bool Contains(const Ids& ids, const amd_id& id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

Ids Concatenate(const Ids& first, const Ids& second)
{
    Ids all = first;
    all.insert(all.end(), second.begin(), second.end());
    return all;
}

I18NString GetPairNames(amdi_gateway& gateway, const amd_id& first, const amd_id& second)
{
    const auto name = [&](const amd_id& id) {
        const amdi_object* const object = gateway.GetObject(id);
        return object == nullptr ? I18NString() : object->GetName();
    };
    return name(first) + QERes::getString(kSeparatorText) + name(second);
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

void AQE_JoinTree::Build(const BuildLists& lists, EUse use)
{
    mNewAlgo = IsCheapestTreesSearchOn();
    mJoinPaths.clear();
    mJoinPathsWeight = -1;
    mConnected = false;
    LoadCandidateGraph(lists, EShortcutUse::Ignore);
    if (mConnectivityOnly) {
        mGraph->GetTreeEdges(lists.subjects, mConnectingJoins);
        return;
    }

    NumberNodes(lists.nodes);
    if (use == EUse::ConnectSubjects)
        AddSubjects(lists.subjects);
    FavourJoins(lists.favouredJoins, EShortcutUse::Ignore);
    if (use == EUse::ConnectSubjects)
        RequireJoins(lists.requiredJoins, EShortcutUse::Ignore);
    AddShortcutJoins();
    // Avoided joins come last: what is favoured or required as well is avoided all the same.
    if (use == EUse::TwoSets)
        AvoidJoins(lists.subjects);
    if (lists.avoidedJoins != nullptr)
        AvoidJoins(*lists.avoidedJoins);

    if (use == EUse::TwoSets)
        return;
    if (mNewAlgo)
        CheapestTreesStep();
    else
        GrowUnlessConnected(EShortcutUse::Ignore);
}

void AQE_JoinTree::BuildWithShortcuts(const BuildLists& lists)
{
    mNewAlgo = false;
    mJoinPaths.clear();
    mJoinPathsWeight = -1;
    mConnected = false;
    LoadCandidateGraph(lists, EShortcutUse::Consult);
    NumberNodes(lists.nodes);
    AddSubjects(lists.subjects);
    FavourJoins(lists.favouredJoins, EShortcutUse::Consult);
    RequireJoins(lists.requiredJoins, EShortcutUse::Consult);
    AddShortcutJoins();
    if (lists.avoidedJoins != nullptr)
        AvoidJoins(*lists.avoidedJoins);
    GrowUnlessConnected(EShortcutUse::Consult);
}

void AQE_JoinTree::LoadCandidateGraph(const BuildLists& lists, EShortcutUse shortcutUse)
{
    Ids sorted = lists.nodes;
    std::sort(sorted.begin(), sorted.end());
    if (mShortcutInfo != nullptr)
        mShortcutInfo->Initialize(lists.nodes, lists.joins, lists.requiredJoins);
    for (const amd_id& node : sorted)
        mGraph->AddNode(node);

    const auto isCandidate = [&](const amd_id& node) {
        return std::binary_search(sorted.begin(), sorted.end(), node);
    };
    const qe::JoinEndsReader reader = GetEndsReader();
    for (const amd_id& join : lists.joins) {
        const auto weighed = reader.GetWeighedJoin(join, shortcutUse);
        if (weighed && isCandidate(weighed->ends.left) && isCandidate(weighed->ends.right))
            mGraph->AddEdge(join, weighed->ends.right, weighed->ends.left, weighed->weight, 0);
    }
}

void AQE_JoinTree::NumberNodes(const Ids& nodes)
{
    for (const amd_id& node : nodes)
        mNodeIndex.emplace(node, static_cast<std::int32_t>(mNodeIndex.size()));
}

void AQE_JoinTree::AddSubjects(const Ids& subjects)
{
    for (const amd_id& subject : subjects)
        mTree->AddNode(subject);
}

void AQE_JoinTree::FavourJoins(const Ids& favouredJoins, EShortcutUse shortcutUse)
{
    const qe::JoinEndsReader reader = GetEndsReader();
    for (const amd_id& join : favouredJoins)
        if (join.classCode != IdClassShortcutJoin && reader.GetJoinEnds(join, shortcutUse))
            mGraph->SetEdgeWeight(join, TakeFirstWeight());
}

void AQE_JoinTree::RequireJoins(const Ids& requiredJoins, EShortcutUse shortcutUse)
{
    const qe::JoinEndsReader reader = GetEndsReader();
    for (const amd_id& join : requiredJoins) {
        const auto ends = reader.GetJoinEnds(join, shortcutUse);
        if (!ends)
            continue;
        AddEntity(ends->right);
        AddEntity(ends->left);
        mTree->AddEdge(join, ends->right, ends->left, TakeFirstWeight(), 0);
        mGraph->AddNode(ends->right);
        mGraph->AddNode(ends->left);
        // An edge that is there already stays as it is when it is added, and is only made cheaper.
        mGraph->AddEdge(join, ends->right, ends->left, TakeFirstWeight(), 0);
        mGraph->SetEdgeWeight(join, TakeFirstWeight());
    }
}

void AQE_JoinTree::AddEntity(const amd_id& id)
{
    if (Contains(mEntities, id))
        return;
    mEntities.push_back(id);
    mTree->AddNode(id);
}

void AQE_JoinTree::AddShortcutJoins()
{
    if (mShortcutInfo == nullptr)
        return;
    for (const auto& info : mShortcutInfo->GetShortcutJoins())
        mGraph->AddEdge(info.joinId, info.rightQuerySubject, info.leftQuerySubject, info.weight, 0);
}

void AQE_JoinTree::AvoidJoins(const Ids& avoidedJoins)
{
    for (const amd_id& join : avoidedJoins)
        mGraph->SetEdgeWeight(join, UnreachableWeight());
}

void AQE_JoinTree::GrowUnlessConnected(EShortcutUse shortcutUse)
{
    if (mTree->IsConnected())
        return;
    if (shortcutUse == EShortcutUse::Consult)
        GetShortestPathTreeOfLibrary();
    else
        GetShortestPathTree();
    if (mTree->IsConnected())
        CloseTree(shortcutUse);
}

void AQE_JoinTree::GetShortestPathTree()
{
    const qe::JoinEndsReader reader = GetEndsReader();
    qe::JoinTreeLog log(mGateway, reader);
    log.LogEntities(mEntities);
    const qe::CrossProductGovernor governor(mGateway, mGovernors, mRequestContext);
    qe::PairwiseGrowth growth(*mGraph, *mTree, mNodeIndex, reader, log);
    growth.Grow(mEntities, [&](const amd_id& first, const amd_id& second) {
        governor.CheckCrossProduct([&] { return GetPairNames(*mGateway, first, second); },
                                   kPairwiseCheckLine);
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
                                   kLibraryCheckLine);
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
            ORV_ASSERT(ends.right == entity || ends.left == entity,
                       "ORV_ASSERT(right == mMinimumSpanningTreeEntities [i] || "
                       "left == mMinimumSpanningTreeEntities [i]);",
                       "Source/QEJoinTree", 1305);
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
    const int unreachable = UnreachableWeight();
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
