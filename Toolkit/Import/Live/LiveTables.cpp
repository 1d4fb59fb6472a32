#include "Toolkit/Import/Live/LiveTables.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Ddl/Catalogue.h"
#include "Toolkit/Import/Ddl/ReadingNotes.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <set>
#include <utility>

namespace qe::tool {

namespace {

using TableName = std::pair<std::string, std::string>;

TableName Fold(const ObjectName& name)
{
    return {ascii::ToLower(name.schema), ascii::ToLower(name.name)};
}

/// Returns the key of that name, which is made when there is none.
template <typename Key>
Key& FindKey(std::vector<Key>& keys, const std::string& name)
{
    const auto found =
        std::find_if(keys.rbegin(), keys.rend(), [&](const Key& key) { return key.name == name; });
    if (found != keys.rend())
        return *found;
    keys.push_back({.name = name});
    return keys.back();
}

void RemovePartialKeys(TableDeclaration& table)
{
    table.partialKeys = std::erase_if(table.keys, [](const KeyDeclaration& key) {
        return std::find(key.columns.begin(), key.columns.end(), "") != key.columns.end();
    });
}

} // namespace

std::optional<std::uint64_t> ToRowCount(const std::string& text)
{
    std::uint64_t rows = 0;
    std::from_chars(text.data(), text.data() + text.size(), rows);
    return rows > 0 ? std::optional(rows) : std::nullopt;
}

LiveTables::LiveTables(std::vector<LiveTable> tables, ProgressObserver observer)
    : mTables(std::move(tables)), mObserver(std::move(observer))
{
    for (const LiveTable& table : mTables) {
        mPositions.emplace(table.id, mDeclarations.size());
        mDeclarations.push_back(
            {.name = table.name, .description = table.description, .rows = table.rows});
    }
}

void LiveTables::ShowProgress(std::size_t done) const
{
    if (mObserver)
        mObserver({.done = done, .size = mTables.size(), .count = done, .unit = "tables"});
}

TableDeclaration* LiveTables::Find(std::string_view table)
{
    const auto found = mPositions.find(table);
    return found == mPositions.end() ? nullptr : &mDeclarations[found->second];
}

void LiveTables::AddColumn(std::string_view table, SchemaColumn column)
{
    if (TableDeclaration* const found = Find(table))
        found->columns.push_back(std::move(column));
}

void LiveTables::AddKeyColumn(std::string_view table, LiveKeyColumn column)
{
    TableDeclaration* const found = Find(table);
    if (found == nullptr)
        return;
    KeyDeclaration& key = FindKey(found->keys, column.key);
    key.kind = column.kind;
    key.columns.push_back(std::move(column.column));
}

void LiveTables::AddForeignKeyColumn(std::string_view table, LiveForeignKeyColumn column)
{
    TableDeclaration* const found = Find(table);
    if (found == nullptr)
        return;
    ForeignKeyDeclaration& key = FindKey(found->foreignKeys, column.key);
    key.table = std::move(column.table);
    key.columns.push_back(std::move(column.column));
    if (!column.referenced.empty())
        key.referenced.push_back(std::move(column.referenced));
}

std::size_t LiveTables::RemoveForeignKeysToOthers()
{
    std::set<TableName> known;
    for (const LiveTable& table : mTables)
        known.insert(Fold(table.name));
    std::size_t removed = 0;
    for (TableDeclaration& table : mDeclarations)
        removed += std::erase_if(table.foreignKeys, [&known](const ForeignKeyDeclaration& key) {
            return !known.contains(Fold(key.table));
        });
    return removed;
}

DatabaseSchema LiveTables::Finish(const std::string& defaultSchema, ReadingNotes& notes)
{
    const std::size_t removed = RemoveForeignKeysToOthers();
    Catalogue catalogue(defaultSchema, notes);
    const std::filesystem::path path("server");
    for (TableDeclaration& table : mDeclarations) {
        RemovePartialKeys(table);
        catalogue.AddTable(std::move(table), {.path = &path});
    }
    DatabaseSchema schema = catalogue.Finish();
    schema.notes = notes.List();
    if (removed > 0)
        schema.notes.push_back("foreign keys left out that lead to tables that are not read: " +
                               std::to_string(removed));
    return schema;
}

} // namespace qe::tool
