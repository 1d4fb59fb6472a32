#include "JoinTree/ShortestPathTree.h"

#include "AQE_I_QuerySubjectShortcutInfo.h"
#include "JoinTree/CrossProductGovernor.h"
#include "JoinTree/JoinTreeLog.h"
#include "Joins/GatewayCalls.h"

#include <cstddef>
#include <set>

namespace qe {

ShortestPathTree::ShortestPathTree(const RefinerServices& services, const JoinGraphs& graphs,
                                   const JoinEndsReader& endsReader)
    : mServices(services), mGraphs(graphs), mEndsReader(endsReader)
{}

SpanningTree ShortestPathTree::GrowPairwise(const Ids& entities,
                                            const PairwiseGrowth::NodeIndex& nodeIndex)
{
    JoinTreeLog log(mServices.gateway, mEndsReader);
    log.LogEntities(entities);
    const CrossProductGovernor governor(mServices);
    PairwiseGrowth growth(mGraphs.full, mGraphs.tree, nodeIndex, mEndsReader, log);
    growth.Grow(entities, [&](const amd_id& first, const amd_id& second) {
        governor.CheckCrossProduct([&] { return governor.GetPairNames(first, second); },
                                   host::kCrossProductOfPair);
    });
    SpanningTree spanningTree;
    if (!mGraphs.tree.IsConnected())
        return spanningTree;
    mGraphs.tree.GetMinimumSpanningTree(spanningTree.joins, spanningTree.weight);
    spanningTree.entities = CollectEnds(spanningTree.joins);
    return spanningTree;
}

ShortestPathTree::Ids ShortestPathTree::CollectEnds(const Ids& joins) const
{
    Ids collected;
    std::set<amd_id> present;
    for (const amd_id& join : joins) {
        const auto ends = mEndsReader.GetJoinEnds(join);
        if (!ends)
            continue;
        for (const amd_id& end : {ends->right, ends->left}) {
            if (present.insert(end).second)
                collected.push_back(end);
        }
    }
    return collected;
}

void ShortestPathTree::GrowByGraph(const Ids& entities)
{
    JoinTreeLog log(mServices.gateway, mEndsReader);
    log.LogEntities(entities);
    Ids nodes;
    Ids edges;
    int treeWeight = 0;
    mGraphs.full.GetShortestPathTree(entities, nodes, edges, treeWeight);
    log.LogLibraryTree(nodes.size(), edges.size());
    if (entities.size() > 1 && edges.empty()) {
        const CrossProductGovernor governor(mServices);
        governor.CheckCrossProduct([&] { return governor.JoinSubjectNames(entities); },
                                   host::kCrossProductOfShortestPaths);
    }
    for (std::size_t position = 0; position < edges.size(); ++position) {
        const auto ends = mEndsReader.GetJoinEnds(edges[position]);
        if (!ends)
            continue;
        // The weight asked for is that of the node at the edge's position, not of the edge.
        const int weight =
            mGraphs.full.GetPathWeight(position < nodes.size() ? Ids{nodes[position]} : Ids{});
        AddTreeEdge(edges[position], *ends, weight);
    }
}

void ShortestPathTree::AddTreeEdge(const amd_id& join, const JoinEnds& ends, int weight)
{
    mGraphs.tree.AddNode(ends.left);
    mGraphs.tree.AddNode(ends.right);
    mGraphs.tree.AddEdge(join, ends.right, ends.left, weight, 0);
}

void ShortestPathTree::CloseTree(const Ids& entities)
{
    JoinTreeLog log(mServices.gateway, mEndsReader);
    const std::set<amd_id> entitySet(entities.begin(), entities.end());
    const bool consultsShortcuts =
        mEndsReader.GetShortcutUse() == JoinEndsReader::EShortcutUse::Consult;
    const auto isReached = [&](const amd_id& id) {
        return entitySet.count(id) != 0 ||
               (consultsShortcuts && entitySet.count(mServices.shortcutInfo->GetGroupKey(id)) != 0);
    };
    for (const amd_id& entity : entities) {
        Ids joins;
        mGraphs.full.GetNodeEdges(entity, joins);
        log.LogClosingAt(entity, joins.size());
        for (const amd_id& join : joins) {
            const auto ends = mEndsReader.GetJoinEnds(join).value_or(JoinEnds());
            if (ends.right != entity && ends.left != entity)
                RaiseBrokenInvariant(host::kStrayJoinAtEntity);
            if (!isReached(ends.right == entity ? ends.left : ends.right))
                continue;
            log.LogClosingJoin(ends);
            AddTreeEdge(join, ends, mGraphs.full.GetPathWeight({join}));
        }
    }
}

} // namespace qe
