#ifndef TOOLKIT_ASK_MODELDECISIONS_H
#define TOOLKIT_ASK_MODELDECISIONS_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Model/Decision.h"

#include <vector>

namespace qe::model {
class Model;
}

namespace qe::tool {

struct Question;
struct ResolvedQuestion;

/// Returns the decisions that hold for questions about such subjects, those that go first first:
/// the one about more subjects, then the earlier one. `asked` is in order.
[[nodiscard]] std::vector<const Decision*>
FindHoldingDecisions(const std::vector<Decision>& decisions, const std::vector<amd_id>& asked);

/// Makes the decisions of a model part of a question that they hold for: adds their joins to those
/// that it favours and avoids, and notes in it which decisions those are.
///
/// What the question itself says goes first: one that favours or requires joins takes no preferred
/// ones from the model, and a join that it names is not decided on. The joined subjects are found
/// without joins that are favoured or avoided, so no decision is about them.
void ApplyDecisions(const std::vector<Decision>& decisions, const Question& question,
                    ResolvedQuestion& resolved);

/// Returns the decision by names, as answers have it.
[[nodiscard]] AnswerDecision ToAnswerDecision(const model::Model& model, const Decision& decision);

} // namespace qe::tool

#endif
