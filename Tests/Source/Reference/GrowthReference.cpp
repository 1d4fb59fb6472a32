#include "Tests/Source/Reference/GrowthReference.h"

#include "ORVAssertError.h"
#include "QERes.h"

#include <algorithm>
#include <cstddef>

namespace qe::test {

using EShortcutJoins = TreeServices::EShortcutJoins;
using JoinInfo = AQE_I_Refiner::QEjoinInfo;

void GrowthReference::GrowPairwise()
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
    if (mTree.IsConnected())
        CollectSpanningSubjects();
}

std::vector<GrowthReference::Distance> GrowthReference::MeasurePairs()
{
    std::vector<Distance> pending;
    for (std::size_t i = 0; i < mEntities.size(); ++i) {
        for (std::size_t j = i + 1; j < mEntities.size(); ++j) {
            Distance distance{mEntities[i], mEntities[j], {}};
            mGraph.GetShortestPath(distance.from, distance.to, distance.path, distance.weight);
            if (distance.weight < 0)
                mServices.CheckCrossProduct(mServices.NameOf(distance.from) + QERes::getString(29) +
                                                mServices.NameOf(distance.to),
                                            1088);
            else
                pending.push_back(distance);
        }
    }
    return pending;
}

bool GrowthReference::AreAllLabelled(const Ids& entities, Labels& labels)
{
    return std::all_of(entities.begin(), entities.end(), [&](const amd_id& entity) {
        return labels[entity] != 0 && labels[entity] == labels[entities.front()];
    });
}

std::optional<GrowthReference::Distance>
GrowthReference::PickCheapest(const std::vector<Distance>& pending, Labels& labels)
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
Ids GrowthReference::MergePath(const Distance& distance, Labels& labels, int label,
                               const Ids& entities)
{
    Ids newNodes;
    for (const amd_id& join : distance.path) {
        const auto info = mServices.ReadJoin(join, EShortcutJoins::Ignored);
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
        mTree.AddNode(left);
        mTree.AddNode(right);
        mTree.AddEdge(join, right, left, mGraph.GetPathWeight({join}), 0);
        for (const amd_id& end : {right, left}) {
            if (!Contains(entities, end))
                AppendOnce(newNodes, end);
        }
    }
    return newNodes;
}

void GrowthReference::AddDistances(std::vector<Distance>& pending, Ids& entities,
                                   const Ids& newNodes, Labels& labels)
{
    Ids reached;
    for (const amd_id& entity : entities) {
        for (const amd_id& node : newNodes) {
            if (labels[node] == labels[entity])
                continue;
            Distance distance{entity, node, {}};
            mGraph.GetShortestPath(entity, node, distance.path, distance.weight);
            if (distance.weight < 0)
                continue;
            pending.push_back(distance);
            reached.push_back(node);
        }
    }
    entities.insert(entities.end(), reached.begin(), reached.end());
}

void GrowthReference::CollectSpanningSubjects()
{
    Ids treeJoins;
    int weight = 0;
    mTree.GetMinimumSpanningTree(treeJoins, weight);
    for (const amd_id& join : treeJoins) {
        if (const auto info = mServices.ReadJoin(join, EShortcutJoins::Ignored)) {
            AppendOnce(mSpanningSubjects, info->rightQuerySubject);
            AppendOnce(mSpanningSubjects, info->leftQuerySubject);
        }
    }
}

void GrowthReference::CloseTree()
{
    for (const amd_id& subject : mSpanningSubjects) {
        Ids joins;
        mGraph.GetNodeEdges(subject, joins);
        for (const amd_id& join : joins) {
            const JoinInfo info =
                mServices.ReadJoin(join, EShortcutJoins::Ignored).value_or(JoinInfo());
            const amd_id& left = info.leftQuerySubject;
            const amd_id& right = info.rightQuerySubject;
            ORV_ASSERT(right == subject || left == subject,
                       "ORV_ASSERT(right == mMinimumSpanningTreeEntities [i] || left == "
                       "mMinimumSpanningTreeEntities [i]);",
                       "Source/QEJoinTree", 1305);
            if (Contains(mSpanningSubjects, right == subject ? left : right))
                mTree.AddEdge(join, right, left, mGraph.GetPathWeight({join}), 0);
        }
    }
}

void GrowthReference::GrowByLibrary()
{
    Ids treeNodes;
    Ids treeEdges;
    int weight = 0;
    mGraph.GetShortestPathTree(mEntities, treeNodes, treeEdges, weight);
    if (mEntities.size() > 1 && treeEdges.empty())
        mServices.CheckCrossProduct(mServices.DisplayNamesOf(mEntities), 935);
    for (const amd_id& edge : treeEdges) {
        // Nothing asks for the weights of this tree.
        if (const auto info = mServices.ReadJoin(edge, EShortcutJoins::Read))
            mTree.AddEdge(edge, info->rightQuerySubject, info->leftQuerySubject, 0, 0);
    }
}

} // namespace qe::test
