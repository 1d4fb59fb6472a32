#ifndef TOOLKIT_IMPORT_FORMATS_TABULARMODEL_H
#define TOOLKIT_IMPORT_FORMATS_TABULARMODEL_H

#include "Toolkit/Import/Formats/SourceDocument.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <span>

namespace qe::tool {

/// Returns whether the document is a model.bim, or a script that creates such a model.
[[nodiscard]] bool IsTabularJson(const SourceDocument& document);

/// Returns whether the document is TMDL.
[[nodiscard]] bool IsTmdl(const SourceDocument& document);

/// Reads tables and relationships, also inactive ones, of a tabular model in either form; objects
/// may lie in any of the documents.
[[nodiscard]] DatabaseSchema ReadTabularModel(std::span<SourceDocument> documents);

} // namespace qe::tool

#endif
