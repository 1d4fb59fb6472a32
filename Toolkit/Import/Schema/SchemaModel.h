#ifndef TOOLKIT_IMPORT_SCHEMA_SCHEMAMODEL_H
#define TOOLKIT_IMPORT_SCHEMA_SCHEMAMODEL_H

#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Import/Schema/ServerOptions.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/Progress.h"

namespace qe::tool {

/// What becomes of a table that another one refers to by several foreign keys.
enum class ERoles
{
    /// The keys become parallel relationships.
    Plain,
    /// Each key leads to a role of its own, a shortcut to the table called "table (columns)", in
    /// place of the table. One of them also leads to the table itself, so that what lies behind it
    /// stays in reach: the first whose columns are called like those that it refers to, else the
    /// first. Keys of a table to itself only lead to roles.
    Shortcuts,
};

struct ImportOptions
{
    ERoles roles = ERoles::Plain;
    /// Is told how far the reading of statements and tables is.
    ProgressObserver observer{};
    ServerOptions server{};
};

/// Returns the model of a database, whatever its schema was read from: a namespace called after the
/// database, with a query subject for each table and view and a relationship for each foreign key,
/// whose left end is the table that refers.
///
/// The end that is referred to is to-one when a key of that table lies within the columns, and
/// optional when a column that refers may be null. The end that refers is to-one when that holds
/// and its columns hold a unique key too, and always optional. All other ends are to-many. Several
/// keys between two tables are told apart by their columns.
[[nodiscard]] ToolModel MakeModel(DatabaseSchema schema, const ImportOptions& options);

} // namespace qe::tool

#endif
