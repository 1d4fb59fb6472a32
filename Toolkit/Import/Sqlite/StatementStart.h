#ifndef TOOLKIT_IMPORT_SQLITE_STATEMENTSTART_H
#define TOOLKIT_IMPORT_SQLITE_STATEMENTSTART_H

#include <cstdint>
#include <string>
#include <string_view>

namespace qe::tool {

/// What a statement does to the tables of a database, as far as its first words tell.
enum class EStatement : std::uint8_t
{
    /// It creates one table, described column by column.
    CreateTable,
    /// It creates one index on a table.
    CreateIndex,
    /// It concerns the connection only: begins or ends a transaction, or sets "foreign_keys"; also
    /// no statement at all.
    Session,
    /// Anything else.
    Other,
};

/// The beginning of a statement. Names are in lower case and without quotes.
struct StatementStart
{
    EStatement kind = EStatement::Other;
    /// The table or index that is created.
    std::string name{};
    /// The table that is indexed.
    std::string table{};
};

/// Reads the beginning of the first statement of an SQL text, as SQLite understands it. What is
/// unusual, such as the name of a database before a table's, counts as Other.
[[nodiscard]] StatementStart ReadStatementStart(std::string_view text);

} // namespace qe::tool

#endif
