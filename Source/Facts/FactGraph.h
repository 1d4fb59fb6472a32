#ifndef SOURCE_FACTS_FACTGRAPH_H
#define SOURCE_FACTS_FACTGRAPH_H

#include "Facts/FactNode.h"
#include "amd_id.h"

#include <map>
#include <memory>
#include <vector>

namespace qe {

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

    /// Makes both query subjects one. Two nodes become one: the node that is somebody's dimension
    /// is kept, that of `a` on a tie. There is no check for cycles.
    void AddOneToOneJoin(const amd_id& a, const amd_id& b);

    /// Makes `one` a dimension of `many`. Raises an HBNException when the joins then form a cycle;
    /// the join stays all the same. A join that is there already changes nothing and is not
    /// checked.
    void AddOneToManyJoin(const amd_id& one, const amd_id& many);

    /// Gives the node that holds `id`; null when there is none.
    [[nodiscard]] FactNode* Find(const amd_id& id) const;

    /// Gives the nodes that are facts, in the order in which they became facts.
    [[nodiscard]] const std::vector<FactNode*>& GetRoots() const noexcept { return mRoots; }

    /// Gives every id of the joins with the node that holds it now.
    [[nodiscard]] const std::map<amd_id, FactNode*>& GetNodesById() const noexcept
    {
        return mNodeById;
    }

private:
    FactNode& MakeNode(const amd_id& id);
    void MergeNodes(FactNode& from, FactNode& into, const amd_id& id);
    void RemoveRoot(const FactNode& node);

    std::vector<std::unique_ptr<FactNode>> mNodes;
    std::vector<FactNode*> mRoots;
    std::map<amd_id, FactNode*> mNodeById;
};

} // namespace qe

#endif
