#ifndef TOOLKIT_EXPORT_EXPORTWRITERS_H
#define TOOLKIT_EXPORT_EXPORTWRITERS_H

#include "Toolkit/Import/Formats/LeftOut.h"

#include <string>

namespace qe::tool {

struct ToolModel;

// One writer a format. Each adds to `leftOut` what the format has no place for.

/// Roles are datasets of their own; cardinalities follow from keys.
[[nodiscard]] std::string WriteOssie(const ToolModel& model, LeftOut& leftOut);
/// Relations are virtual ones, with both cardinalities.
[[nodiscard]] std::string WriteTbls(const ToolModel& model, LeftOut& leftOut);
[[nodiscard]] std::string WriteDbml(const ToolModel& model, LeftOut& leftOut);
[[nodiscard]] std::string WriteMermaid(const ToolModel& model, LeftOut& leftOut);

} // namespace qe::tool

#endif
