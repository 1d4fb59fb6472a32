#ifndef TOOLKIT_ANSWERS_TEXTANSWER_H
#define TOOLKIT_ANSWERS_TEXTANSWER_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"

#include <cstddef>
#include <iosfwd>

namespace qe::tool {

/// Writes an answer for people: the path with its conditions, the alternatives (at most that
/// many), what decided, and whatever the library had to say. Names are made harmless for the
/// terminal. A failure is not written: it is a diagnostic.
void WriteText(std::ostream& out, const Question& question, const Answer& answer,
               std::size_t maximumAlternatives);

/// Writes the table of the alternatives alone.
void WriteAlternatives(std::ostream& out, const Answer& answer, std::size_t maximumAlternatives);

} // namespace qe::tool

#endif
