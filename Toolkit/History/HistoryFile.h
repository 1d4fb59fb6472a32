#ifndef TOOLKIT_HISTORY_HISTORYFILE_H
#define TOOLKIT_HISTORY_HISTORYFILE_H

#include "Toolkit/History/HistoryEntries.h"

#include <filesystem>

namespace qe::tool {

class SchemaColumns;

/// Reads past queries: lines of JSON where the file begins with "{", else SQL statements. What
/// cannot be read is counted and the rest goes on. The columns tell to which tables columns without
/// a table belong in SQL; null leaves such joins out. Throws an InputError when there is no such
/// file, and for one that is no text.
[[nodiscard]] HistoryEntries ReadHistoryFile(const std::filesystem::path& path,
                                             const SchemaColumns* columns);

} // namespace qe::tool

#endif
