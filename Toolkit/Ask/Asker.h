#ifndef TOOLKIT_ASK_ASKER_H
#define TOOLKIT_ASK_ASKER_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"

namespace qe::tool {

struct ToolModel;

/// Returns what the refiner answers to the question, in a request of its own. The candidate graph
/// is the whole model but for the question's restriction. What the library throws is part of the
/// answer.
///
/// Throws InputError, with all mistakes, when names in the question do not name one object each,
/// and std::invalid_argument for ESelector::Ask without a function. Any number of threads may ask
/// one model.
[[nodiscard]] Answer Ask(const ToolModel& model, const Question& question);

} // namespace qe::tool

#endif
