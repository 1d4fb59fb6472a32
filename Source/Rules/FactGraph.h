#ifndef SOURCE_RULES_FACTGRAPH_H
#define SOURCE_RULES_FACTGRAPH_H

#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <memory>
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

/// One end of a join: a query subject, by the number that the graph has for it, and the maximum of
/// its cardinality.
struct FactJoinEnd
{
    std::uint32_t subject = 0;
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

    /// Returns the number of a query subject: 0, 1, 2, ... in the order in which they are first
    /// asked for. Clear leaves the numbers as they are.
    [[nodiscard]] std::uint32_t GetNumber(const amd_id& id);

    /// Returns how many query subjects have a number.
    [[nodiscard]] std::size_t GetNumberCount() const noexcept { return mSubjects.size(); }

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
    /// A query subject that has a number.
    struct Subject
    {
        amd_id id;
        /// Its node in the graph that was begun with this number.
        FactNode* node = nullptr;
        std::size_t graphNumber = 0;
    };

    void AddOneToOneJoin(std::uint32_t a, std::uint32_t b);
    [[nodiscard]] EFactJoin AddOneToManyJoin(std::uint32_t one, std::uint32_t many);
    [[nodiscard]] bool IsFoundAbove(const FactNode& node, const amd_id& id);
    [[nodiscard]] FactNode* GetNode(const Subject& subject) const;
    FactNode& MakeNode(std::uint32_t subject);
    void AddToNode(std::uint32_t subject, FactNode& node);
    void MergeNodes(FactNode& from, FactNode& into, const amd_id& id);
    void RemoveRoot(const FactNode& node);
    void Name(Subject& subject, FactNode& node);

    /// The nodes of the graph, and behind them those of earlier graphs, whose memory serves again.
    std::vector<std::unique_ptr<FactNode>> mNodes;
    std::size_t mNodeCount = 0;
    std::map<amd_id, std::uint32_t> mNumberById;
    /// By number.
    std::vector<Subject> mSubjects;
    std::size_t mGraphNumber = 1;
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
