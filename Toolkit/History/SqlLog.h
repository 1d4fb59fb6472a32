#ifndef TOOLKIT_HISTORY_SQLLOG_H
#define TOOLKIT_HISTORY_SQLLOG_H

#include "Toolkit/History/HistoryEntries.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace qe::tool {

class SchemaColumns;

/// Reads the past queries among SQL statements, each ended by a semicolon. A statement that the
/// parser does not understand, that is no query, or that is longer than kLongestStatement is
/// counted as unread. Places are lines of the file of that name. What stands behind a quote
/// or comment that does not end counts as one. `columns` may be null.
[[nodiscard]] HistoryEntries ReadSqlLog(std::string_view text, const std::string& fileName,
                                        const SchemaColumns* columns);

/// In bytes. Each column is looked for in each table of its statement.
inline constexpr std::size_t kLongestStatement = std::size_t{1} << 17;

} // namespace qe::tool

#endif
