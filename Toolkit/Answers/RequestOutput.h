#ifndef TOOLKIT_ANSWERS_REQUESTOUTPUT_H
#define TOOLKIT_ANSWERS_REQUESTOUTPUT_H

#include "Toolkit/Evaluate/Evaluation.h"
#include "Toolkit/Text/DisplayText.h"

#include <cstdint>
#include <iosfwd>
#include <nlohmann/json.hpp>
#include <nlohmann/json_fwd.hpp>

namespace qe::tool {

struct BatchEntry;

/// Returns the JSON form of a request's answer, with at most that many alternatives, or of why
/// there is none, behind the line and the id of the request.
[[nodiscard]] nlohmann::ordered_json ToJson(const BatchEntry& entry, ListLimit alternatives);

/// Whether the text lists each request that was not answered the same.
enum class EDifferences : std::uint8_t
{
    Counted,
    Listed,
};

/// Writes the shares as a table: a line for all requests and one for each group of them.
void WriteText(std::ostream& out, const Evaluation& evaluation, EDifferences differences);

/// Returns the JSON form, with all differences.
[[nodiscard]] nlohmann::ordered_json ToJson(const Evaluation& evaluation);

} // namespace qe::tool

#endif
