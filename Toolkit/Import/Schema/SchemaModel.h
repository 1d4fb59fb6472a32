#ifndef TOOLKIT_IMPORT_SCHEMA_SCHEMAMODEL_H
#define TOOLKIT_IMPORT_SCHEMA_SCHEMAMODEL_H

#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/Progress.h"

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
    /// Is told how far the reading of statements and tables is.
    ProgressObserver observer{};
};

/// Returns the model of a database, whatever its schema was read from: a namespace called after the
/// database, with a query subject for each table and view and a relationship for each foreign key,
/// whose left end is the table that refers.
///
/// The end that refers is to-one when the columns of the key hold a unique key, otherwise to-many,
/// and always optional; the other end is optional when a column of the key may be null. Several
/// keys between two tables are told apart by their columns.
[[nodiscard]] ToolModel MakeModel(DatabaseSchema schema, const ImportOptions& options);

} // namespace qe::tool

#endif
