#ifndef TOOLKIT_ANSWERS_ANSWERJSON_H
#define TOOLKIT_ANSWERS_ANSWERJSON_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Text/DisplayText.h"

#include <nlohmann/json.hpp>

namespace qe::tool {

/// The version of the form that Documentation/json-output.md describes.
inline constexpr int kAnswerVersion = 1;

/// Returns the JSON form of an answer.
[[nodiscard]] nlohmann::ordered_json ToJson(const Question& question, const Answer& answer,
                                            ListLimit alternatives);

} // namespace qe::tool

#endif
