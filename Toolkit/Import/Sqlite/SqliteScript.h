#ifndef TOOLKIT_IMPORT_SQLITE_SQLITESCRIPT_H
#define TOOLKIT_IMPORT_SQLITE_SQLITESCRIPT_H

#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Text/Progress.h"

#include <span>

namespace qe::tool {

/// Returns what the database declares that the statements of the scripts create, run by SQLite one
/// script after the other in an empty database in memory. Throws an InputError with file, line and
/// column when a statement is wrong.
[[nodiscard]] DatabaseSchema ReadSqliteScripts(std::span<const ScriptText> scripts,
                                               const ProgressObserver& observer = {});

} // namespace qe::tool

#endif
