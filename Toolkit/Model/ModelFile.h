#ifndef TOOLKIT_MODEL_MODELFILE_H
#define TOOLKIT_MODEL_MODELFILE_H

#include "Toolkit/Model/ToolModel.h"
#include "Toolkit/Text/JsonProblems.h"

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace qe::tool {

/// Reads a model file (JSON; see Documentation/model-format.md). Throws an InputError with
/// as many of its mistakes as can be found at once.
[[nodiscard]] ToolModel ReadModelFile(const std::filesystem::path& path);

/// Reads the text of a model file like ReadModelFile. Messages show `fileName`.
[[nodiscard]] ToolModel ReadModelText(std::string_view text, const std::string& fileName);

/// Reads the document of a model file like ReadModelFile. Mistakes are added to the problems, which
/// may hold some already.
[[nodiscard]] ToolModel ReadModelDocument(nlohmann::json document, JsonProblems& problems);

/// Returns a model as the text of a model file, from which ReadModelText makes an equal one: same
/// objects, ids, user classes and governors; the notes are left out. Equal models have equal
/// texts. Bytes that are not UTF-8 are replaced by U+FFFD.
[[nodiscard]] std::string WriteModelText(const ToolModel& model);

} // namespace qe::tool

#endif
