#ifndef TOOLKIT_IMPORT_OPENMODEL_H
#define TOOLKIT_IMPORT_OPENMODEL_H

#include "Toolkit/Import/SchemaModel.h"
#include "Toolkit/Model/ToolModel.h"

#include <filesystem>
#include <vector>

namespace qe::tool {

/// Returns the model of whatever the file holds: an SQLite database, a model file (its first
/// character is "{" or "["), else SQL statements that create tables. The name of the file does not
/// matter. What is no regular file, such as a pipe, holds no database. Throws an InputError when it
/// cannot be read.
[[nodiscard]] ToolModel OpenModel(const std::filesystem::path& path,
                                  const ImportOptions& options = {});

/// Returns whether the path leads to a file, not a pipe, that is taken for a model file. Throws an
/// InputError when it cannot be read.
[[nodiscard]] bool IsModelFile(const std::filesystem::path& path);

/// Returns the model of an SQLite database, called after the file. Throws an InputError when the
/// file cannot be read as one.
[[nodiscard]] ToolModel ImportSqlite(const std::filesystem::path& path,
                                     const ImportOptions& options);

/// Returns the model of the database that the statements of the files, run one file after the other
/// in an empty database in memory, create. It is called after the first file. Throws an InputError
/// with file, line and column when a statement is wrong.
[[nodiscard]] ToolModel ImportSql(const std::vector<std::filesystem::path>& paths,
                                  const ImportOptions& options);

} // namespace qe::tool

#endif
