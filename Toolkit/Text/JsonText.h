#ifndef TOOLKIT_TEXT_JSONTEXT_H
#define TOOLKIT_TEXT_JSONTEXT_H

#include "Toolkit/Text/DocumentLines.h"
#include "Toolkit/Text/JsonProblems.h"

#include <nlohmann/json_fwd.hpp>

#include <set>
#include <string>
#include <string_view>

namespace qe::tool {

/// Returns the JSON document that the text is. Throws an InputError with line and column (in
/// characters, from 1) when the text is not JSON in UTF-8, or when it is nested deeper than 256
/// levels. Keys that one object has twice are added to `problems`; the last one counts.
[[nodiscard]] nlohmann::json ParseJson(std::string_view text, JsonProblems& problems);

/// Returns the lines of those of the pointers that the document has. The text is JSON.
[[nodiscard]] DocumentLines FindJsonLines(std::string_view text,
                                          const std::set<std::string>& pointers);

/// Returns JSON for people: what fits on a line stands on one, everything else is indented by two
/// spaces. Bytes that are not UTF-8 are replaced by U+FFFD. Ends with a line break.
[[nodiscard]] std::string FormatJson(const nlohmann::ordered_json& document);

/// Returns JSON for programs: each member on a line of its own, indented by two spaces. Bytes that
/// are not UTF-8 are replaced by U+FFFD.
[[nodiscard]] std::string ToJsonText(const nlohmann::ordered_json& value);

/// Returns the same on one line.
[[nodiscard]] std::string ToJsonLine(const nlohmann::ordered_json& value);

/// Returns the list of a key of an object, which is made where there is none. Objects and lists are
/// made before they are filled everywhere: null that becomes one of them by being filled is broken
/// when there is no memory for that.
[[nodiscard]] nlohmann::ordered_json& ListAt(nlohmann::ordered_json& object, const char* key);

} // namespace qe::tool

#endif
