#ifndef TOOLKIT_IMPORT_FORMATS_CUBEMODEL_H
#define TOOLKIT_IMPORT_FORMATS_CUBEMODEL_H

#include "Toolkit/Import/Formats/SourceDocument.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <span>

namespace qe::tool {

/// Returns whether the document holds cubes or views, or is a program that makes some.
[[nodiscard]] bool IsCubeModel(const SourceDocument& document);

/// Reads cubes, their joins, also inherited ones, and the join paths of views.
[[nodiscard]] DatabaseSchema ReadCubeModel(std::span<SourceDocument> documents);

} // namespace qe::tool

#endif
