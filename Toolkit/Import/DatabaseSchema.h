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

/// A foreign key: the columns that refer, and the table and columns that they refer to, as far as
/// these exist.
struct SchemaForeignKey
{
    std::string table;
    std::vector<std::string> from;
    std::vector<std::string> to;
};

/// A table or view.
struct SchemaTable
{
    std::string name;
    std::vector<SchemaColumn> columns;
    /// The sets of columns that tell the rows apart, the primary key first.
    std::vector<std::vector<std::string>> keys;
    /// In the order in which they are declared.
    std::vector<SchemaForeignKey> foreignKeys;
};

/// What a database declares of itself.
struct DatabaseSchema
{
    /// In the order of their names.
    std::vector<SchemaTable> tables;
    /// What had to be left out, one sentence each.
    std::vector<std::string> notes;
};

class SqliteDatabase;

/// Reads the tables and views of a database. Keys that name what does not exist, and views that
/// do not work, are left out and noted. Raises a SqliteError when the database cannot be read.
[[nodiscard]] DatabaseSchema ReadSchema(const SqliteDatabase& database);

} // namespace qe::tool

#endif
