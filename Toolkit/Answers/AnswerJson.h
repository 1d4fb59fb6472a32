#ifndef TOOLKIT_ANSWERS_ANSWERJSON_H
#define TOOLKIT_ANSWERS_ANSWERJSON_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Question.h"
#include "Toolkit/Ask/Risks.h"
#include "Toolkit/Text/DisplayText.h"

#include <nlohmann/json.hpp>
#include <span>

namespace qe::tool {

/// The version of the form that Documentation/json-output.md describes.
inline constexpr int kAnswerVersion = 1;

/// Returns the texts of ids.
[[nodiscard]] nlohmann::ordered_json IdsToJson(std::span<const amd_id> ids);

/// Returns how an answer names subjects.
[[nodiscard]] nlohmann::ordered_json NamesToJson(const Answer& answer,
                                                 std::span<const amd_id> subjects);

/// Returns the JSON form of an answer with its risks.
[[nodiscard]] nlohmann::ordered_json ToJson(const Question& question, const Answer& answer,
                                            const Risks& risks, ListLimit alternatives);

} // namespace qe::tool

#endif
