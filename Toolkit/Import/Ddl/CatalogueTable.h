#ifndef TOOLKIT_IMPORT_DDL_CATALOGUETABLE_H
#define TOOLKIT_IMPORT_DDL_CATALOGUETABLE_H

#include "Toolkit/Import/Ddl/Declarations.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qe::tool {

/// The schemas in which a name without one is looked for, in that order.
using SearchPath = std::shared_ptr<const std::vector<std::string>>;

/// A table as the statements up to now have made it.
struct CatalogueTable
{
    struct Key
    {
        KeyDeclaration declaration{};
        ScriptPlace place{};
    };

    struct ForeignKey
    {
        ForeignKeyDeclaration declaration{};
        ScriptPlace place{};
        /// That of the statement.
        SearchPath path{};
    };

    ObjectName name{};
    std::string description{};
    std::optional<std::uint64_t> rows{};
    std::vector<SchemaColumn> columns{};
    std::vector<Key> keys{};
    std::vector<ForeignKey> foreignKeys{};
    /// The tables that take over what changes in the columns.
    std::vector<CatalogueTable*> children{};
    bool isPartition = false;
    bool isDropped = false;

    /// Returns the primary key; null when there is none.
    [[nodiscard]] const KeyDeclaration* FindPrimaryKey() const;
    /// Returns the column, found as FindColumn does; null when there is none.
    [[nodiscard]] SchemaColumn* FindColumn(const std::string& column);
};

/// Finds tables by their names: the table of just that name, else the one whose name differs only
/// in the case of A to Z. A name without a schema means a table of the search path, else the only
/// one of that name. Dropped tables are not found.
class TableNames
{
public:
    void Add(CatalogueTable& table);
    /// Is told that the name of a table was another one.
    void Move(CatalogueTable& table, const ObjectName& before);

    /// Returns null when there is no such table.
    [[nodiscard]] CatalogueTable* Find(const ObjectName& name,
                                       const std::vector<std::string>& path) const;
    /// Returns the table of just that schema and name; null when there is none.
    [[nodiscard]] CatalogueTable* FindSame(const ObjectName& name) const;

private:
    using Tables = std::vector<CatalogueTable*>;

    [[nodiscard]] Tables List(const std::string& name) const;

    /// By name without schema, in lower case.
    std::map<std::string, Tables> mTables;
};

} // namespace qe::tool

#endif
