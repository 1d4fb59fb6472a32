#ifndef SOURCE_MAINOBJECT_PATHTREESCORE_H
#define SOURCE_MAINOBJECT_PATHTREESCORE_H

#include "MainObject/PathJoins.h"
#include "MainObject/PathTree.h"
#include "amd_id.h"

#include <cstdint>
#include <set>

namespace qe {

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
