#ifndef TOOLKIT_IMPORT_FORMATS_DBTMANIFEST_H
#define TOOLKIT_IMPORT_FORMATS_DBTMANIFEST_H

#include "Toolkit/Import/Formats/SourceDocument.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <span>

namespace qe::tool {

/// Returns whether the document is a manifest.json of dbt.
[[nodiscard]] bool IsDbtManifest(const SourceDocument& document);

/// Reads models, seeds, snapshots and sources, and as joins the tests and constraints by which they
/// refer to each other. Where there are none, the semantic models of the file are read, if it has
/// some.
[[nodiscard]] DatabaseSchema ReadDbtManifest(std::span<SourceDocument> documents);

} // namespace qe::tool

#endif
