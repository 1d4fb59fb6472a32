#ifndef TOOLKIT_IMPORT_SQLSCRIPTS_H
#define TOOLKIT_IMPORT_SQLSCRIPTS_H

#include "Toolkit/Import/Ddl/Dialect.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Text/Progress.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace qe::tool {

/// Returns what the statements of the files declare, read one file after the other as one script of
/// the dialect; without a dialect, it is recognised. It is called after the first file. Throws an
/// InputError when a file cannot be read or when nothing in the files can.
[[nodiscard]] DatabaseSchema ReadSqlScripts(const std::vector<std::filesystem::path>& paths,
                                            std::optional<EDialect> dialect,
                                            const ProgressObserver& observer = {});

} // namespace qe::tool

#endif
