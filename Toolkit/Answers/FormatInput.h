#ifndef TOOLKIT_ANSWERS_FORMATINPUT_H
#define TOOLKIT_ANSWERS_FORMATINPUT_H

#include "Toolkit/Answers/AnswerSql.h"
#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/EndingSignals.h"

#include <cstddef>
#include <string>

namespace qe::tool {

struct ToolModel;

/// What the user may choose about the form of an answer.
struct FormatOptions
{
    ListLimit alternatives{10};
    SqlOptions sql{};
    /// The model file as the command line named it, where a choice can be kept in it; else empty.
    std::string modelFile{};
    /// For pictures, which another program draws.
    EEndingSignals signals = EEndingSignals::Caught;
};

/// Everything that a writer of answers can draw on. Refers to the model, question and answer.
struct FormatInput
{
    const ToolModel& model;
    const Question& question;
    const Answer& answer;
    FormatOptions options{};
};

} // namespace qe::tool

#endif
