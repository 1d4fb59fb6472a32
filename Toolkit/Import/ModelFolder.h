#ifndef TOOLKIT_IMPORT_MODELFOLDER_H
#define TOOLKIT_IMPORT_MODELFOLDER_H

#include "Toolkit/Import/Formats/SourceFormat.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// What a folder holds of a model.
struct ModelFolder
{
    /// Never null.
    const SourceFormat* format = nullptr;
    /// At least one.
    std::vector<SourceDocument> documents{};
    /// What lies beside them and is not read, one sentence each.
    std::vector<std::string> notes{};
};

/// Returns the documents in a folder that make one model: a file that tools give a name of its own,
/// such as "manifest.json", also in "target", else the YAML and TMDL files in it and in the folders
/// within. Where a format is given, only that is looked for. Throws an InputError that tells what
/// was looked for when there is none, and when a file cannot be read.
[[nodiscard]] ModelFolder ReadModelFolder(const std::filesystem::path& folder,
                                          const SourceFormat* format = nullptr);

/// Returns whether the path leads to a folder whose files make one model. All of them are read.
/// Throws an InputError when they cannot be.
[[nodiscard]] bool IsModelFolder(const std::filesystem::path& path);

/// Returns what a file holds, in UTF-8 where it begins as UTF-16.
[[nodiscard]] std::string ReadSourceText(const std::filesystem::path& path);

/// Returns the same of the bytes of such a file.
[[nodiscard]] std::string ToSourceText(const std::filesystem::path& path, std::string bytes);

/// Returns whether a text begins as UTF-16, as some tools save theirs.
[[nodiscard]] bool IsUtf16(std::string_view start);

/// Returns the words of all formats, with commas between them.
[[nodiscard]] std::string ListFormatWords();

} // namespace qe::tool

#endif
