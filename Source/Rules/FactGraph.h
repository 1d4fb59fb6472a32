#ifndef SOURCE_RULES_FACTGRAPH_H
#define SOURCE_RULES_FACTGRAPH_H

#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <iosfwd>
#include <vector>

namespace qe {

/// What became of a join that a fact graph was given.
enum class EFactJoin : std::uint8_t
{
    Added,
    /// The maximum at the left end is none of zero, one and many.
    LeftUnusable,
    /// The maximum at the right end is none of them; the left end is to-one.
    RightUnusableBesideOne,
    /// The maximum at the right end is none of them; the left end is to-many.
    RightUnusableBesideMany,
    /// Neither end can be the dimension.
    ManyToMany,
    /// The join is there, and the joins form a cycle with it.
    Cyclic,
};

/// One end of a join: a query subject and the maximum of its cardinality.
struct FactJoinEnd
{
    amd_id subject;
    std::int32_t maximum = 0;
};

/// Query subjects that count as one, with what hangs on them. Nodes are made and owned by a
/// FactGraph; the pointers between them are borrowed.
struct FactNode
{
    /// How many nodes of the graph are older.
    std::size_t mNumber = 0;
    /// The nodes that have this one as a dimension, each once.
    std::vector<FactNode*> mParents;
    /// The query subjects of the node in the order in which they came; never empty. The first one
    /// names the node. One that is joined one-to-one to itself before anything else stands twice.
    std::vector<amd_id> mIds;
    /// The dimensions of this node, each once, in the order in which they came.
    std::vector<FactNode*> mChildren;
};

/// The facts and dimensions of a set of joins, as a graph that only grows.
///
/// Query subjects joined one-to-one share a node. A one-to-many join makes the node on its to-one
/// side a child of the node on its to-many side. A node that was merged into another one stays,
/// because parents of its own may go on listing it.
class FactGraph
{
public:
    FactGraph() = default;
    FactGraph(const FactGraph&) = delete;
    FactGraph& operator=(const FactGraph&) = delete;

    /// Adds a join. One whose maxima are zero or one at both ends makes both query subjects one; of
    /// two nodes the one that is somebody's dimension is kept, that of the left end on a tie, and
    /// no cycle is looked for. One to-one and one to-many end make the query subject of the to-one
    /// end a dimension of the other; a join that is there already changes nothing then and is not
    /// checked for cycles. What is neither added nor cyclic changes nothing.
    [[nodiscard]] EFactJoin AddJoin(const FactJoinEnd& left, const FactJoinEnd& right);

    /// Forgets all joins and keeps the memory for others.
    void Clear() noexcept;

    /// Returns the node of the query subject; null when there is none.
    [[nodiscard]] FactNode* Find(const amd_id& id) const;

    /// Returns the nodes that are facts, in the order in which they became facts.
    [[nodiscard]] const std::vector<FactNode*>& GetRoots() const noexcept { return mRoots; }

    /// Writes the nodes by id and the tree below each fact. A node that lies below itself is named
    /// where it comes back and not written out again.
    void Dump(std::ostream& out) const;

private:
    void AddOneToOneJoin(const amd_id& a, const amd_id& b);
    [[nodiscard]] EFactJoin AddOneToManyJoin(const amd_id& one, const amd_id& many);
    [[nodiscard]] bool IsFoundAbove(const FactNode& node, const amd_id& id);
    FactNode& MakeNode(const amd_id& id);
    void MergeNodes(FactNode& from, FactNode& into, const amd_id& id);
    void RemoveRoot(const FactNode& node);

    struct NamedNode
    {
        amd_id id;
        FactNode* node;
    };

    [[nodiscard]] std::vector<NamedNode>::const_iterator FindPlace(const amd_id& id) const;
    void Name(const amd_id& id, FactNode& node);

    /// The nodes of the graph, and behind them those of earlier graphs, whose memory serves again.
    std::deque<FactNode> mNodes;
    std::size_t mNodeCount = 0;
    /// In the order of ids.
    std::vector<NamedNode> mNodeById;
    std::vector<FactNode*> mRoots;
    /// Whether a node may lie above itself, so that joins with a new query subject are looked at
    /// too.
    bool mMayBeCyclic = false;
    /// For each node by number, the last walk that came by it.
    std::vector<std::size_t> mVisits;
    std::size_t mWalkCount = 0;
    std::vector<const FactNode*> mPending;
};

} // namespace qe

#endif
