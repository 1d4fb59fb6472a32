#include "Toolkit/Import/DatabaseSchema.h"

#include "Toolkit/Import/SqliteDatabase.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

/// SQLite compares names without regard to the case of A to Z.
std::string Fold(std::string name)
{
    for (char& letter : name)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return name;
}

class SchemaReader
{
public:
    explicit SchemaReader(const SqliteDatabase& database) : mDatabase(database) {}

    DatabaseSchema Read()
    {
        for (const std::string& name : ReadTableNames())
            AddTable(name);
        for (SchemaTable& table : mSchema.tables)
            ReadForeignKeys(table);
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
        SchemaTable table{name, {}, {}, {}};
        try {
            ReadColumns(table);
        } catch (const SqliteError& error) {
            mSchema.notes.push_back("left out what cannot be read (" + std::string(error.what()) +
                                    "): " + name);
            return;
        }
        ReadUniqueIndices(table);
        mPositions[Fold(name)] = mSchema.tables.size();
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

    void ReadForeignKeys(SchemaTable& table)
    {
        // SQLite numbers the keys of a table from the last one backwards.
        SqliteQuery query(mDatabase, "SELECT id, \"table\", \"from\", \"to\" FROM "
                                     "pragma_foreign_key_list(?) ORDER BY id DESC, seq");
        query.Bind(1, table.name);
        std::optional<std::int64_t> lastId;
        std::vector<SchemaForeignKey> declared;
        while (query.Next()) {
            if (lastId != query.GetNumber(0))
                declared.push_back({query.GetText(1), {}, {}});
            lastId = query.GetNumber(0);
            declared.back().from.push_back(query.GetText(2));
            if (!query.IsNull(3))
                declared.back().to.push_back(query.GetText(3));
        }
        for (SchemaForeignKey& key : declared)
            AddForeignKey(table, std::move(key));
    }

    void AddForeignKey(SchemaTable& table, SchemaForeignKey key)
    {
        const std::string what = table.name + " (" + JoinTexts(key.from) + ") -> " + key.table;
        const auto target = mPositions.find(Fold(key.table));
        if (target == mPositions.end()) {
            mSchema.notes.push_back("left out a foreign key to a table that does not exist: " +
                                    what);
            return;
        }
        const SchemaTable& parent = mSchema.tables[target->second];
        key.table = parent.name;
        if (key.to.empty() && !parent.keys.empty())
            key.to = parent.keys.front();
        if (key.to.size() != key.from.size() || !SpellLike(table, key.from) ||
            !SpellLike(parent, key.to)) {
            mSchema.notes.push_back("left out a foreign key whose columns do not exist: " + what);
            return;
        }
        const bool isRepeated = std::any_of(
            table.foreignKeys.begin(), table.foreignKeys.end(), [&](const SchemaForeignKey& other) {
                return other.table == key.table && other.from == key.from && other.to == key.to;
            });
        if (isRepeated)
            mSchema.notes.push_back("left out a foreign key that is declared twice: " + what);
        else
            table.foreignKeys.push_back(std::move(key));
    }

    /// Writes the names as the table does; false when it has no such column.
    static bool SpellLike(const SchemaTable& table, Names& names)
    {
        for (std::string& name : names) {
            const auto column = std::find_if(
                table.columns.begin(), table.columns.end(),
                [&](const SchemaColumn& other) { return Fold(other.name) == Fold(name); });
            if (column == table.columns.end())
                return false;
            name = column->name;
        }
        return true;
    }

    const SqliteDatabase& mDatabase;
    DatabaseSchema mSchema;
    std::map<std::string, std::size_t> mPositions;
};

} // namespace

DatabaseSchema ReadSchema(const SqliteDatabase& database)
{
    return SchemaReader(database).Read();
}

} // namespace qe::tool
