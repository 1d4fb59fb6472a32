#ifndef TOOLKIT_IMPORT_SCHEMA_DATABASESCHEMA_H
#define TOOLKIT_IMPORT_SCHEMA_DATABASESCHEMA_H

#include "Toolkit/Sql/SqlNames.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace qe::tool {

struct SchemaColumn
{
    std::string name{};
    bool isNotNull = false;
    /// Whether it stood between quotes.
    bool isQuoted = false;
    /// What the database says about it; empty for nothing.
    std::string description{};
    /// What the model calls it; given by GiveTitles.
    std::string title{};
};

/// A foreign key: the columns that refer, and the table and columns that they refer to.
struct SchemaForeignKey
{
    std::string table{};
    std::vector<std::string> from{};
    /// Empty for the first key of the table.
    std::vector<std::string> to{};
    /// The schema of the table; empty for that of the table that refers, else for the only one that
    /// has such a table.
    std::string space{};
    /// The position of the table; given by ResolveForeignKeys.
    std::size_t target = 0;
};

/// A table or view.
struct SchemaTable
{
    std::string name{};
    /// The parts of its name in the database, the outermost first; empty where `name` is all.
    std::vector<std::string> source{};
    /// The parts of its name that stood between quotes.
    NameSet quoted{};
    std::string description{};
    /// How many rows there are about; nothing where that is not known.
    std::optional<std::uint64_t> rows{};
    std::vector<SchemaColumn> columns{};
    /// The sets of columns that identify a row, the primary key first. What only holds for some of
    /// the rows does not belong here.
    std::vector<std::vector<std::string>> keys{};
    /// In the order in which they are declared.
    std::vector<SchemaForeignKey> foreignKeys{};
    /// The schema that it lies in, where the database has several.
    std::string space{};
    /// What the model calls it; given by GiveTitles.
    std::string title{};
};

/// One end of a join that a source states, and what it says of it.
struct SchemaJoinEnd
{
    /// The position of the table.
    std::size_t table = 0;
    /// The columns that are compared, in pairs with those of the other end; none where the
    /// condition is no conjunction of equal columns.
    std::vector<std::string> columns{};
    /// Whether several rows of this end may meet one row of the other. Where the source does not
    /// tell, they may unless a key of the table lies within the columns.
    std::optional<bool> isMany{};
    /// Whether a row of the other end may meet none of this one. Where the source does not tell,
    /// it may meet none on the left; on the right, where a column of the left may be null.
    std::optional<bool> isOptional{};
};

/// A join that a source states as such, not as a foreign key of a table. It usually refers from
/// left to right.
struct SchemaJoin
{
    /// Empty for one that follows from tables and columns.
    std::string name{};
    SchemaJoinEnd left{};
    SchemaJoinEnd right{};
    /// Empty where the ends' columns say all. Else a condition whose references name an end and one
    /// of its columns: "[left].[day] <= [right].[day]".
    std::string condition{};
    /// Joins that are only used where somebody asks for them lead to a role of the right table.
    bool isActive = true;
    /// What the source says about it; empty for nothing.
    std::string description{};
    /// Where the source states it, as DatabaseSchema::findPlaces knows it; empty where that is not
    /// known.
    std::string pointer{};
};

/// Returns how messages call places of a source, by the pointers to them.
using PlaceFinder = std::function<std::map<std::string, std::string>(const std::set<std::string>&)>;

/// What a source says of how some tables are to be joined.
struct SchemaPreference
{
    /// The positions of the tables.
    std::vector<std::size_t> tables{};
    /// The positions of the joins.
    std::vector<std::size_t> joins{};
    std::string reason{};
};

/// What a database declares, whatever it is written in: each format has a reader that fills it.
struct DatabaseSchema
{
    /// Empty when the database has none.
    std::string name{};
    /// Those of a database in the order of their names.
    std::vector<SchemaTable> tables{};
    std::vector<SchemaJoin> joins{};
    std::vector<SchemaPreference> preferences{};
    /// What had to be left out or renamed, one sentence each.
    std::vector<std::string> notes{};
    /// What it was read from, such as "PostgreSQL, 12 statements"; empty for nothing to tell.
    std::string origin{};
    /// What its names were written in; null where that is not known.
    const SqlDialect* dialect = nullptr;
    /// Null where it does not tell places.
    PlaceFinder findPlaces{};
};

/// Returns the column of that name, else one whose name differs only in the case of A to Z; null
/// when there is none.
[[nodiscard]] const SchemaColumn* FindColumn(const std::vector<SchemaColumn>& columns,
                                             const std::string& name);

/// Lets every foreign key name its columns and know its table, and spells names as the tables do;
/// the case of A to Z does not count. Keys that name what does not exist, or repeat another, are
/// left out and noted. Tables need titles.
void ResolveForeignKeys(DatabaseSchema& schema);

/// Returns whether a key of the table lies within the columns, so that no two rows agree in all of
/// them. A part of a key does not do.
[[nodiscard]] bool IsUnique(const SchemaTable& table, const std::vector<std::string>& columns);

/// Returns the columns' titles in the order of the names, which are spelt as in the table.
[[nodiscard]] std::vector<std::string> TitlesOf(const SchemaTable& table,
                                                const std::vector<std::string>& columns);

} // namespace qe::tool

#endif
