#ifndef TOOLKIT_IMPORT_FORMATS_TMDLTEXT_H
#define TOOLKIT_IMPORT_FORMATS_TMDLTEXT_H

#include "Toolkit/Text/DocumentLines.h"
#include "Toolkit/Text/JsonProblems.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// Returns the objects of a TMDL text in the shape that model.bim gives them: lists called after
/// what they hold ("tables", "columns", "hierarchies"), in which each object has its "name", and
/// perhaps an "expression" and a "description". What stands within a script, a database or a model
/// is at the top. Throws an InputError with the line when the text is no TMDL. Objects that joins
/// do not need may be of kinds that are too new to be known: their words are put into `unknown`,
/// with their places.
[[nodiscard]] nlohmann::json ParseTmdl(std::string_view text, const JsonProblems& problems,
                                       std::vector<std::string>& unknown);

/// Returns the lines of those of the pointers that the document has. The text is TMDL.
[[nodiscard]] DocumentLines FindTmdlLines(std::string_view text,
                                          const std::set<std::string>& pointers);

/// Returns the names that dots join, without their quotes; nothing when the text is no such name.
[[nodiscard]] std::optional<std::vector<std::string>> ReadTmdlPath(std::string_view text);

} // namespace qe::tool

#endif
