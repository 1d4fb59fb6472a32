#ifndef TOOLKIT_IMPORT_SQLSCRIPT_H
#define TOOLKIT_IMPORT_SQLSCRIPT_H

#include "Toolkit/Import/DatabaseSchema.h"
#include "Toolkit/Text/Progress.h"

#include <filesystem>
#include <vector>

namespace qe::tool {

/// Returns what the database declares that the statements of the files create, run one file after
/// the other in an empty database in memory. It is called after the first file. Throws an
/// InputError with file, line and column when a statement is wrong.
[[nodiscard]] DatabaseSchema ReadSqlScripts(const std::vector<std::filesystem::path>& paths,
                                            const ProgressObserver& observer = {});

} // namespace qe::tool

#endif
