#include "Toolkit/Import/Sqlite/SqliteSchema.h"

#include "Toolkit/Import/Ddl/SqlTokens.h"
#include "Toolkit/Import/Sqlite/SqliteDatabase.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

class SchemaReader
{
public:
    explicit SchemaReader(std::span<const SqliteDatabase> databases) : mDatabases(databases) {}

    DatabaseSchema Read(const ProgressObserver& observer)
    {
        mSchema.dialect = &GetSqlDialect(EDialect::Sqlite);
        ReadQuotedNames();
        const auto tables = ListTables();
        NoteTemporaryTables();
        std::uint64_t done = 0;
        for (const auto& [name, database] : tables) {
            if (observer)
                observer({.done = done, .size = tables.size(), .count = done, .unit = "tables"});
            ++done;
            AddTable(name, *database);
        }
        return std::move(mSchema);
    }

private:
    /// Returns the names of all tables, sorted, with the databases that hold them.
    std::vector<std::pair<std::string, const SqliteDatabase*>> ListTables() const
    {
        std::vector<std::pair<std::string, const SqliteDatabase*>> tables;
        for (const SqliteDatabase& database : mDatabases) {
            SqliteQuery query(database,
                              "SELECT name FROM pragma_table_list WHERE schema = 'main' AND type "
                              "IN ('table', 'view', 'virtual') AND name NOT LIKE 'sqlite\\_%' "
                              "ESCAPE '\\'");
            while (query.Next())
                tables.emplace_back(query.GetText(0), &database);
        }
        std::sort(tables.begin(), tables.end());
        return tables;
    }

    /// SQLite tells how names were written by the statements alone.
    void ReadQuotedNames()
    {
        for (const SqliteDatabase& database : mDatabases) {
            auto& quoted = mQuoted[&database];
            SqliteQuery query(database, "SELECT name, sql FROM sqlite_schema WHERE sql GLOB "
                                        "'*[\"`[]*'");
            while (query.Next())
                quoted[query.GetText(0)] = ListQuotedNames(query.GetText(1), EDialect::Sqlite);
        }
    }

    /// They hide tables of their name from every statement that follows.
    void NoteTemporaryTables()
    {
        for (const SqliteDatabase& database : mDatabases) {
            SqliteQuery query(database, "SELECT name FROM pragma_table_list WHERE schema = 'temp' "
                                        "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name");
            while (query.Next())
                mSchema.notes.push_back("left out a temporary table: " + query.GetText(0));
        }
    }

    void AddTable(const std::string& name, const SqliteDatabase& database)
    {
        SchemaTable table{.name = name};
        const NameSet& quoted = mQuoted[&database][name];
        if (quoted.find(name) != quoted.end())
            table.quoted.insert(name);
        try {
            ReadColumns(table, database);
        } catch (const SqliteError& error) {
            // Only declarations can be wrong for one table; all else is wrong with the file.
            if (error.GetCode() != SQLITE_ERROR)
                throw;
            mSchema.notes.push_back("left out what cannot be read (" + std::string(error.what()) +
                                    "): " + name);
            return;
        }
        for (SchemaColumn& column : table.columns)
            column.isQuoted = quoted.find(column.name) != quoted.end();
        ReadUniqueIndices(table, database);
        ReadForeignKeys(table, database);
        mSchema.tables.push_back(std::move(table));
    }

    static void ReadColumns(SchemaTable& table, const SqliteDatabase& database)
    {
        std::map<std::int64_t, std::string> primaryKey;
        SqliteQuery query(
            database, "SELECT name, \"notnull\", pk FROM pragma_table_xinfo(?) WHERE hidden <> 1");
        query.Bind(1, table.name);
        while (query.Next()) {
            const std::int64_t keyPosition = query.GetNumber(2);
            table.columns.push_back({.name = query.GetText(0),
                                     .isNotNull = query.GetNumber(1) != 0 || keyPosition != 0});
            if (keyPosition != 0)
                primaryKey[keyPosition] = query.GetText(0);
        }
        Names key;
        for (const auto& [position, column] : primaryKey)
            key.push_back(column);
        if (!key.empty())
            table.keys.push_back(std::move(key));
    }

