#ifndef TOOLKIT_IMPORT_SQLSCRIPT_H
#define TOOLKIT_IMPORT_SQLSCRIPT_H

#include "Toolkit/Import/DatabaseSchema.h"
#include "Toolkit/Text/Progress.h"

#include <filesystem>
#include <string>
#include <vector>

namespace qe::tool {

/// SQL statements, and the file that they are from, which messages name.
struct SqlText
{
    std::filesystem::path file{};
    std::string text{};
};

/// Returns what the database declares that the statements create, run one text after the other in
/// an empty database in memory. It is called after the first file. Throws an InputError with file,
/// line and column when a statement is wrong.
[[nodiscard]] DatabaseSchema ReadSqlTexts(const std::vector<SqlText>& texts,
                                          const ProgressObserver& observer = {});

/// Does so for files; returns what the database declares that the statements of the files create,
/// run one file after the other in an empty database in memory. It is called after the first file.
/// Throws an InputError with file, line and column when a statement is wrong.
[[nodiscard]] DatabaseSchema ReadSqlScripts(const std::vector<std::filesystem::path>& paths,
                                            const ProgressObserver& observer = {});

} // namespace qe::tool

#endif
