#include "Toolkit/Export/ExportFormat.h"

#include "Toolkit/Draw/DotWriter.h"
#include "Toolkit/Draw/Pictures.h"
#include "Toolkit/Export/ExportWriters.h"
#include "Toolkit/Text/DisplayText.h"

#include <array>

namespace qe::tool {

namespace {

std::string WriteWholePicture(const ToolModel& model, LeftOut& /*leftOut*/)
{
    return WriteDot(DrawModel(model, {}, ListLimit::All()));
}

constexpr std::array kFormats{
    ExportFormat{.word = "ossie", .write = WriteOssie},
    ExportFormat{.word = "tbls", .write = WriteTbls},
    ExportFormat{.word = "dbml", .write = WriteDbml},
    ExportFormat{.word = "mermaid", .write = WriteMermaid},
    ExportFormat{.word = "dot", .write = WriteWholePicture},
};

} // namespace

std::span<const ExportFormat> ListExportFormats()
{
    return kFormats;
}

} // namespace qe::tool
