#ifndef TOOLKIT_IMPORT_DDL_DECLARATIONS_H
#define TOOLKIT_IMPORT_DDL_DECLARATIONS_H

#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace qe::tool {

/// What scripts say of tables, in the order in which they say it and as they write it; folded names
/// are folded. What it means is found out by the Catalogue.

/// Where a statement stands.
struct ScriptPlace
{
    const std::filesystem::path* path = nullptr;
    std::size_t line = 1;
};

/// The name of a table.
struct ObjectName
{
    /// Empty where the statement names none.
    std::string schema{};
    std::string name{};
    /// Those of both that stood between quotes.
    NameSet quoted{};
};

enum class EKeyKind : std::uint8_t
{
    Primary,
    Unique,
};

/// Columns that identify a row.
struct KeyDeclaration
{
    /// Empty where it has none.
    std::string name{};
    EKeyKind kind = EKeyKind::Unique;
    std::vector<std::string> columns{};
};

struct ForeignKeyDeclaration
{
    /// Empty where it has none.
    std::string name{};
    std::vector<std::string> columns{};
    ObjectName table{};
    /// Empty for the primary key of the table.
    std::vector<std::string> referenced{};
};

/// What a table takes over from another one.
struct Inheritance
{
    enum class EKind : std::uint8_t
    {
        /// Its rows are rows of the other table too.
        Child,
        /// It keeps a part of the rows of the other table, through which they are read.
        Partition,
        /// It is created with the same columns.
        Columns,
        /// It is created with the same columns and keys.
        ColumnsAndKeys,
    };

    ObjectName table{};
    EKind kind = EKind::Child;
};

struct TableDeclaration
{
    ObjectName name{};
    std::string description{};
    /// How many rows there are about; nothing where that is not known.
    std::optional<std::uint64_t> rows{};
    std::vector<Inheritance> inheritances{};
    std::vector<SchemaColumn> columns{};
    std::vector<KeyDeclaration> keys{};
    std::vector<ForeignKeyDeclaration> foreignKeys{};
    /// How many unique keys say nothing on whole rows: those over expressions, over the beginnings
    /// of columns, or for some rows only.
    std::size_t partialKeys = 0;
};

struct DroppedColumn
{
    std::string name{};
};

struct RenamedColumn
{
    std::string from{};
    std::string to{};
    bool isQuoted = false;
};

struct ChangedColumn
{
    std::string name{};
    bool isNotNull = false;
};

/// A key or foreign key that is dropped by its name.
struct DroppedKey
{
    std::string name{};
};

struct DroppedPrimaryKey
{};

/// A new name; an empty part stays as it is.
struct RenamedTable
{
    ObjectName name{};
};

struct DescribedTable
{
    std::string description{};
};

struct DescribedColumn
{
    std::string name{};
    std::string description{};
};

/// What a statement changes in a table that there is.
using Alteration =
    std::variant<SchemaColumn, DroppedColumn, RenamedColumn, ChangedColumn, KeyDeclaration,
                 ForeignKeyDeclaration, DroppedKey, DroppedPrimaryKey, RenamedTable, Inheritance,
                 DescribedTable, DescribedColumn>;

} // namespace qe::tool

#endif
