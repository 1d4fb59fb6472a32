#ifndef TOOLKIT_EXPORT_EXPORTFORMAT_H
#define TOOLKIT_EXPORT_EXPORTFORMAT_H

#include "Toolkit/Import/Formats/LeftOut.h"

#include <span>
#include <string>
#include <string_view>

namespace qe::tool {

struct ToolModel;

/// A format that models are written in for other tools.
struct ExportFormat
{
    /// The word by which users choose it.
    std::string_view word;
    /// Returns the model as text; what the format has no place for is added to `leftOut`.
    std::string (*write)(const ToolModel& model, LeftOut& leftOut);
};

/// Returns the formats, in the order of the help.
[[nodiscard]] std::span<const ExportFormat> ListExportFormats();

} // namespace qe::tool

#endif
