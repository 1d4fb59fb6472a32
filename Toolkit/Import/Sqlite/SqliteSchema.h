#ifndef TOOLKIT_IMPORT_SQLITE_SQLITESCHEMA_H
#define TOOLKIT_IMPORT_SQLITE_SQLITESCHEMA_H

#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Text/Progress.h"

#include <filesystem>
#include <span>
#include <string_view>

namespace qe::tool {

class SqliteDatabase;

/// Returns what the catalogues of databases declare, as if they were one: tables, views and keys.
/// Views that do not work are left out and noted. Throws a SqliteError when a database cannot be
/// read.
[[nodiscard]] DatabaseSchema ReadSqliteSchema(std::span<const SqliteDatabase> databases,
                                              const ProgressObserver& observer = {});

/// Returns what a database file declares, called after the file. Throws an InputError when the file
/// cannot be read as one.
[[nodiscard]] DatabaseSchema ReadSqliteFile(const std::filesystem::path& path,
                                            const ProgressObserver& observer = {});

/// Returns the same of the bytes of such a file, as if they lay at the path.
[[nodiscard]] DatabaseSchema ReadSqliteBytes(std::string_view bytes,
                                             const std::filesystem::path& path,
                                             const ProgressObserver& observer = {});

} // namespace qe::tool

#endif
