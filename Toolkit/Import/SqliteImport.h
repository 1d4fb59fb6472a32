#ifndef TOOLKIT_IMPORT_SQLITEIMPORT_H
#define TOOLKIT_IMPORT_SQLITEIMPORT_H

#include "Toolkit/Model/ToolModel.h"

#include <filesystem>

namespace qe::tool {

/// What becomes of a table that another one refers to by several foreign keys.
enum class ERoles
{
    /// The keys become parallel relationships.
    Plain,
    /// Each key gets a shortcut to the table as well, called "table (columns)", with a
    /// relationship shortcut to it.
    Shortcuts,
};

struct ImportOptions
{
    ERoles roles = ERoles::Plain;
};

/// Makes a model of an SQLite database, called after the file. Raises an InputError when the file
/// cannot be read as one.
[[nodiscard]] ToolModel ImportSqlite(const std::filesystem::path& path,
                                     const ImportOptions& options);

} // namespace qe::tool

#endif
