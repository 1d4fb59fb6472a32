#ifndef TOOLKIT_ANSWERS_NAMESJSON_H
#define TOOLKIT_ANSWERS_NAMESJSON_H

#include "Toolkit/Ask/Answer.h"

#include <nlohmann/json.hpp>
#include <span>

namespace qe::tool {

/// Returns the texts of ids.
[[nodiscard]] nlohmann::ordered_json IdsToJson(std::span<const amd_id> ids);

/// Returns how an answer names subjects.
[[nodiscard]] nlohmann::ordered_json NamesToJson(const Answer& answer,
                                                 std::span<const amd_id> subjects);

} // namespace qe::tool

#endif
