#ifndef TOOLKIT_EVALUATE_EVALUATOR_H
#define TOOLKIT_EVALUATE_EVALUATOR_H

#include "Toolkit/Ask/Question.h"
#include "Toolkit/Evaluate/Evaluation.h"

#include <iosfwd>

namespace qe::tool {

class ModelSource;

/// Asks the requests, one JSON object a line with the joins that a person wrote, and compares. A
/// request holds, beside what a batch reads, `joins`: a list of pairs of "table.column"; `db`
/// where there are several models; `given` and `case` where the output is to be split by them. A
/// line that cannot be answered counts as refused and the rest go on.
[[nodiscard]] Evaluation Evaluate(ModelSource& models, std::istream& requests,
                                  const Question& defaults);

} // namespace qe::tool

#endif
