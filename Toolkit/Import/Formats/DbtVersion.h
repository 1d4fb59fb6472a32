#ifndef TOOLKIT_IMPORT_FORMATS_DBTVERSION_H
#define TOOLKIT_IMPORT_FORMATS_DBTVERSION_H

#include "Toolkit/Text/JsonObject.h"

#include <optional>
#include <string>

namespace qe::tool {

/// Returns what is to be told of the version that the metadata of a file of dbt name, empty for
/// nothing. Where the file is no manifest, or of a version that cannot be read, that is reported
/// and nothing returned.
[[nodiscard]] std::optional<std::string> CheckDbtVersion(JsonObject& metadata,
                                                         JsonProblems& problems);

} // namespace qe::tool

#endif
