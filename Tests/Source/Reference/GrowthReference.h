#ifndef TESTS_SOURCE_REFERENCE_GROWTHREFERENCE_H
#define TESTS_SOURCE_REFERENCE_GROWTHREFERENCE_H

#include "AQE_I_UndirectedGraph.h"
#include "Tests/Source/Reference/TreeServices.h"

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace qe::test {

/// Grows a tree by shortest paths in a graph, pair by pair, and closes it afterwards, or takes the
/// tree that the graph itself has.
class GrowthReference
{
public:
    GrowthReference(const TreeServices& services, AQE_I_UndirectedGraph& graph,
                    AQE_I_UndirectedGraph& tree, Ids entities)
        : mServices(services), mGraph(graph), mTree(tree), mEntities(std::move(entities))
    {}

    void GrowPairwise();
    /// Adds every join among the subjects of the spanning tree that the pairwise growth has left,
    /// so that there are paths to choose from.
    void CloseTree();
    void GrowByLibrary();

private:
    struct Distance
    {
        amd_id from;
        amd_id to;
        Ids path;
        int weight = 0;
    };

    /// 0 for what is not in the tree; the same number for what is in one piece of it.
    using Labels = std::map<amd_id, int>;

    [[nodiscard]] std::vector<Distance> MeasurePairs();
    [[nodiscard]] static bool AreAllLabelled(const Ids& entities, Labels& labels);
    [[nodiscard]] static std::optional<Distance> PickCheapest(const std::vector<Distance>& pending,
                                                              Labels& labels);
    [[nodiscard]] Ids MergePath(const Distance& distance, Labels& labels, int label,
                                const Ids& entities);
    void AddDistances(std::vector<Distance>& pending, Ids& entities, const Ids& newNodes,
                      Labels& labels);
    void CollectSpanningSubjects();

    const TreeServices& mServices;
    AQE_I_UndirectedGraph& mGraph;
    AQE_I_UndirectedGraph& mTree;
    Ids mEntities;
    Ids mSpanningSubjects;
};

} // namespace qe::test

#endif
