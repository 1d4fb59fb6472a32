#ifndef TOOLKIT_IMPORT_DDL_DIALECT_H
#define TOOLKIT_IMPORT_DDL_DIALECT_H

#include "Toolkit/Sql/SqlDialect.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

struct ScriptText;

/// The dialects of SQL that scripts are read in: the first of GetSqlDialects, in their order.
enum class EDialect : std::uint8_t
{
    Sqlite,
    PostgreSql,
    MySql,
    SqlServer,
    Oracle,
};

/// Returns the words by which users choose a dialect, in the order of the enumeration.
[[nodiscard]] std::vector<std::string> ListDialectWords();

/// Returns the dialect of a word; nothing when there is none.
[[nodiscard]] std::optional<EDialect> FindDialect(std::string_view word);

/// Returns how the dialect is written.
[[nodiscard]] const SqlDialect& GetSqlDialect(EDialect dialect);

/// Returns what people call the dialect.
[[nodiscard]] std::string_view DialectName(EDialect dialect);

/// Returns the dialect that most of the marks in the scripts speak for; SQLite when none does.
[[nodiscard]] EDialect RecogniseDialect(std::span<const ScriptText> scripts);

} // namespace qe::tool

#endif
