#include "QEJoinTree.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AUT_I_UserConfiguration.h"
#include "IdClass.h"

#include <algorithm>

namespace {

using Ids = std::vector<amd_id>;

int TakeFirstWeight()
{
    return AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeRelationship136);
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

} // namespace

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
    const int unreachable = AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeNone);
    for (const amd_id& join : avoidedJoins)
        mGraph->SetEdgeWeight(join, unreachable);
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
