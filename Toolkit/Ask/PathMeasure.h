#ifndef TOOLKIT_ASK_PATHMEASURE_H
#define TOOLKIT_ASK_PATHMEASURE_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"

namespace qe::tool {

/// Makes an alternative of a path: its weight is the sum of those of its joins, and it has no
/// rank. Joins that the answer does not know count for nothing.
[[nodiscard]] Alternative MeasurePath(const Answer& answer, const std::vector<amd_id>& path);

/// Tells what made the first of the ranked alternatives the first: the first criterion in which
/// the next best is worse.
[[nodiscard]] ECriterion FindCriterion(const Answer& answer, const RankingChoice& ranking);

} // namespace qe::tool

#endif
