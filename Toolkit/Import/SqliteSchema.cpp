#include "Toolkit/Import/SqliteSchema.h"

#include "Toolkit/Import/SqliteDatabase.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
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
    explicit SchemaReader(const SqliteDatabase& database) : mDatabase(database) {}

    DatabaseSchema Read()
    {
        for (const std::string& name : ReadTableNames())
            AddTable(name);
        return std::move(mSchema);
    }

private:
    Names ReadTableNames() const
    {
        Names names;
        SqliteQuery query(mDatabase, "SELECT name FROM pragma_table_list WHERE schema = 'main' AND "
                                     "type IN ('table', 'view', 'virtual') AND name NOT LIKE "
                                     "'sqlite\\_%' ESCAPE '\\' ORDER BY name");
        while (query.Next())
            names.push_back(query.GetText(0));
        return names;
    }

    void AddTable(const std::string& name)
    {
        SchemaTable table{.name = name};
        try {
            ReadColumns(table);
        } catch (const SqliteError& error) {
            mSchema.notes.push_back("left out what cannot be read (" + std::string(error.what()) +
                                    "): " + name);
            return;
        }
        ReadUniqueIndices(table);
        ReadForeignKeys(table);
        mSchema.tables.push_back(std::move(table));
    }

    void ReadColumns(SchemaTable& table) const
    {
        std::map<std::int64_t, std::string> primaryKey;
        SqliteQuery query(
            mDatabase, "SELECT name, \"notnull\", pk FROM pragma_table_xinfo(?) WHERE hidden <> 1");
        query.Bind(1, table.name);
        while (query.Next()) {
            const std::int64_t keyPosition = query.GetNumber(2);
            table.columns.push_back(
                {query.GetText(0), query.GetNumber(1) != 0 || keyPosition != 0});
            if (keyPosition != 0)
                primaryKey[keyPosition] = query.GetText(0);
        }
        Names key;
        for (const auto& [position, column] : primaryKey)
            key.push_back(column);
        if (!key.empty())
            table.keys.push_back(std::move(key));
    }

    void ReadUniqueIndices(SchemaTable& table) const
    {
        SqliteQuery indices(mDatabase, "SELECT name FROM pragma_index_list(?) WHERE \"unique\" AND "
                                       "NOT partial ORDER BY name");
        indices.Bind(1, table.name);
        while (indices.Next()) {
            Names key;
            bool isOnExpression = false;
            SqliteQuery columns(mDatabase, "SELECT name FROM pragma_index_info(?) ORDER BY seqno");
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

    void ReadForeignKeys(SchemaTable& table) const
    {
        // SQLite numbers the keys of a table from the last one backwards.
        SqliteQuery query(mDatabase, "SELECT id, \"table\", \"from\", \"to\" FROM "
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

    const SqliteDatabase& mDatabase;
    DatabaseSchema mSchema;
};

} // namespace

DatabaseSchema ReadSqliteSchema(const SqliteDatabase& database)
{
    return SchemaReader(database).Read();
}

DatabaseSchema ReadSqliteFile(const std::filesystem::path& path)
{
    std::error_code failure;
    if (std::filesystem::is_directory(path, failure))
        throw InputError({{path.string(), "is a folder, not a database"}});
    try {
        DatabaseSchema schema = ReadSqliteSchema(SqliteDatabase::OpenFile(path));
        schema.name = path.stem().string();
        return schema;
    } catch (const SqliteError& error) {
        throw InputError(
            {{path.string(), "cannot read the database: " + std::string(error.what())}});
    }
}

} // namespace qe::tool
