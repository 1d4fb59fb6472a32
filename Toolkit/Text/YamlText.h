#ifndef TOOLKIT_TEXT_YAMLTEXT_H
#define TOOLKIT_TEXT_YAMLTEXT_H

#include "Toolkit/Text/DocumentLines.h"
#include "Toolkit/Text/JsonProblems.h"

#include <nlohmann/json_fwd.hpp>

#include <set>
#include <string>

namespace qe::tool {

/// Returns what the YAML document, a text without U+0000, holds as JSON: plain scalars are null,
/// booleans and numbers as in YAML 1.2, aliases are copies, "<<" takes over the keys that an object
/// lacks. Throws an InputError with line and column when the text is no YAML, holds more than one
/// document, is nested deeper than 256 levels, names itself, or when its anchors and aliases come
/// to more than a million values. Keys that are no scalars, or that an object has twice, are added
/// to `problems`.
[[nodiscard]] nlohmann::json ParseYaml(const std::string& text, JsonProblems& problems);

/// Returns the lines of those of the pointers that the document has. The text is YAML.
[[nodiscard]] DocumentLines FindYamlLines(const std::string& text,
                                          const std::set<std::string>& pointers);

} // namespace qe::tool

#endif
