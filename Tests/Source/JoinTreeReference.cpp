#include "Tests/Source/JoinTreeReference.h"

#include "AQE_Convert2ModelQuerySubjectId.h"
#include "AQE_I_Authentication.h"
#include "AQE_Nag.h"
#include "AUT_I_UserConfiguration.h"
#include "AUT_LogException.h"
#include "HBNException.h"
#include "IdClass.h"
#include "ORVAssertError.h"
#include "QERes.h"
#include "amdi_object.h"

#include <algorithm>

namespace qe::test {

namespace {

constexpr const char* kSource = "Source/QEJoinTree";

int WeightOf(AQE_I_Refiner::EEdgeType type)
{
    return AQE_I_Refiner::GetEdgeWeightForType(type);
}

void AppendOnce(Ids& ids, const amd_id& id)
{
    if (!Contains(ids, id))
        ids.push_back(id);
}

void Append(Ids& ids, const Ids& more)
{
    ids.insert(ids.end(), more.begin(), more.end());
}

} // namespace

int ReadSetting(const char* section, const char* key, int defaultValue)
{
    return AUT_I_UserConfiguration::Create(RootKeyUser)->GetInt(section, key, defaultValue);
}

bool Contains(const Ids& ids, const amd_id& id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

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

std::optional<JoinTreeReference::JoinInfo> JoinTreeReference::ReadJoin(const amd_id& join,
                                                                       bool useShortcutInfo) const
{
    JoinInfo info;
    if (AQE_I_Refiner::GetJoinInfo(mServices.gateway, mServices.context, join, info))
        return info;
    if (useShortcutInfo && mServices.shortcutInfo != nullptr &&
        mServices.shortcutInfo->GetJoinInfo(join, info))
        return info;
    return std::nullopt;
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
        const auto info = ReadJoin(join, mUse == ETreeUse::ShortcutAware);
        if (info && Contains(mLists.nodes, info->leftQuerySubject) &&
            Contains(mLists.nodes, info->rightQuerySubject))
            mGraph->AddEdge(join, info->rightQuerySubject, info->leftQuerySubject,
                            AdjustWeight(*info), 0);
    }
}

void JoinTreeReference::WeighFavouredJoins()
{
    for (const amd_id& join : mLists.favouredJoins) {
        if (join.classCode != IdClassShortcutJoin &&
            ReadJoin(join, mUse == ETreeUse::ShortcutAware))
            mGraph->SetEdgeWeight(join, WeightOf(AQE_I_Refiner::EdgeTypeRelationship136));
    }
}

void JoinTreeReference::TakeRequiredJoins()
{
    const int weight = WeightOf(AQE_I_Refiner::EdgeTypeRelationship136);
    for (const amd_id& join : mLists.requiredJoins) {
        const auto info = ReadJoin(join, mUse == ETreeUse::ShortcutAware);
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
    if (mUse == ETreeUse::ShortcutAware)
        GrowByLibrary();
    else
        GrowPairwise();
    // The library's tree leaves no spanning subjects to close among.
    if (mTree->IsConnected())
        CloseTree();
}

void JoinTreeReference::GrowPairwise()
{
    Ids entities = mEntities;
    std::vector<Distance> pending = MeasurePairs();
    Labels labels;
    for (int label = 1; !AreAllLabelled(entities, labels); ++label) {
        const std::optional<Distance> cheapest = PickCheapest(pending, labels);
        if (!cheapest)
            break;
        std::erase_if(pending, [&](const Distance& distance) {
            return distance.from == cheapest->from && distance.to == cheapest->to;
        });
        const Ids newNodes = MergePath(*cheapest, labels, label, entities);
        AddDistances(pending, entities, newNodes, labels);
    }
    if (mTree->IsConnected())
        CollectSpanningSubjects();
}

std::vector<JoinTreeReference::Distance> JoinTreeReference::MeasurePairs()
{
    std::vector<Distance> pending;
    for (std::size_t i = 0; i < mEntities.size(); ++i) {
        for (std::size_t j = i + 1; j < mEntities.size(); ++j) {
            Distance distance{mEntities[i], mEntities[j], {}};
            mGraph->GetShortestPath(distance.from, distance.to, distance.path, distance.weight);
            if (distance.weight < 0)
                CheckCrossProduct(
                    NameOf(distance.from) + QERes::getString(29) + NameOf(distance.to), 1088);
            else
                pending.push_back(distance);
        }
    }
    return pending;
}

bool JoinTreeReference::AreAllLabelled(const Ids& entities, Labels& labels)
{
    return std::all_of(entities.begin(), entities.end(), [&](const amd_id& entity) {
        return labels[entity] != 0 && labels[entity] == labels[entities.front()];
    });
}

std::optional<JoinTreeReference::Distance>
JoinTreeReference::PickCheapest(const std::vector<Distance>& pending, Labels& labels)
{
    std::optional<Distance> cheapest;
    for (const Distance& distance : pending) {
        const bool isCandidate =
            labels[distance.from] == 0 || labels[distance.from] != labels[distance.to];
        if (isCandidate && (!cheapest || distance.weight < cheapest->weight))
            cheapest = distance;
    }
    return cheapest;
}

/// Takes the joins of the path into the tree, except those that would close a cycle, and returns
/// the nodes that are new with them.
Ids JoinTreeReference::MergePath(const Distance& distance, Labels& labels, int label,
                                 const Ids& entities)
{
    Ids newNodes;
    for (const amd_id& join : distance.path) {
        const auto info = ReadJoin(join, false);
        if (!info)
            continue;
        const amd_id& left = info->leftQuerySubject;
        const amd_id& right = info->rightQuerySubject;
        const int leftLabel = labels[left];
        const int rightLabel = labels[right];
        if (leftLabel == rightLabel && leftLabel != 0)
            continue;
        // Nodes between the entities keep the label of the piece they came with.
        for (const amd_id& entity : entities) {
            if (labels[entity] != 0 &&
                (labels[entity] == leftLabel || labels[entity] == rightLabel))
                labels[entity] = label;
        }
        labels[left] = label;
        labels[right] = label;
        mTree->AddNode(left);
        mTree->AddNode(right);
        mTree->AddEdge(join, right, left, mGraph->GetPathWeight({join}), 0);
        for (const amd_id& end : {right, left}) {
            if (!Contains(entities, end))
                AppendOnce(newNodes, end);
        }
    }
    return newNodes;
}

void JoinTreeReference::AddDistances(std::vector<Distance>& pending, Ids& entities,
                                     const Ids& newNodes, Labels& labels)
{
    Ids reached;
    for (const amd_id& entity : entities) {
        for (const amd_id& node : newNodes) {
            if (labels[node] == labels[entity])
                continue;
            Distance distance{entity, node, {}};
            mGraph->GetShortestPath(entity, node, distance.path, distance.weight);
            if (distance.weight < 0)
                continue;
            pending.push_back(distance);
            reached.push_back(node);
        }
    }
    Append(entities, reached);
}

void JoinTreeReference::CollectSpanningSubjects()
{
    Ids treeJoins;
    int weight = 0;
    mTree->GetMinimumSpanningTree(treeJoins, weight);
    for (const amd_id& join : treeJoins) {
        if (const auto info = ReadJoin(join, false)) {
            AppendOnce(mSpanningSubjects, info->rightQuerySubject);
            AppendOnce(mSpanningSubjects, info->leftQuerySubject);
        }
    }
}

/// Adds every join among the subjects of the spanning tree, so that there are paths to choose from.
void JoinTreeReference::CloseTree()
{
    for (const amd_id& subject : mSpanningSubjects) {
        Ids joins;
        mGraph->GetNodeEdges(subject, joins);
        for (const amd_id& join : joins) {
            const JoinInfo info = ReadJoin(join, false).value_or(JoinInfo());
            const amd_id& left = info.leftQuerySubject;
            const amd_id& right = info.rightQuerySubject;
            ORV_ASSERT(right == subject || left == subject,
                       "ORV_ASSERT(right == mMinimumSpanningTreeEntities [i] || left == "
                       "mMinimumSpanningTreeEntities [i]);",
                       kSource, 1305);
            if (Contains(mSpanningSubjects, right == subject ? left : right))
                mTree->AddEdge(join, right, left, mGraph->GetPathWeight({join}), 0);
        }
    }
}

void JoinTreeReference::GrowByLibrary()
{
    Ids treeNodes;
    Ids treeEdges;
    int weight = 0;
    mGraph->GetShortestPathTree(mEntities, treeNodes, treeEdges, weight);
    if (mEntities.size() > 1 && treeEdges.empty())
        CheckCrossProduct(DisplayNamesOf(mEntities), 935);
    for (const amd_id& edge : treeEdges) {
        // Nothing asks for the weights of this tree.
        if (const auto info = ReadJoin(edge, true))
            mTree->AddEdge(edge, info->rightQuerySubject, info->leftQuerySubject, 0, 0);
    }
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
    if (mConnected || ReadSetting("QueryEngine", "DoNotApplyCrossProductGovernor", 0) != 0 ||
        mServices.governors == nullptr)
        return;
    if (mServices.governors->crossProductAllowed == 2)
        RaiseCrossProduct(DisplayNamesOf(modelIds), 547);
    else
        Warn();
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

/// What happens in the pairwise and the library's growth when subjects lie apart.
void JoinTreeReference::CheckCrossProduct(const I18NString& names, int line)
{
    if (mServices.governors == nullptr)
        return;
    if (mServices.governors->crossProductAllowed == 1)
        Warn();
    if (mServices.governors->crossProductAllowed == 2)
        RaiseCrossProduct(names, line);
}

void JoinTreeReference::Warn()
{
    HBNMessage message(0xA9E29A41);
    AQE_I_Authentication* const user =
        mServices.context == nullptr ? nullptr : mServices.context->GetAuthentication();
    message.AddParameter(ORVMessageParm(AQE_GetUserClassesString(user)));
    AQE_Nag::CreateMessage(mServices.context, QF_Message_V3::SeverityWarning,
                           QF_Message_V3::TypeGovernor, message);
}

void JoinTreeReference::RaiseCrossProduct(const I18NString& names, int line)
{
    AQE_RequestContext* const context = mServices.context;
    if (context != nullptr && context->GetCommandType() == 3)
        return;
    AQE_I_Authentication* const user = context == nullptr ? nullptr : context->GetAuthentication();
    HBNException error(1, 101);
    HBNAddMessages(error, 0xA9EE8A4D, 2, names, AQE_GetUserClassesString(user), "", "", "", "");
    AUT_LogException(error, kSource, line);
    ORV_THROW(error, kSource, line, "QE");
}

I18NString JoinTreeReference::NameOf(const amd_id& id) const
{
    const amdi_object* const object = mServices.gateway->GetObject(id);
    return object == nullptr ? I18NString() : object->GetName();
}

I18NString JoinTreeReference::DisplayNamesOf(const Ids& ids) const
{
    I18NString names;
    for (std::size_t k = 0; k < ids.size(); ++k) {
        const amdi_object* const object = mServices.gateway->GetObject(ids[k]);
        if (object == nullptr)
            continue;
        if (k > 0)
            names += QERes::getString(29);
        I18NString name;
        object->GetDisplayName(name);
        names += name;
    }
    return names;
}

} // namespace qe::test
