#ifndef TOOLKIT_IMPORT_SCHEMA_SCHEMANAMES_H
#define TOOLKIT_IMPORT_SCHEMA_SCHEMANAMES_H

#include "Toolkit/Import/Schema/DatabaseSchema.h"

namespace qe::tool {

/// Throws an InputError for each name that holds U+0000, which no model keeps and no database has.
/// In descriptions U+FFFD stands for it, which is noted.
void RequireNoZeros(DatabaseSchema& schema);

/// Gives every table and column a title that a model can have: it is not empty, it is UTF-8, and no
/// other of its kind has it, letter case of A to Z aside. It is the name wherever the name will do;
/// what gets another is noted. Of tables that share a name, the later ones get the name of their
/// schema before it.
void GiveTitles(DatabaseSchema& schema);

} // namespace qe::tool

#endif
