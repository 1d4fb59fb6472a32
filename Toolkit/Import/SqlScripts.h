#ifndef TOOLKIT_IMPORT_SQLSCRIPTS_H
#define TOOLKIT_IMPORT_SQLSCRIPTS_H

#include "Toolkit/Import/Ddl/Dialect.h"
#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Text/Progress.h"

#include <filesystem>
#include <optional>
#include <span>
#include <vector>

namespace qe::tool {

/// Returns what the statements of the scripts declare, read one after the other as one script of
/// the dialect; without a dialect, it is recognised. It is called after the first file. Throws an
/// InputError when nothing in the scripts can be read.
[[nodiscard]] DatabaseSchema ReadSqlTexts(std::span<const ScriptText> scripts,
                                          std::optional<EDialect> dialect,
                                          const ProgressObserver& observer = {});

/// Returns the same of files. Throws an InputError also when a file cannot be read.
[[nodiscard]] DatabaseSchema ReadSqlScripts(const std::vector<std::filesystem::path>& paths,
                                            std::optional<EDialect> dialect,
                                            const ProgressObserver& observer = {});

} // namespace qe::tool

#endif
