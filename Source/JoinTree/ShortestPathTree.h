#ifndef SOURCE_JOINTREE_SHORTESTPATHTREE_H
#define SOURCE_JOINTREE_SHORTESTPATHTREE_H

#include "JoinTree/CandidateGraph.h"
#include "JoinTree/PairwiseGrowth.h"
#include "Joins/JoinInfoReader.h"
#include "amd_id.h"

#include <cstdint>
#include <vector>

namespace qe {

/// The minimum spanning tree of a connected tree graph.
struct SpanningTree
{
    std::vector<amd_id> joins;
    std::int32_t weight = 0;
    /// The query subjects that its joins touch, in their order, each once.
    std::vector<amd_id> entities;
};

/// Connects the entities of a join tree by shortest paths in its tree graph, and closes the tree.
/// Writes what it does to the log.
class ShortestPathTree
{
public:
    using Ids = std::vector<amd_id>;

    /// Borrows all of them. Consults the shortcut information, which must then not be null, when
    /// the reader does.
    ShortestPathTree(const RefinerServices& services, const JoinGraphs& graphs,
                     const JoinEndsReader& endsReader);

    /// Grows the tree graph by merging the shortest paths between pairs of entities. The
    /// cross-product governor decides about each pair without a path. Returns the spanning tree;
    /// an empty one when the tree graph is not connected in the end.
    [[nodiscard]] SpanningTree GrowPairwise(const Ids& entities,
                                            const PairwiseGrowth::NodeIndex& nodeIndex);

    /// Adds the tree of shortest paths that the full graph itself finds. The cross-product governor
    /// decides when it finds none.
    void GrowByGraph(const Ids& entities);

    /// Adds every join of the full graph between two of the entities, or between one of them and
    /// the group of another, so that the alternatives can be listed. Raises an ORVAssertError at a
    /// join that cannot be read.
    void CloseTree(const Ids& entities);

private:
    [[nodiscard]] Ids CollectEnds(const Ids& joins) const;
    void AddTreeEdge(const amd_id& join, const JoinEnds& ends, int weight);

    RefinerServices mServices;
    JoinGraphs mGraphs;
    const JoinEndsReader& mEndsReader;
};

} // namespace qe

#endif
