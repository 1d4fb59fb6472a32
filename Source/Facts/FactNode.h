#ifndef SOURCE_FACTS_FACTNODE_H
#define SOURCE_FACTS_FACTNODE_H

#include "amd_id.h"

#include <set>
#include <vector>

namespace qe {

/// Query subjects that count as one, with what hangs on them. Nodes are made and owned by a
/// FactGraph; the pointers between them are borrowed.
struct FactNode
{
    explicit FactNode(const amd_id& id) : mIds{id} {}

    /// The nodes that have this one as a dimension. The set tells membership only: nothing
    /// observable may follow its order, which is that of addresses.
    std::set<FactNode*> mParents;
    /// The query subjects of the node in the order in which they came, each once; never empty. The
    /// first one names the node.
    std::vector<amd_id> mIds;
    /// The dimensions of this node, each once, in the order in which they came.
    std::vector<FactNode*> mChildren;
};

} // namespace qe

#endif
