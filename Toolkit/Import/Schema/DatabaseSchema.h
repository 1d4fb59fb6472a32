#ifndef TOOLKIT_IMPORT_SCHEMA_DATABASESCHEMA_H
#define TOOLKIT_IMPORT_SCHEMA_DATABASESCHEMA_H

#include <string>
#include <vector>

namespace qe::tool {

struct SchemaColumn
{
    std::string name{};
    bool isNotNull = false;
    /// What the database says about it; empty for nothing.
    std::string description{};
};

/// A foreign key: the columns that refer, and the table and columns that they refer to.
struct SchemaForeignKey
{
    std::string table{};
    std::vector<std::string> from{};
    /// Empty for the first key of the table.
    std::vector<std::string> to{};
};

/// A table or view.
struct SchemaTable
{
    std::string name{};
    /// The parts of its name in the database, the outermost first; empty where `name` is all.
    std::vector<std::string> source{};
    std::string description{};
    std::vector<SchemaColumn> columns{};
    /// The sets of columns that identify a row, the primary key first.
    std::vector<std::vector<std::string>> keys{};
    /// In the order in which they are declared.
    std::vector<SchemaForeignKey> foreignKeys{};
};

/// What a database declares, whatever it is written in: each format has a reader that fills it.
struct DatabaseSchema
{
    /// Empty when the database has none.
    std::string name{};
    /// In the order of their names.
    std::vector<SchemaTable> tables{};
    /// What had to be left out, one sentence each.
    std::vector<std::string> notes{};
    /// What it was read from, such as "PostgreSQL, 12 statements"; empty for nothing to tell.
    std::string origin{};
};

/// Returns the column of that name, else one whose name differs only in the case of A to Z; null
/// when there is none.
[[nodiscard]] const SchemaColumn* FindColumn(const std::vector<SchemaColumn>& columns,
                                             const std::string& name);

/// Lets every foreign key name its columns, and spells names as the tables do; the case of A to Z
/// does not count. Keys that name what does not exist, or repeat another, are left out and noted.
void ResolveForeignKeys(DatabaseSchema& schema);

} // namespace qe::tool

#endif
