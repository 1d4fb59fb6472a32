#ifndef TOOLKIT_ANSWERS_RISKJSON_H
#define TOOLKIT_ANSWERS_RISKJSON_H

#include "Toolkit/Ask/Answer.h"
#include "Toolkit/Ask/Risks.h"

#include <nlohmann/json.hpp>

namespace qe::tool {

/// Returns the JSON form of what an answer risks, as Documentation/json-output.md describes it.
[[nodiscard]] nlohmann::ordered_json ToJson(const Answer& answer, const Risks& risks);

} // namespace qe::tool

#endif
