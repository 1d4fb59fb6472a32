#include "JoinTree/PairwiseGrowth.h"

#include <algorithm>
#include <utility>

namespace qe {

namespace {

bool Contains(const std::vector<amd_id>& ids, const amd_id& id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

} // namespace

PairwiseGrowth::PairwiseGrowth(AQE_I_UndirectedGraph& graph, AQE_I_UndirectedGraph& tree,
                               const NodeIndex& nodeIndex, const JoinEndsReader& endsReader,
                               JoinTreeLog& log)
    : mGraph(graph), mTree(tree), mNodeIndex(nodeIndex), mEndsReader(endsReader), mLog(log)
{}

void PairwiseGrowth::Grow(const Ids& entities, const UnconnectedPair& onUnconnectedPair)
{
    mEntities = entities;
    FindPairwiseDistances(onUnconnectedPair);
    mLabels.assign(mNodeIndex.size(), 0);
    mNextLabel = 1;
    mLog.LogDistanceCount(mDistances.size());
    while (!AllLabelled()) {
        const DistancePtr distance = PickCheapest();
        mLog.LogProcessing(distance.Get());
        if (!distance)
            break;
        RemoveSameDistances(*distance);
        AddDistances(MergePath(*distance));
    }
    if (mLog.IsOn())
        mLog.LogRemaining(ListPending());
}

void PairwiseGrowth::FindPairwiseDistances(const UnconnectedPair& onUnconnectedPair)
{
    for (std::size_t i = 0; i < mEntities.size(); ++i) {
        for (std::size_t j = i + 1; j < mEntities.size(); ++j) {
            Ids path;
            int weight = -1;
            mGraph.GetShortestPath(mEntities[i], mEntities[j], path, weight);
            mLog.LogPath(path, weight);
            if (weight < 0)
                onUnconnectedPair(mEntities[i], mEntities[j]);
            else
                mLog.LogAdded(AddDistance(mEntities[i], mEntities[j], std::move(path), weight));
        }
    }
}

const JoinDistance& PairwiseGrowth::AddDistance(const amd_id& from, const amd_id& to, Ids path,
                                                int weight)
{
    mHeap.push({.weight = weight, .position = mDistances.size()});
    mDistances.push_back(DistancePtr(new JoinDistance{.from = from,
                                                      .to = to,
                                                      .path = std::move(path),
                                                      .weight = weight,
                                                      .fromIndex = GetIndex(from),
                                                      .toIndex = GetIndex(to)}));
    return *mDistances.back();
}

bool PairwiseGrowth::AllLabelled() const
{
    if (mEntities.empty())
        return true;
    const std::int32_t label = GetLabel(mEntities.front());
    return label != 0 && std::all_of(mEntities.begin(), mEntities.end(), [&](const amd_id& entity) {
               return GetLabel(entity) == label;
           });
}

PairwiseGrowth::DistancePtr PairwiseGrowth::PickCheapest()
{
    for (; !mHeap.empty(); mHeap.pop()) {
        const std::size_t position = mHeap.top().position;
        const JoinDistance& distance = *mDistances[position];
        const std::int32_t fromLabel = GetLabelAt(distance.fromIndex);
        const bool isCandidate = fromLabel == 0 || fromLabel != GetLabelAt(distance.toIndex);
        if (isCandidate && !IsRemoved(position))
            return mDistances[position];
    }
    return DistancePtr();
}

bool PairwiseGrowth::IsRemoved(std::size_t position) const
{
    const JoinDistance& distance = *mDistances[position];
    const auto removed = mRemoved.find({distance.from, distance.to});
    return removed != mRemoved.end() && position < removed->second;
}

void PairwiseGrowth::RemoveSameDistances(const JoinDistance& distance)
{
    mRemoved[{distance.from, distance.to}] = mDistances.size();
}

/// Returns what was found and not removed, in the order in which it was found.
JoinTreeLog::PendingDistances PairwiseGrowth::ListPending() const
{
    JoinTreeLog::PendingDistances pending;
    for (std::size_t position = 0; position < mDistances.size(); ++position) {
        if (!IsRemoved(position))
            pending.push_back(mDistances[position]);
    }
    return pending;
}

PairwiseGrowth::Ids PairwiseGrowth::MergePath(const JoinDistance& distance)
{
    const std::int32_t label = mNextLabel++;
    Ids newNodes;
    for (const amd_id& join : distance.path) {
        const auto ends = mEndsReader.GetJoinEnds(join);
        if (!ends || !MergePieces(*ends, label))
            continue;
        AddJoinToTree(join, *ends);
        for (const amd_id& node : {ends->right, ends->left})
            if (!Contains(mEntities, node) && !Contains(newNodes, node))
                newNodes.push_back(node);
    }
    return newNodes;
}

/// Sets the label of both ends, and of the entities of the pieces that they belonged to. Returns
/// false, and changes nothing, when the ends are in one piece already.
bool PairwiseGrowth::MergePieces(const JoinEnds& ends, std::int32_t label)
{
    const std::int32_t leftLabel = GetLabel(ends.left);
    const std::int32_t rightLabel = GetLabel(ends.right);
    if (leftLabel != 0 && leftLabel == rightLabel)
        return false;
    SetLabel(ends.left, label);
    SetLabel(ends.right, label);
    for (const amd_id& entity : mEntities) {
        const std::int32_t entityLabel = GetLabel(entity);
        if (entityLabel != 0 && (entityLabel == leftLabel || entityLabel == rightLabel))
            SetLabel(entity, label);
    }
    return true;
}

void PairwiseGrowth::AddJoinToTree(const amd_id& join, const JoinEnds& ends)
{
    mTree.AddNode(ends.left);
    mTree.AddNode(ends.right);
    mTree.AddEdge(join, ends.right, ends.left, mGraph.GetPathWeight({join}), 0);
}

void PairwiseGrowth::AddDistances(const Ids& newNodes)
{
    Ids reached;
    for (const amd_id& entity : mEntities) {
        for (const amd_id& node : newNodes) {
            if (GetLabel(entity) == GetLabel(node))
                continue;
            Ids path;
            int weight = -1;
            mGraph.GetShortestPath(entity, node, path, weight);
            if (weight < 0)
                continue;
            AddDistance(entity, node, std::move(path), weight);
            // One entry a node is enough: a second one only yields distances equal to those of the
            // first, which wait behind them and go with them. The log shows them all.
            if (mLog.IsOn() || !Contains(reached, node))
                reached.push_back(node);
        }
    }
    mEntities.insert(mEntities.end(), reached.begin(), reached.end());
}

std::int32_t PairwiseGrowth::GetIndex(const amd_id& node) const
{
    const auto found = mNodeIndex.find(node);
    return found == mNodeIndex.end() ? -1 : found->second;
}

std::int32_t PairwiseGrowth::GetLabelAt(std::int32_t index) const
{
    return index < 0 ? 0 : mLabels[static_cast<std::size_t>(index)];
}

std::int32_t PairwiseGrowth::GetLabel(const amd_id& node) const
{
    return GetLabelAt(GetIndex(node));
}

void PairwiseGrowth::SetLabel(const amd_id& node, std::int32_t label)
{
    if (const std::int32_t index = GetIndex(node); index >= 0)
        mLabels[static_cast<std::size_t>(index)] = label;
}

} // namespace qe
