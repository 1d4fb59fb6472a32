#ifndef TOOLKIT_TEXT_JSONLAYOUT_H
#define TOOLKIT_TEXT_JSONLAYOUT_H

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace qe::tool {

/// Writes JSON for people: what fits on a line stands on one, everything else is indented by two
/// blanks. Bytes that are not UTF-8 are replaced by U+FFFD. Ends with a line break.
[[nodiscard]] std::string LayOut(const nlohmann::ordered_json& document);

/// Writes JSON for programs: each member on a line of its own, indented by two spaces. Bytes that
/// are not UTF-8 are replaced by U+FFFD.
[[nodiscard]] std::string ToJsonText(const nlohmann::ordered_json& value);

/// Does so on one line.
[[nodiscard]] std::string ToJsonLine(const nlohmann::ordered_json& value);

} // namespace qe::tool

#endif
