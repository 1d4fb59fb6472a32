#ifndef TOOLKIT_IMPORT_DDL_CATALOGUESCHEMA_H
#define TOOLKIT_IMPORT_DDL_CATALOGUESCHEMA_H

#include "Toolkit/Import/Ddl/CatalogueTable.h"
#include "Toolkit/Import/Ddl/ReadingNotes.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <deque>
#include <string>

namespace qe::tool {

/// Returns the schema of the tables. Partitions and dropped tables are not part of it; keys that
/// name what does not exist are told. A table is called by its name without a schema, unless
/// another one shares it; then those that lie outside `defaultSchema` have theirs before it.
[[nodiscard]] DatabaseSchema MakeSchema(std::deque<CatalogueTable>& tables, const TableNames& names,
                                        const std::string& defaultSchema, ReadingNotes& notes);

} // namespace qe::tool

#endif
