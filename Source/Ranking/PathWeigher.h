#ifndef SOURCE_RANKING_PATHWEIGHER_H
#define SOURCE_RANKING_PATHWEIGHER_H

#include "Joins/RefinerServices.h"
#include "amd_id.h"

#include <cstdint>
#include <map>
#include <set>
#include <vector>

class AQE_JoinTree;

namespace qe {

/// Weighs the candidate paths of one join tree; less is better.
///
/// A path weighs the sum of the weights that its joins have in the tree's graph. With the setting
/// "AdjustWeightByFolder" (section "General Options", off by default, read once in the life of the
/// process) each of them counts a thousandfold, and joins that are kept far from what they join
/// get their folder distance on top, so that the distance decides only between paths of equal
/// weight. Sums wrap around at 32 bits.
class PathWeigher
{
public:
    using Ids = std::vector<amd_id>;

    /// Borrows the tree. The joins of both lists, joins of the query and synthetic joins are
    /// exempt from the folder distance.
    PathWeigher(const RefinerServices& services, const AQE_JoinTree& tree, const Ids& favouredJoins,
                const Ids& requiredJoins);

    [[nodiscard]] std::int32_t ComputePathWeight(const Ids& path);

private:
    enum class EFolders
    {
        Ignore,
        Count
    };

    static EFolders GetFolderMode();

    [[nodiscard]] std::int32_t ComputeTerm(const amd_id& join, EFolders folders) const;
    [[nodiscard]] bool IsExempt(const amd_id& join) const;

    RefinerServices mServices;
    const AQE_JoinTree& mTree;
    std::set<amd_id> mExemptJoins;
    /// What each join adds to a path; alternatives share most of their joins.
    std::map<amd_id, std::int32_t> mTerms;
};

} // namespace qe

#endif