    static void ReadUniqueIndices(SchemaTable& table, const SqliteDatabase& database)
    {
        SqliteQuery indices(database, "SELECT name FROM pragma_index_list(?) WHERE \"unique\" AND "
                                      "NOT partial ORDER BY name");
        indices.Bind(1, table.name);
        while (indices.Next()) {
            Names key;
            bool isOnExpression = false;
            SqliteQuery columns(database, "SELECT name FROM pragma_index_info(?) ORDER BY seqno");
            columns.Bind(1, indices.GetText(0));
            while (columns.Next()) {
                isOnExpression = isOnExpression || columns.IsNull(0);
                key.push_back(columns.GetText(0));
            }
            const bool isKnown =
                std::find(table.keys.begin(), table.keys.end(), key) != table.keys.end();
            if (!isOnExpression && !isKnown)
                table.keys.push_back(std::move(key));
        }
    }

    static void ReadForeignKeys(SchemaTable& table, const SqliteDatabase& database)
    {
        // SQLite numbers the keys of a table from the last one backwards.
        SqliteQuery query(database, "SELECT id, \"table\", \"from\", \"to\" FROM "
                                    "pragma_foreign_key_list(?) ORDER BY id DESC, seq");
        query.Bind(1, table.name);
        std::optional<std::int64_t> lastId;
        while (query.Next()) {
            if (lastId != query.GetNumber(0))
                table.foreignKeys.push_back({.table = query.GetText(1)});
            lastId = query.GetNumber(0);
            SchemaForeignKey& key = table.foreignKeys.back();
            key.from.push_back(query.GetText(2));
            if (!query.IsNull(3))
                key.to.push_back(query.GetText(3));
        }
    }

    std::span<const SqliteDatabase> mDatabases;
    DatabaseSchema mSchema;
    /// Of the statements that create tables, by their names.
    std::map<const SqliteDatabase*, std::map<std::string, NameSet>> mQuoted;
};

DatabaseSchema ReadOpened(const SqliteDatabase& database, const ProgressObserver& observer)
{
    return ReadSqliteSchema({&database, 1}, observer);
}

/// A database with a log of changes (WAL) needs files beside it even to be read. Where they cannot
/// be made, and there is no log, nobody changes it.
DatabaseSchema ReadFile(const std::filesystem::path& path, const ProgressObserver& observer)
{
    try {
        return ReadOpened(SqliteDatabase::OpenFile(path), observer);
    } catch (const SqliteError& error) {
        std::error_code missing;
        const bool lacksFiles =
            error.GetCode() == SQLITE_CANTOPEN || error.GetCode() == SQLITE_READONLY;
        if (!lacksFiles || !std::filesystem::exists(path, missing))
            throw;
        if (std::filesystem::exists(path.string() + "-wal", missing))
            throw SqliteError(
                "it is in WAL mode, in a folder that cannot be written; copy it, with "
                "the files beside it, to another folder",
                error.GetOffset(), error.GetCode());
        return ReadOpened(SqliteDatabase::OpenUnchangingFile(path), observer);
    }
}

} // namespace

DatabaseSchema ReadSqliteSchema(std::span<const SqliteDatabase> databases,
                                const ProgressObserver& observer)
{
    return SchemaReader(databases).Read(observer);
}

namespace {

/// Returns the schema that `read` returns, called after the file; a fault is one of the file.
template <typename Read>
DatabaseSchema NameSchema(const std::filesystem::path& path, const Read& read)
{
    try {
        DatabaseSchema schema = read();
        schema.name = path.stem().string();
        return schema;
    } catch (const SqliteError& error) {
        throw InputError(
            {{path.string(), "cannot read the database: " + std::string(error.what())}});
    }
}

} // namespace

DatabaseSchema ReadSqliteFile(const std::filesystem::path& path, const ProgressObserver& observer)
{
    std::error_code failure;
    if (std::filesystem::is_directory(path, failure))
        throw InputError({{path.string(), "is a folder, not a database"}});
    return NameSchema(path, [&] { return ReadFile(path, observer); });
}

DatabaseSchema ReadSqliteBytes(std::string_view bytes, const std::filesystem::path& path,
                               const ProgressObserver& observer)
{
    return NameSchema(path, [&] { return ReadOpened(SqliteDatabase::OpenBytes(bytes), observer); });
}

} // namespace qe::tool
