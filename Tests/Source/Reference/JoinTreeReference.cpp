#include "Tests/Source/Reference/JoinTreeReference.h"

#include "AQE_Convert2ModelQuerySubjectId.h"
#include "IdClass.h"
#include "Tests/Source/Reference/GrowthReference.h"

namespace qe::test {

namespace {

int WeightOf(AQE_I_Refiner::EEdgeType type)
{
    return AQE_I_Refiner::GetEdgeWeightForType(type);
}

} // namespace

JoinTreeReference::JoinTreeReference(const TreeServices& services, const TreeLists& lists,
                                     ETreeUse use)
    : mServices(services), mLists(lists), mUse(use)
{
    const bool isTwoSet = use == ETreeUse::TwoSet;
    if (lists.subjects.empty() || lists.nodes.empty() ||
        (isTwoSet && (lists.secondSet.empty() || lists.joins.empty())))
        return;
    if (!isTwoSet)
        mEntities = lists.subjects;
    Build();
    if (isTwoSet)
        SearchBetweenSets();
}

std::vector<Ids> JoinTreeReference::GetJoinPaths() const
{
    if (mNewAlgo)
        return mJoinPaths;
    std::vector<Ids> paths;
    if (mTree->IsConnected())
        mTree->GetPaths(paths);
    else if (!GetTreeJoins().empty())
        paths.push_back(GetTreeJoins());
    return paths;
}

int JoinTreeReference::GetPathWeight(const Ids& path) const
{
    if (!mNewAlgo)
        return mTree->GetPathWeight(path);
    return mJoinPathsWeight == -1 ? -1 : mGraph->GetPathWeight(path);
}

Ids JoinTreeReference::EdgesOf(AQE_I_UndirectedGraph& graph)
{
    Ids edges;
    graph.GetEdges(edges);
    return edges;
}

std::optional<JoinTreeReference::JoinInfo> JoinTreeReference::Read(const amd_id& join) const
{
    return mServices.ReadJoin(join, mUse == ETreeUse::ShortcutAware
                                        ? TreeServices::EShortcutJoins::Read
                                        : TreeServices::EShortcutJoins::Ignored);
}

/// Makes the joins of favoured subjects cheaper. What a shortcut stands for counts only where
/// neither end is favoured as it stands.
int JoinTreeReference::AdjustWeight(const JoinInfo& info) const
{
    const Ids& favoured = mLists.favouredSubjects;
    const int bothEnds = WeightOf(AQE_I_Refiner::EdgeTypeBothEndsInSet);
    const int oneEnd = WeightOf(AQE_I_Refiner::EdgeTypeOneEndInSet);
    if (info.weight <= bothEnds || favoured.empty())
        return info.weight;
    bool isLeftIn = Contains(favoured, info.leftQuerySubject);
    bool isRightIn = Contains(favoured, info.rightQuerySubject);
    if (!isLeftIn && !isRightIn) {
        const auto standsForFavoured = [&](const amd_id& end) {
            return end.classCode == IdClassShortcut &&
                   Contains(favoured, AQE_I_Refiner::GetRefQuerySubject(mServices.gateway, end,
                                                                        nullptr, nullptr));
        };
        isLeftIn = standsForFavoured(info.leftQuerySubject);
        isRightIn = standsForFavoured(info.rightQuerySubject);
    }
    if (isLeftIn && isRightIn)
        return bothEnds;
    return isLeftIn || isRightIn ? oneEnd : info.weight;
}

void JoinTreeReference::Build()
{
    if (mUse != ETreeUse::ShortcutAware)
        mNewAlgo = ReadSetting("General Options", "NewAlgo", 1) != 0;
    LoadCandidateGraph();
    if (mUse == ETreeUse::ConnectivityOnly) {
        mGraph->GetTreeEdges(mLists.subjects, mConnectingJoins);
        return;
    }
    for (const amd_id& subject : mEntities)
        mTree->AddNode(subject);
    WeighFavouredJoins();
    if (mUse != ETreeUse::TwoSet)
        TakeRequiredJoins();
    AddShortcutJoins();
    for (const amd_id& join : mLists.avoidedJoins)
        mGraph->SetEdgeWeight(join, WeightOf(AQE_I_Refiner::EdgeTypeNone));
    if (mUse != ETreeUse::TwoSet)
        Connect();
}

void JoinTreeReference::LoadCandidateGraph()
{
    if (mServices.shortcutInfo != nullptr)
        mServices.shortcutInfo->Initialize(mLists.nodes, mLists.joins, mLists.requiredJoins);
    for (const amd_id& node : mLists.nodes)
        mGraph->AddNode(node);
    for (const amd_id& join : mLists.joins) {
        const auto info = Read(join);
        if (info && Contains(mLists.nodes, info->leftQuerySubject) &&
            Contains(mLists.nodes, info->rightQuerySubject))
            mGraph->AddEdge(join, info->rightQuerySubject, info->leftQuerySubject,
                            AdjustWeight(*info), 0);
    }
}

void JoinTreeReference::WeighFavouredJoins()
{
    for (const amd_id& join : mLists.favouredJoins) {
        if (join.classCode != IdClassShortcutJoin && Read(join))
            mGraph->SetEdgeWeight(join, WeightOf(AQE_I_Refiner::EdgeTypeRelationship136));
    }
}

void JoinTreeReference::TakeRequiredJoins()
{
    const int weight = WeightOf(AQE_I_Refiner::EdgeTypeRelationship136);
    for (const amd_id& join : mLists.requiredJoins) {
        const auto info = Read(join);
        if (!info)
            continue;
        for (const amd_id& end : {info->rightQuerySubject, info->leftQuerySubject}) {
            AppendOnce(mEntities, end);
            mTree->AddNode(end);
            mGraph->AddNode(end);
        }
        mTree->AddEdge(join, info->rightQuerySubject, info->leftQuerySubject, weight, 0);
        if (Contains(EdgesOf(*mGraph), join))
            mGraph->SetEdgeWeight(join, weight);
        else
            mGraph->AddEdge(join, info->rightQuerySubject, info->leftQuerySubject, weight, 0);
    }
}

void JoinTreeReference::AddShortcutJoins()
{
    if (mServices.shortcutInfo == nullptr)
        return;
    for (const JoinInfo& info : mServices.shortcutInfo->GetShortcutJoins())
        mGraph->AddEdge(info.joinId, info.rightQuerySubject, info.leftQuerySubject, info.weight, 0);
}

void JoinTreeReference::Connect()
{
    if (mNewAlgo) {
        FindCheapestTrees();
        return;
    }
    if (mTree->IsConnected())
        return;
    GrowthReference growth(mServices, *mGraph, *mTree, mEntities);
    if (mUse == ETreeUse::ShortcutAware)
        growth.GrowByLibrary();
    else
        growth.GrowPairwise();
    if (mTree->IsConnected())
        growth.CloseTree();
}

void JoinTreeReference::FindCheapestTrees()
{
    if (mTree->IsConnected()) {
        if (!GetTreeJoins().empty()) {
            mJoinPaths.push_back(GetTreeJoins());
            mJoinPathsWeight = mTree->GetPathWeight(GetTreeJoins());
        }
        return;
    }
    Ids modelIds;
    for (const amd_id& entity : mEntities)
        modelIds.push_back(AQE_Convert2ModelQuerySubjectId(entity, mServices.gateway));
    mConnected = mGraph->GetCheapestTrees(modelIds, mJoinPaths, mJoinPathsWeight);
    if (!mConnected)
        mServices.CheckCheapestTrees(modelIds);
}

void JoinTreeReference::SearchBetweenSets()
{
    const int barred = WeightOf(AQE_I_Refiner::EdgeTypeNone);
    twoSetWeight = barred;
    for (const amd_id& first : mLists.subjects) {
        for (const amd_id& second : mLists.secondSet) {
            Ids path;
            int weight = -1;
            if (first != second)
                mGraph->GetShortestPath(first, second, path, weight);
            if (weight < 0 || weight >= barred || weight > *twoSetWeight)
                continue;
            if (weight < *twoSetWeight) {
                twoSetPaths.clear();
                twoSetPairs.clear();
            }
            twoSetWeight = weight;
            twoSetPaths.push_back(path);
            twoSetPairs.emplace_back(first, second);
        }
    }
}

} // namespace qe::test
