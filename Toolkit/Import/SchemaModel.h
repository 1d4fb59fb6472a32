#ifndef TOOLKIT_IMPORT_SCHEMAMODEL_H
#define TOOLKIT_IMPORT_SCHEMAMODEL_H

#include "Toolkit/Import/DatabaseSchema.h"
#include "Toolkit/Import/SqliteImport.h"
#include "Toolkit/Model/ToolModel.h"

#include <string>

namespace qe::tool {

/// Makes a model of a database: a namespace of the given name with a query subject for each table
/// and view and a relationship for each foreign key, whose left end is the table that refers.
///
/// The end that refers is to-one when the columns of the key hold a unique key, otherwise to-many,
/// and always optional; the other end is optional when a column of the key may be null. Several
/// keys between two tables are told apart by their columns.
[[nodiscard]] ToolModel MakeModel(const DatabaseSchema& schema, const std::string& name,
                                  const ImportOptions& options);

} // namespace qe::tool

#endif
