#ifndef TOOLKIT_HISTORY_SQLJOINS_H
#define TOOLKIT_HISTORY_SQLJOINS_H

#include "Toolkit/History/NamedPairs.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace qe::tool {

class SchemaColumns;

/// The tables of one SELECT and the pairs of columns on which it joins them, in lower case.
struct JoinedTables
{
    std::vector<std::string> tables{};
    std::vector<NamedPair> pairs{};
};

/// Returns what each SELECT of a parsed statement joins: the statement itself with what stands in
/// its FROM and WITH, then each branch of a union and each subquery of a condition or column by
/// itself. Joins are equalities of two columns, also through subqueries that hand a column on, that
/// hold for every row: those of ON, USING, and WHERE that no OR or NOT stands around. Throws
/// InputError for a statement that is no query, and for joins that name no columns.
[[nodiscard]] std::vector<JoinedTables> FindSqlJoins(const nlohmann::json& statement,
                                                     const SchemaColumns* columns);

} // namespace qe::tool

#endif
