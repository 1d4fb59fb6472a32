#ifndef TOOLKIT_IMPORT_OPENMODEL_H
#define TOOLKIT_IMPORT_OPENMODEL_H

#include "Toolkit/Import/SqliteImport.h"
#include "Toolkit/Model/ToolModel.h"

#include <filesystem>

namespace qe::tool {

struct OpenOptions
{
    /// What is made of the roles of a table when the model comes from a database or from SQL.
    ERoles roles = ERoles::Plain;
};

/// Reads a model from whatever the file holds: an SQLite database, a model file (its first
/// character is "{" or "["), else SQL statements that create tables. The name of the file does not
/// matter. What is no regular file, such as a pipe, must hold a model file. Raises an InputError
/// when it cannot be read.
[[nodiscard]] ToolModel OpenModel(const std::filesystem::path& path,
                                  const OpenOptions& options = {});

} // namespace qe::tool

#endif
