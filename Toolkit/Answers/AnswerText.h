#ifndef TOOLKIT_ANSWERS_ANSWERTEXT_H
#define TOOLKIT_ANSWERS_ANSWERTEXT_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/Risks.h"
#include "Toolkit/Text/DisplayText.h"

#include <iosfwd>
#include <string>

namespace qe::tool {

/// Writes an answer for people: the path with its conditions, the alternatives (at most that
/// many), what decided, what it risks, and whatever the library had to say. Names are made harmless
/// for the terminal. A failure is not written: it is a diagnostic.
void WriteText(std::ostream& out, const Question& question, const Answer& answer,
               const Risks& risks, ListLimit alternatives);

/// Returns one line about a decision of the model: "For sales, stock the model prefers sales-store:
/// reason".
[[nodiscard]] std::string DescribeDecision(const AnswerDecision& decision);

/// Writes the table of the alternatives alone.
void WriteAlternatives(std::ostream& out, const Answer& answer, ListLimit alternatives);

} // namespace qe::tool

#endif
