#include "Toolkit/Import/Schema/DatabaseSchema.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

/// Names are the same whatever the case of A to Z.
std::string Fold(std::string name)
{
    return ascii::ToLower(std::move(name));
}

/// Writes the names as the table does; false when it has no such column.
bool SpellLike(const SchemaTable& table, Names& names)
{
    for (std::string& name : names) {
        const SchemaColumn* const column = FindColumn(table.columns, name);
        if (column == nullptr)
            return false;
        name = column->name;
    }
    return true;
}

class KeyResolver
{
public:
    explicit KeyResolver(DatabaseSchema& schema) : mSchema(schema)
    {
        for (std::size_t position = 0; position < schema.tables.size(); ++position) {
            const SchemaTable& table = schema.tables[position];
            mPositions.emplace(FullName(table.space, table.name), position);
            mPositionsByName[Fold(table.name)].push_back(position);
        }
    }

    void Resolve()
    {
        for (SchemaTable& table : mSchema.tables) {
            for (SchemaForeignKey& key : std::exchange(table.foreignKeys, {}))
                Add(table, std::move(key));
        }
    }

private:
    using TableName = std::pair<std::string, std::string>;

    static TableName FullName(const std::string& space, const std::string& name)
    {
        return {Fold(space), Fold(name)};
    }

    /// Adds the key to the table, unless it is to be left out.
    void Add(SchemaTable& table, SchemaForeignKey key)
    {
        const std::string what = table.title + " (" + JoinTexts(key.from) + ") -> " + key.table;
        const std::optional<std::size_t> target = FindTable(table, key);
        if (!target) {
            LeaveOut("a foreign key to a table that does not exist: " + what);
            return;
        }
        key.target = *target;
        const SchemaTable& parent = mSchema.tables[key.target];
        if (key.to.empty() && parent.keys.empty())
            LeaveOut("a foreign key to a table that has no key: " + what);
        else if (!Complete(key, table, parent))
            LeaveOut("a foreign key whose columns do not exist: " + what);
        else if (IsRepeated(key, table))
            LeaveOut("a foreign key that is declared twice: " + what);
        else
            table.foreignKeys.push_back(std::move(key));
    }

    [[nodiscard]] std::optional<std::size_t> FindTable(const SchemaTable& table,
                                                       const SchemaForeignKey& key) const
    {
        const std::string& space = key.space.empty() ? table.space : key.space;
        if (const auto found = mPositions.find(FullName(space, key.table));
            found != mPositions.end())
            return found->second;
        const auto named = mPositionsByName.find(Fold(key.table));
        if (!key.space.empty() || named == mPositionsByName.end() || named->second.size() != 1)
            return std::nullopt;
        return named->second.front();
    }

    /// Writes the names of a key from `table` to `parent` as these do; false when there are no such
    /// columns.
    static bool Complete(SchemaForeignKey& key, const SchemaTable& table, const SchemaTable& parent)
    {
        key.table = parent.name;
        if (key.to.empty())
            key.to = parent.keys.front();
        return key.to.size() == key.from.size() && SpellLike(table, key.from) &&
               SpellLike(parent, key.to);
    }

    static bool IsRepeated(const SchemaForeignKey& key, const SchemaTable& table)
    {
        return std::any_of(
            table.foreignKeys.begin(), table.foreignKeys.end(), [&](const SchemaForeignKey& other) {
                return other.target == key.target && other.from == key.from && other.to == key.to;
            });
    }

    void LeaveOut(const std::string& what) { mSchema.notes.push_back("left out " + what); }

    DatabaseSchema& mSchema;
    std::map<TableName, std::size_t> mPositions;
    std::map<std::string, std::vector<std::size_t>> mPositionsByName;
};

} // namespace

const SchemaColumn* FindColumn(const std::vector<SchemaColumn>& columns, const std::string& name)
{
    const auto find = [&columns](const auto& isNamed) {
        const auto found = std::find_if(columns.begin(), columns.end(), isNamed);
        return found == columns.end() ? nullptr : &*found;
    };
    if (const auto* same = find([&](const SchemaColumn& other) { return other.name == name; }))
        return same;
    return find([folded = Fold(name)](const SchemaColumn& other) {
        return other.name.size() == folded.size() && Fold(other.name) == folded;
    });
}

void ResolveForeignKeys(DatabaseSchema& schema)
{
    KeyResolver(schema).Resolve();
}

bool IsUnique(const SchemaTable& table, const std::vector<std::string>& columns)
{
    return std::any_of(table.keys.begin(), table.keys.end(), [&](const Names& key) {
        return !key.empty() && std::all_of(key.begin(), key.end(), [&](const std::string& column) {
            return std::find(columns.begin(), columns.end(), column) != columns.end();
        });
    });
}

std::vector<std::string> TitlesOf(const SchemaTable& table, const std::vector<std::string>& columns)
{
    Names titles;
    for (const std::string& name : columns) {
        for (const SchemaColumn& column : table.columns) {
            if (column.name == name)
                titles.push_back(column.title);
        }
    }
    return titles;
}

} // namespace qe::tool
