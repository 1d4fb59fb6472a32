#ifndef TOOLKIT_IMPORT_FORMATS_SQLCONDITION_H
#define TOOLKIT_IMPORT_FORMATS_SQLCONDITION_H

#include "Toolkit/Import/Schema/StatedJoins.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// What the SQL text between two query subjects compares.
struct SqlCondition
{
    /// The columns of both ends, in pairs, where the text is a conjunction of equal columns.
    std::vector<std::string> left{};
    std::vector<std::string> right{};
    /// Else a condition as stated joins have it.
    std::string text{};
    /// Why it cannot be read; then the rest is empty.
    std::string problem{};
    /// The name that means no column, where that is why.
    std::vector<std::string> unknown{};
};

/// Returns the column that a name means, which is given without dots and quotes; nothing when it
/// means none.
using ColumnFinder = std::function<std::optional<EndColumn>(const std::vector<std::string>& names)>;

/// Reads the SQL text of a condition, which names columns of both ends. "a::type" is read as
/// CAST(a AS type). Linear in the size of the text but for such casts; texts beyond 16 KiB are not
/// read.
[[nodiscard]] SqlCondition ReadSqlCondition(std::string_view sql, const ColumnFinder& findColumn);

/// Lets the problem with an unknown name say which of the condition's ends may be meant.
void SuggestEnds(SqlCondition& condition, const std::vector<std::string_view>& ends);

/// Returns the SQL text with `owner` and a dot before each name of a column that stands alone.
[[nodiscard]] std::string QualifyNames(std::string_view sql, std::string_view owner);

/// Lets the join compare what the condition does.
void TakeCondition(SqlCondition condition, SchemaJoin& join);

} // namespace qe::tool

#endif
