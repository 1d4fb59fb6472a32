#ifndef TOOLKIT_ANSWERS_BATCHOUTPUT_H
#define TOOLKIT_ANSWERS_BATCHOUTPUT_H

#include "Toolkit/Text/ListLimit.h"

#include <nlohmann/json_fwd.hpp>

namespace qe::tool {

struct BatchEntry;

/// Returns the JSON form of a request's answer, with at most that many alternatives, or of why
/// there is none, behind the line and the id of the request.
[[nodiscard]] nlohmann::ordered_json ToJson(const BatchEntry& entry, ListLimit alternatives);

} // namespace qe::tool

#endif
