#include "JoinTree/CandidateGraph.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "AQE_I_Refiner.h"
#include "IdClass.h"

#include <algorithm>

namespace qe {

namespace {

int GetTakeFirstWeight()
{
    return AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeRelationship136);
}

} // namespace

CandidateGraph::CandidateGraph(const JoinGraphs& graphs, const JoinEndsReader& endsReader,
                               AQE_I_QuerySubjectShortcutInfo* shortcutInfo)
    : mGraphs(graphs), mEndsReader(endsReader), mShortcutInfo(shortcutInfo)
{}

void CandidateGraph::Load(const Ids& nodes, const Ids& joins, const Ids& requiredJoins)
{
    Ids sorted = nodes;
    std::sort(sorted.begin(), sorted.end());
    if (mShortcutInfo != nullptr)
        mShortcutInfo->Initialize(nodes, joins, requiredJoins);
    for (const amd_id& node : sorted)
        mGraphs.full.AddNode(node);

    const auto isCandidate = [&](const amd_id& node) {
        return std::binary_search(sorted.begin(), sorted.end(), node);
    };
    for (const amd_id& join : joins) {
        const auto weighed = mEndsReader.GetWeighedJoin(join);
        if (weighed && isCandidate(weighed->ends.left) && isCandidate(weighed->ends.right))
            mGraphs.full.AddEdge(join, weighed->ends.right, weighed->ends.left, weighed->weight, 0);
    }
}

void CandidateGraph::Favour(const Ids& favouredJoins)
{
    for (const amd_id& join : favouredJoins) {
        if (join.classCode != IdClassShortcutJoin && mEndsReader.GetJoinEnds(join))
            mGraphs.full.SetEdgeWeight(join, GetTakeFirstWeight());
    }
}

void CandidateGraph::Require(const Ids& requiredJoins, Ids& entities)
{
    for (const amd_id& join : requiredJoins) {
        const auto ends = mEndsReader.GetJoinEnds(join);
        if (!ends)
            continue;
        AddEntity(ends->right, entities);
        AddEntity(ends->left, entities);
        mGraphs.tree.AddEdge(join, ends->right, ends->left, GetTakeFirstWeight(), 0);
        mGraphs.full.AddNode(ends->right);
        mGraphs.full.AddNode(ends->left);
        // An edge that is there already stays as it is when it is added, and is only made cheaper.
        mGraphs.full.AddEdge(join, ends->right, ends->left, GetTakeFirstWeight(), 0);
        mGraphs.full.SetEdgeWeight(join, GetTakeFirstWeight());
    }
}

void CandidateGraph::AddEntity(const amd_id& id, Ids& entities)
{
    if (std::find(entities.begin(), entities.end(), id) != entities.end())
        return;
    entities.push_back(id);
    mGraphs.tree.AddNode(id);
}

void CandidateGraph::AddShortcutJoins()
{
    if (mShortcutInfo == nullptr)
        return;
    for (const auto& info : mShortcutInfo->GetShortcutJoins())
        mGraphs.full.AddEdge(info.joinId, info.rightQuerySubject, info.leftQuerySubject,
                             info.weight, 0);
}

void CandidateGraph::Avoid(const Ids& avoidedJoins)
{
    // The weight is asked for join by join: the first look at it reads a setting, which must not
    // happen where nothing is avoided.
    for (const amd_id& join : avoidedJoins)
        mGraphs.full.SetEdgeWeight(
            join, AQE_I_Refiner::GetEdgeWeightForType(AQE_I_Refiner::EdgeTypeNone));
}

} // namespace qe
