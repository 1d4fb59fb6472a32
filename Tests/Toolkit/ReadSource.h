#ifndef TESTS_TOOLKIT_READSOURCE_H
#define TESTS_TOOLKIT_READSOURCE_H

#include "Toolkit/Import/Formats/SourceFormat.h"

#include <filesystem>
#include <string>
#include <vector>

namespace qe::test {

/// Reads a text as the format. The document is called "file".
[[nodiscard]] tool::DatabaseSchema ReadSchema(const char* format, const std::string& text);

/// Returns the joins and notes that a text holds, one a line, or its mistakes.
[[nodiscard]] std::string ReadSourceText(const char* format, const std::string& text);

/// A model of another tool, a file or folder, and what is known to be in it.
struct OpenModelFile
{
    std::filesystem::path source{};
    std::filesystem::path truth{};
};

/// Returns the models at hand in the order of their paths; none where there are no data.
[[nodiscard]] std::vector<OpenModelFile> ListOpenModels();

} // namespace qe::test

#endif
