#ifndef SOURCE_MAINOBJECT_PATHTREE_H
#define SOURCE_MAINOBJECT_PATHTREE_H

#include "MainObject/PathJoins.h"
#include "amd_id.h"

#include <cstddef>
#include <limits>
#include <set>
#include <vector>

namespace qe {

/// One query subject of a path, as seen from the root of its tree.
struct PathTreeNode
{
    static constexpr std::size_t kNoParent = std::numeric_limits<std::size_t>::max();

    /// The position of the node it was reached from; kNoParent at the root.
    std::size_t parent = kNoParent;
    amd_id id;
};

/// A join path, unfolded into a tree from one of its query subjects.
///
/// From each node the joins of the path that lead on are followed in path order, depth first, each
/// join once. On a path with a cycle a query subject occurs twice. The nodes lie in the order in
/// which they are reached, every parent before its children, so that walks over the tree are loops
/// over the nodes, however deep it is.
class PathTree
{
public:
    PathTree(const amd_id& root, const PathJoins& joins);

    [[nodiscard]] const std::vector<PathTreeNode>& GetNodes() const { return mNodes; }
    [[nodiscard]] const amd_id& GetParentId(const PathTreeNode& node) const
    {
        return mNodes[node.parent].id;
    }

    [[nodiscard]] std::set<amd_id> GetIds() const;

private:
    std::vector<PathTreeNode> mNodes;
};

/// Returns the root of the tree and every query subject that is joined to it through joins that are
/// exactly one-to-one at both ends, in tree order.
[[nodiscard]] std::vector<amd_id> CollectOneToOne(const PathTree& tree, const PathJoins& joins);

} // namespace qe

#endif
