#ifndef TOOLKIT_IMPORT_DATABASESCHEMA_H
#define TOOLKIT_IMPORT_DATABASESCHEMA_H

#include <string>
#include <vector>

namespace qe::tool {

struct SchemaColumn
{
    std::string name;
    bool isNotNull = false;
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
};

/// Lets every foreign key name its columns, and spells names as the tables do; the case of A to Z
/// does not count. Keys that name what does not exist, or repeat another, are left out and noted.
void ResolveForeignKeys(DatabaseSchema& schema);

} // namespace qe::tool

#endif
