#ifndef TOOLKIT_ANSWERS_ANSWERJSON_H
#define TOOLKIT_ANSWERS_ANSWERJSON_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/Risks.h"
#include "Toolkit/Text/DisplayText.h"

#include <nlohmann/json.hpp>

namespace qe::tool {

/// The version of the form that Documentation/json-output.md describes.
inline constexpr int kAnswerVersion = 1;

/// Returns the JSON form of an answer with its risks.
[[nodiscard]] nlohmann::ordered_json ToJson(const Question& question, const Answer& answer,
                                            const Risks& risks, ListLimit alternatives);

} // namespace qe::tool

#endif
