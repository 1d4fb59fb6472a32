#ifndef TOOLKIT_IMPORT_FORMATS_DBTSEMANTIC_H
#define TOOLKIT_IMPORT_FORMATS_DBTSEMANTIC_H

#include "Toolkit/Import/Formats/SourceDocument.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <span>

namespace qe::tool {

/// Returns whether the document has a place for semantic models of dbt.
[[nodiscard]] bool IsDbtSemantic(const SourceDocument& document);

/// Returns whether the document is one that holds some.
[[nodiscard]] bool HasSemanticModels(const SourceDocument& document);

/// Reads the semantic models of a semantic_manifest.json, or of a manifest.json. Two of them join
/// where they have an entity of the same name.
[[nodiscard]] DatabaseSchema ReadDbtSemantic(std::span<SourceDocument> documents);

} // namespace qe::tool

#endif
