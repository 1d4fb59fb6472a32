#ifndef TOOLKIT_TEXT_JSONLAYOUT_H
#define TOOLKIT_TEXT_JSONLAYOUT_H

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace qe::tool {

/// Writes JSON for people: what fits on a line stands on one, everything else is indented by two
/// blanks. Bytes that are not UTF-8 are replaced by U+FFFD. Ends with a line break.
[[nodiscard]] std::string LayOut(const nlohmann::ordered_json& document);

} // namespace qe::tool

#endif
