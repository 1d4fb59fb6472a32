#ifndef TOOLKIT_ANSWERS_EVALUATIONOUTPUT_H
#define TOOLKIT_ANSWERS_EVALUATIONOUTPUT_H

#include "Toolkit/Evaluate/Evaluation.h"

#include <cstdint>
#include <iosfwd>
#include <nlohmann/json.hpp>

namespace qe::tool {

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
