#include "Toolkit/Import/Ddl/CatalogueTable.h"

#include "Engine/Services/Characters.h"

#include <algorithm>

namespace qe::tool {

namespace {

using Tables = std::vector<CatalogueTable*>;

bool IsSameFolded(const std::string& left, const std::string& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return ascii::ToLower(a) == ascii::ToLower(b); });
}

CatalogueTable* FindInSchema(const Tables& tables, const std::string& schema)
{
    const auto found =
        std::find_if(tables.begin(), tables.end(), [&schema](const CatalogueTable* table) {
            return IsSameFolded(table->name.schema, schema);
        });
    return found == tables.end() ? nullptr : *found;
}

/// Returns the table that the name means among tables that are called so.
CatalogueTable* Choose(const Tables& tables, const std::string& schema,
                       const std::vector<std::string>& path)
{
    if (!schema.empty()) {
        CatalogueTable* const found = FindInSchema(tables, schema);
        return found == nullptr ? FindInSchema(tables, {}) : found;
    }
    for (const std::string& searched : path)
        if (CatalogueTable* const found = FindInSchema(tables, searched))
            return found;
    return tables.size() == 1 ? tables.front() : FindInSchema(tables, {});
}

} // namespace

const KeyDeclaration* CatalogueTable::FindPrimaryKey() const
{
    const auto found = std::find_if(keys.begin(), keys.end(), [](const Key& key) {
        return key.declaration.kind == EKeyKind::Primary;
    });
    return found == keys.end() ? nullptr : &found->declaration;
}

SchemaColumn* CatalogueTable::FindColumn(const std::string& column)
{
    const SchemaColumn* const found = qe::tool::FindColumn(columns, column);
    return found == nullptr ? nullptr : &columns[static_cast<std::size_t>(found - columns.data())];
}

void TableNames::Add(CatalogueTable& table)
{
    mTables[ascii::ToLower(table.name.name)].push_back(&table);
}

void TableNames::Move(CatalogueTable& table, const ObjectName& before)
{
    std::erase(mTables[ascii::ToLower(before.name)], &table);
    Add(table);
}

CatalogueTable* TableNames::Find(const ObjectName& name, const std::vector<std::string>& path) const
{
    const Tables tables = List(name.name);
    Tables same;
    std::copy_if(tables.begin(), tables.end(), std::back_inserter(same),
                 [&name](const CatalogueTable* table) { return table->name.name == name.name; });
    CatalogueTable* const found = Choose(same, name.schema, path);
    return found == nullptr ? Choose(tables, name.schema, path) : found;
}

CatalogueTable* TableNames::FindSame(const ObjectName& name) const
{
    for (CatalogueTable* const table : List(name.name))
        if (table->name.name == name.name && table->name.schema == name.schema)
            return table;
    return nullptr;
}

TableNames::Tables TableNames::List(const std::string& name) const
{
    Tables tables;
    const auto found = mTables.find(ascii::ToLower(name));
    if (found != mTables.end())
        std::copy_if(found->second.begin(), found->second.end(), std::back_inserter(tables),
                     [](const CatalogueTable* table) { return !table->isDropped; });
    return tables;
}

} // namespace qe::tool
