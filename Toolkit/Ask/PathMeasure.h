#ifndef TOOLKIT_ASK_PATHMEASURE_H
#define TOOLKIT_ASK_PATHMEASURE_H

#include "Source/Rules/RankingCriteria.h"
#include "Toolkit/Ask/Answer.h"

#include <string_view>
#include <vector>

namespace qe::tool {

/// Returns the path measured by all criteria of the ranking: its weight is the sum of those of its
/// joins, and it has no rank. Joins that the answer does not know count for nothing.
[[nodiscard]] Alternative MeasurePath(const Answer& answer, const std::vector<amd_id>& path);

/// Returns what made the first of the ranked alternatives the first: the name of the first
/// criterion that is on and in which the next best is worse, or else one of namespace decision.
[[nodiscard]] std::string_view FindDecision(const Answer& answer, const RankingSwitches& switches);

} // namespace qe::tool

#endif
