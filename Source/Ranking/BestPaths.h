#ifndef SOURCE_RANKING_BESTPATHS_H
#define SOURCE_RANKING_BESTPATHS_H

#include "Joins/JoinInfoReader.h"
#include "amd_id.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe {

/// Gives the positions of the paths that have the least weight and, among those, the fewest fact
/// tables, in ascending order. `weights` holds one weight for each path.
[[nodiscard]] std::vector<std::size_t>
SelectBestPaths(const std::vector<std::vector<amd_id>>& paths,
                const std::vector<std::int32_t>& weights, const JoinInfoReader& joinInfos);

} // namespace qe

#endif
