#ifndef TOOLKIT_IMPORT_FORMATS_PLAINSELECT_H
#define TOOLKIT_IMPORT_FORMATS_PLAINSELECT_H

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// A table of the database, row by row, as a query reads it.
struct QueriedTable
{
    /// The parts of its name.
    std::vector<std::string> path{};
    /// The columns of the query that the table calls otherwise.
    std::set<std::string> renamed{};
};

/// Returns the table that a query in SQL reads, where it is no more than SELECT with columns or "*"
/// and FROM with one table. Returns nothing where it does more, such as filter, group or join.
[[nodiscard]] std::optional<QueriedTable> SeeThroughSql(std::string_view query);

} // namespace qe::tool

#endif
