#ifndef TOOLKIT_IMPORT_SQLIMPORT_H
#define TOOLKIT_IMPORT_SQLIMPORT_H

#include "Toolkit/Import/SqliteImport.h"
#include "Toolkit/Model/ToolModel.h"

#include <filesystem>
#include <vector>

namespace qe::tool {

/// Makes a model of the database that the statements of the files, run one file after the other
/// in an empty database in memory, create. It is called after the first file. Raises an
/// InputError with file, line and column when a statement is wrong.
[[nodiscard]] ToolModel ImportSql(const std::vector<std::filesystem::path>& paths,
                                  const ImportOptions& options);

} // namespace qe::tool

#endif
