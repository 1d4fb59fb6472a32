#ifndef TOOLKIT_IMPORT_SQLITESCHEMA_H
#define TOOLKIT_IMPORT_SQLITESCHEMA_H

#include "Toolkit/Import/DatabaseSchema.h"

#include <filesystem>

namespace qe::tool {

class SqliteDatabase;

/// Returns what the catalogue of a database declares: tables, views and keys. Views that do not
/// work are left out and noted. Throws a SqliteError when the database cannot be read.
[[nodiscard]] DatabaseSchema ReadSqliteSchema(const SqliteDatabase& database);

/// Returns what a database file declares, called after the file. Throws an InputError when the file
/// cannot be read as one.
[[nodiscard]] DatabaseSchema ReadSqliteFile(const std::filesystem::path& path);

} // namespace qe::tool

#endif
