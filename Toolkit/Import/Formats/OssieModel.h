#ifndef TOOLKIT_IMPORT_FORMATS_OSSIEMODEL_H
#define TOOLKIT_IMPORT_FORMATS_OSSIEMODEL_H

#include "Toolkit/Import/Formats/SourceDocument.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <span>

namespace qe::tool {

/// Returns whether the document is a semantic model of Apache Ossie, or an ontology of it.
[[nodiscard]] bool IsOssieModel(const SourceDocument& document);

/// Reads datasets, keys and relationships. Cardinalities follow from the keys. An ontology is
/// reported: it has no datasets.
[[nodiscard]] DatabaseSchema ReadOssieModel(std::span<SourceDocument> documents);

} // namespace qe::tool

#endif
