#ifndef SOURCE_JOINTREE_PAIRWISEGROWTH_H
#define SOURCE_JOINTREE_PAIRWISEGROWTH_H

#include "AQE_I_UndirectedGraph.h"
#include "AUT_RefPtr.h"
#include "JoinTree/JoinTreeLog.h"
#include "Joins/JoinInfoReader.h"
#include "amd_id.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <queue>
#include <utility>
#include <vector>

namespace qe {

/// Grows a tree that connects some nodes of a graph, the entities, by merging shortest paths.
///
/// Every node carries a label: 0 outside the tree, and otherwise the number of its connected
/// piece. When pieces merge, their entities take the new number; a node between them that is no
/// entity keeps its old one until a path passes it again. Shortest paths between all pairs of
/// entities wait in the order in which they were found; the shortest one whose ends carry different
/// labels is merged next, the one found first among equals. The nodes on a merged path become
/// entities too, with shortest paths from the entities of other pieces. The growth ends when all
/// entities carry one label, or when no path is left.
///
/// The paths wait in a heap as well, by weight and then by the order in which they were found.
/// Entities of one piece stay in one piece, so a path between two of them is dropped from the heap
/// for good when it comes up.
///
/// This approximates a minimum Steiner tree by shortest paths (Kou, Markowsky and Berman 1981,
/// with the intermediate nodes as further terminals). For n entities it asks for n(n-1)/2 shortest
/// paths and then for one from each entity to each new node. With the log on, a new node is an
/// entity once for each that reached it, as the log shows them, so that their number may double
/// with each merged path.
class PairwiseGrowth
{
public:
    using Ids = std::vector<amd_id>;
    using NodeIndex = std::map<amd_id, std::int32_t>;
    /// Called for each pair of entities without a path between them. What it throws ends the
    /// growth.
    using UnconnectedPair = std::function<void(const amd_id& first, const amd_id& second)>;

    /// Borrows all of them. Paths are found in `graph` and merged into `tree`; `nodeIndex` numbers
    /// the nodes of `graph` from 0.
    PairwiseGrowth(AQE_I_UndirectedGraph& graph, AQE_I_UndirectedGraph& tree,
                   const NodeIndex& nodeIndex, const JoinEndsReader& endsReader, JoinTreeLog& log);

    /// Connects the entities as far as they can be.
    void Grow(const Ids& entities, const UnconnectedPair& onUnconnectedPair);

private:
    using DistancePtr = AUT_RefPtr<JoinDistance>;

    void FindPairwiseDistances(const UnconnectedPair& onUnconnectedPair);
    const JoinDistance& AddDistance(const amd_id& from, const amd_id& to, Ids path, int weight);
    [[nodiscard]] bool AllLabelled() const;
    [[nodiscard]] DistancePtr PickCheapest();
    [[nodiscard]] bool IsRemoved(std::size_t position) const;
    void RemoveSameDistances(const JoinDistance& distance);
    [[nodiscard]] JoinTreeLog::PendingDistances ListPending() const;
    [[nodiscard]] Ids MergePath(const JoinDistance& distance);
    [[nodiscard]] bool MergePieces(const JoinEnds& ends, std::int32_t label);
    void AddJoinToTree(const amd_id& join, const JoinEnds& ends);
    void AddDistances(const Ids& newNodes);

    [[nodiscard]] std::int32_t GetIndex(const amd_id& node) const;
    [[nodiscard]] std::int32_t GetLabelAt(std::int32_t index) const;
    [[nodiscard]] std::int32_t GetLabel(const amd_id& node) const;
    void SetLabel(const amd_id& node, std::int32_t label);

    AQE_I_UndirectedGraph& mGraph;
    AQE_I_UndirectedGraph& mTree;
    const NodeIndex& mNodeIndex;
    const JoinEndsReader& mEndsReader;
    JoinTreeLog& mLog;

    Ids mEntities;
    std::vector<std::int32_t> mLabels;
    std::int32_t mNextLabel = 1;
    /// Where a distance stands among all that were found.
    struct HeapEntry
    {
        std::int32_t weight;
        std::size_t position;
        friend auto operator<=>(const HeapEntry&, const HeapEntry&) = default;
    };

    /// In the order in which they were found.
    std::vector<DistancePtr> mDistances;
    std::priority_queue<HeapEntry, std::vector<HeapEntry>, std::greater<>> mHeap;
    /// For the two ends of a merged distance, how many distances had been found by then: those
    /// among them with the same ends are removed.
    std::map<std::pair<amd_id, amd_id>, std::size_t> mRemoved;
};

} // namespace qe

#endif
