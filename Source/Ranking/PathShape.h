#ifndef SOURCE_RANKING_PATHSHAPE_H
#define SOURCE_RANKING_PATHSHAPE_H

#include "I18NString.h"
#include "Joins/JoinInfoReader.h"
#include "amd_id.h"

#include <cstdint>
#include <set>
#include <vector>

namespace qe {

/// The names of the joins of a path.
using PathSignature = std::set<I18NString>;

/// Counts the fact tables among the query subjects of a path, as the fact finder tells them from
/// the cardinalities of its joins. Each many-to-many join counts for 10000 more. Joins that cannot
/// be read are passed over. Errors of the fact finder pass through.
[[nodiscard]] std::int32_t CountFactTables(const std::vector<amd_id>& path,
                                           const JoinInfoReader& joinInfos);

/// Adds to `weight` how much a path branches: for every query subject that more than two ends of
/// its joins meet, their number less two. A chain keeps its weight.
[[nodiscard]] std::int32_t AdjustWeightForStraightness(const std::vector<amd_id>& path,
                                                       std::int32_t weight,
                                                       const JoinInfoReader& joinInfos);

/// Gives the names of the joins of a path; a join that cannot be read goes by the name "Dummy".
[[nodiscard]] PathSignature GetPathSignature(const std::vector<amd_id>& path,
                                             const JoinInfoReader& joinInfos);

} // namespace qe

#endif
