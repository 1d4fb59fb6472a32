#ifndef TOOLKIT_ANSWERS_JSONANSWER_H
#define TOOLKIT_ANSWERS_JSONANSWER_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>

namespace qe::tool {

/// The version of the form that Documentation/json-output.md describes.
inline constexpr int JsonAnswerVersion = 1;

/// Makes the JSON form of an answer, with at most that many alternatives.
[[nodiscard]] nlohmann::ordered_json ToJson(const Question& question, const Answer& answer,
                                            std::size_t maximumAlternatives);

/// Writes the value, indented or, with -1, on one line. Bytes that are no UTF-8 are replaced.
[[nodiscard]] std::string ToText(const nlohmann::ordered_json& value, int indent);

/// Names the operation as JSON does, such as "path".
[[nodiscard]] std::string_view ToText(EOperation operation);

} // namespace qe::tool

#endif
