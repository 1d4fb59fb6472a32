#ifndef TOOLKIT_IMPORT_FORMATS_TBLSSCHEMA_H
#define TOOLKIT_IMPORT_FORMATS_TBLSSCHEMA_H

#include "Toolkit/Import/Formats/SourceDocument.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <span>

namespace qe::tool {

/// Returns whether the document is a schema.json of tbls.
[[nodiscard]] bool IsTblsSchema(const SourceDocument& document);

/// Reads tables, keys and relations, also virtual ones, with the cardinalities that they state.
[[nodiscard]] DatabaseSchema ReadTblsSchema(std::span<SourceDocument> documents);

} // namespace qe::tool

#endif
