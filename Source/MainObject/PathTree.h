#ifndef SOURCE_MAINOBJECT_PATHTREE_H
#define SOURCE_MAINOBJECT_PATHTREE_H

#include "MainObject/PathJoins.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
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

/// The score of the root of a path tree.
constexpr std::int32_t kRootScore = 65536;

/// What makes a score grow or shrink on the step from a node to its child.
enum class EScoring
{
    /// Doubles towards a "many" end.
    Test,
    /// Doubles towards a "many" end, and away from an optional end.
    TestWithOptional,
    /// Halves away from a "many" end, otherwise doubles towards a "many" end.
    FindCandidates
};

/// The outcome of one scoring pass.
struct PathTreeScore
{
    /// The highest score, of the nodes that were scored.
    std::int32_t maxScore = 0;
    /// Whether a many-to-many join ended the pass before all nodes were scored.
    bool metManyToMany = false;
    /// The query subjects that have the highest score; none after a many-to-many join.
    std::set<amd_id> best;
};

/// Scores the nodes of a path tree in tree order.
///
/// Each node has a running score, at first its own; each of its children in turn changes it by
/// that child's factor and takes it over. So the factors of siblings compound: after a doubling
/// child the next one starts from the doubled score. Scores are cut to whole numbers, and stay at
/// the largest 32-bit number once they have reached it.
[[nodiscard]] PathTreeScore ScoreTree(const PathTree& tree, const PathJoins& joins,
                                      EScoring scoring);

} // namespace qe

#endif
