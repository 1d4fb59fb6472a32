#ifndef TOOLKIT_IMPORT_SCHEMA_STATEDJOINS_H
#define TOOLKIT_IMPORT_SCHEMA_STATEDJOINS_H

#include "Engine/Model/ModelBuilder.h"
#include "Engine/Model/Names.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace qe::tool {

/// Lets every stated join have columns that its tables have, spelt as there, and a name that no
/// other one has. Joins that name what does not exist, that cannot be read, or that repeat another
/// one, also from its other end, are left out and noted; preferences forget them. Tables need
/// titles.
void ResolveStatedJoins(DatabaseSchema& schema);

/// How many rows of each end meet one row of the other.
struct JoinRanges
{
    model::CardinalityRange left{};
    model::CardinalityRange right{};
};

[[nodiscard]] JoinRanges RangesOf(const DatabaseSchema& schema, const SchemaJoin& join);

/// Returns the reference of a condition to a column of the left or the right end.
using ColumnWriter = std::function<model::QualifiedName(bool isLeft, const std::string& column)>;

/// Returns the condition of a join whose columns are called as the writer says.
[[nodiscard]] std::string WriteStatedCondition(const SchemaJoin& join, const ColumnWriter& writer);

/// The names by which the conditions of stated joins tell their ends apart.
inline constexpr const char* kLeftEnd = "left";
inline constexpr const char* kRightEnd = "right";

/// A column that the condition of a stated join compares.
struct EndColumn
{
    bool isLeft = true;
    std::string column{};
};

/// Returns the columns that the join's condition names, each as often as it does; nothing when the
/// text is no condition on its two ends.
[[nodiscard]] std::optional<std::vector<EndColumn>> ColumnsOfCondition(const SchemaJoin& join);

} // namespace qe::tool

#endif
