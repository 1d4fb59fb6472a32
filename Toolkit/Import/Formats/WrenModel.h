#ifndef TOOLKIT_IMPORT_FORMATS_WRENMODEL_H
#define TOOLKIT_IMPORT_FORMATS_WRENMODEL_H

#include "Toolkit/Import/Formats/SourceDocument.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <span>

namespace qe::tool {

/// Returns whether the document is a manifest of Wren.
[[nodiscard]] bool IsWrenModel(const SourceDocument& document);

/// Reads models, views and relationships with their conditions.
[[nodiscard]] DatabaseSchema ReadWrenModel(std::span<SourceDocument> documents);

} // namespace qe::tool

#endif
