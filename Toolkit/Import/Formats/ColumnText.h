#ifndef TOOLKIT_IMPORT_FORMATS_COLUMNTEXT_H
#define TOOLKIT_IMPORT_FORMATS_COLUMNTEXT_H

#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

/// Returns the parts of a name as SQL writes it, "db"."schema"."table": between dots, without
/// quotes, backquotes or brackets. Returns none for what is more than a name, such as a query.
[[nodiscard]] std::vector<std::string> SplitSqlName(std::string_view name);

/// Returns the parts as SplitSqlName reads them; those that are more than a word stand in quotes.
[[nodiscard]] std::string WriteSqlName(const std::vector<std::string>& parts);

/// Returns the column that a text names where only a column or an expression may stand, without
/// quotes; nothing for an expression.
[[nodiscard]] std::optional<std::string> ReadColumnName(const SchemaTable& table,
                                                        std::string_view text);

/// Returns an SQL expression over one table with its columns as a stated join's condition names
/// them: "upper(code)" becomes "upper([left].[code])". The table gets the columns that it lacks.
[[nodiscard]] std::string QualifyColumns(std::string_view expression, const char* end,
                                         SchemaTable& table);

/// One end of what a join compares: a column or an expression.
struct ComparedEnd
{
    SchemaTable& table;
    std::string text{};
};

/// Lets the join compare one more pair. The tables get the columns that they lack.
void CompareEnds(const ComparedEnd& left, const ComparedEnd& right, SchemaJoin& join);

} // namespace qe::tool

#endif
