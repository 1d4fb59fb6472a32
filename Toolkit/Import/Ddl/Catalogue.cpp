#include "Toolkit/Import/Ddl/Catalogue.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Ddl/CatalogueSchema.h"

#include <algorithm>
#include <map>
#include <utility>
#include <variant>

namespace qe::tool {

namespace {

std::string DefaultSchema(EDialect dialect)
{
    if (dialect == EDialect::PostgreSql)
        return "public";
    return dialect == EDialect::SqlServer ? "dbo" : "";
}

void ReplaceName(std::vector<std::string>& names, const RenamedColumn& change)
{
    std::replace(names.begin(), names.end(), change.from, change.to);
}

bool IsSelf(const ObjectName& target, const ObjectName& table)
{
    return target.name == table.name && (target.schema.empty() || target.schema == table.schema);
}

/// Returns whether tables that inherit take the change over.
bool ConcernsColumns(const Alteration& change)
{
    return std::holds_alternative<SchemaColumn>(change) ||
           std::holds_alternative<DroppedColumn>(change) ||
           std::holds_alternative<RenamedColumn>(change) ||
           std::holds_alternative<ChangedColumn>(change);
}

/// Returns the table and all that inherit from it, each once.
std::vector<CatalogueTable*> ListWithHeirs(CatalogueTable& table)
{
    std::vector<CatalogueTable*> tables{&table};
    std::set<const CatalogueTable*> known{&table};
    for (std::size_t i = 0; i < tables.size(); ++i)
        for (CatalogueTable* const child : tables[i]->children)
            if (known.insert(child).second)
                tables.push_back(child);
    return tables;
}

} // namespace

/// Makes one change in one table.
class Catalogue::Applier
{
public:
    Applier(Catalogue& catalogue, CatalogueTable& table, const ScriptPlace& place, SearchPath path)
        : mCatalogue(catalogue), mTable(table), mPlace(place), mPath(std::move(path))
    {}

    void operator()(const SchemaColumn& column) const
    {
        if (!column.name.empty() && FindColumn(mTable.columns, column.name) == nullptr)
            mTable.columns.push_back(column);
    }

    void operator()(const DroppedColumn& dropped) const
    {
        const auto hasColumn = [&dropped](const auto& key) {
            const auto& columns = key.declaration.columns;
            return std::find(columns.begin(), columns.end(), dropped.name) != columns.end();
        };
        std::erase_if(mTable.columns,
                      [&](const SchemaColumn& column) { return column.name == dropped.name; });
        std::erase_if(mTable.keys, hasColumn);
        std::erase_if(mTable.foreignKeys, hasColumn);
    }

    void operator()(const RenamedColumn& renamed) const
    {
        SchemaColumn* const column = mTable.FindColumn(renamed.from);
        const SchemaColumn* const namesake = FindColumn(mTable.columns, renamed.to);
        if (column == nullptr || renamed.to.empty() || (namesake != nullptr && namesake != column))
            return;
        const RenamedColumn exact{.from = column->name, .to = renamed.to};
        column->name = renamed.to;
        column->isQuoted = renamed.isQuoted;
        for (CatalogueTable::Key& key : mTable.keys)
            ReplaceName(key.declaration.columns, exact);
        for (CatalogueTable::ForeignKey& key : mTable.foreignKeys)
            ReplaceName(key.declaration.columns, exact);
        for (CatalogueTable& other : mCatalogue.mTables)
            for (CatalogueTable::ForeignKey& key : other.foreignKeys)
                if (IsSelf(key.declaration.table, mTable.name))
                    ReplaceName(key.declaration.referenced, exact);
    }

    void operator()(const ChangedColumn& changed) const
    {
        if (SchemaColumn* const column = mTable.FindColumn(changed.name))
            column->isNotNull = changed.isNotNull;
    }

    void operator()(const KeyDeclaration& key) const
    {
        if (key.kind == EKeyKind::Primary && mTable.FindPrimaryKey() != nullptr)
            mCatalogue.mNotes->Tell(mPlace, "a second primary key of " + mTable.name.name);
        else
            mTable.keys.push_back({.declaration = key, .place = mPlace});
        mCatalogue.mKeyNames.insert(ascii::ToLower(key.name));
    }

    void operator()(const ForeignKeyDeclaration& key) const
    {
        mTable.foreignKeys.push_back({.declaration = key, .place = mPlace, .path = mPath});
    }

    void operator()(const DroppedKey& dropped) const
    {
        const auto isNamed = [&dropped](const auto& key) {
            return !dropped.name.empty() &&
                   ascii::ToLower(key.declaration.name) == ascii::ToLower(dropped.name);
        };
        std::erase_if(mTable.keys, isNamed);
        std::erase_if(mTable.foreignKeys, isNamed);
    }

    void operator()(const DroppedPrimaryKey&) const
    {
        std::erase_if(mTable.keys, [](const CatalogueTable::Key& key) {
            return key.declaration.kind == EKeyKind::Primary;
        });
    }

    void operator()(const RenamedTable& renamed) const
    {
        const ObjectName before = mTable.name;
        if (!renamed.name.name.empty())
            mTable.name.name = renamed.name.name;
        if (!renamed.name.schema.empty())
            mTable.name.schema = renamed.name.schema;
        mTable.name.quoted.insert(renamed.name.quoted.begin(), renamed.name.quoted.end());
        mCatalogue.mNames.Move(mTable, before);
        for (CatalogueTable& other : mCatalogue.mTables)
            for (CatalogueTable::ForeignKey& key : other.foreignKeys)
                if (IsSelf(key.declaration.table, before))
                    key.declaration.table = mTable.name;
    }

    void operator()(const Inheritance& inheritance) const
    {
        mCatalogue.Inherit(mTable, inheritance);
    }

    void operator()(const DescribedTable& described) const
    {
        mTable.description = described.description;
    }

    void operator()(const DescribedColumn& described) const
    {
        if (SchemaColumn* const column = mTable.FindColumn(described.name))
            column->description = described.description;
    }

private:
    Catalogue& mCatalogue;
    CatalogueTable& mTable;
    ScriptPlace mPlace;
    SearchPath mPath;
};

Catalogue::Catalogue(EDialect dialect, ReadingNotes& notes)
    : Catalogue(DefaultSchema(dialect), notes)
{}

Catalogue::Catalogue(std::string defaultSchema, ReadingNotes& notes)
    : mNotes(&notes), mDefaultSchema(std::move(defaultSchema))
{
    std::vector<std::string> path;
    if (!mDefaultSchema.empty())
        path.push_back(mDefaultSchema);
    SetSearchPath(std::move(path));
}

void Catalogue::SetSearchPath(std::vector<std::string> schemas)
{
    // Where no schema is the usual one, that is what the first script chooses.
    if (mDefaultSchema.empty() && !schemas.empty() && mTables.empty())
        mDefaultSchema = schemas.front();
    mPath = std::make_shared<const std::vector<std::string>>(std::move(schemas));
}

ObjectName Catalogue::Complete(ObjectName name) const
{
    if (name.schema.empty() && !mPath->empty())
        name.schema = mPath->front();
    return name;
}

void Catalogue::AddTable(TableDeclaration declaration, const ScriptPlace& place)
{
    ObjectName name = Complete(std::move(declaration.name));
    if (mNames.FindSame(name) != nullptr) {
        mNotes->Tell(place, "a table that there is already: " + name.name);
        return;
    }
    CatalogueTable& table = mTables.emplace_back();
    table.name = std::move(name);
    table.description = std::move(declaration.description);
    table.rows = declaration.rows;
    mNames.Add(table);
    for (const Inheritance& inheritance : declaration.inheritances)
        Inherit(table, inheritance);
    AddColumns(table, std::move(declaration.columns), place);
    const Applier applier(*this, table, place, mPath);
    for (const KeyDeclaration& key : declaration.keys)
        applier(key);
    for (const ForeignKeyDeclaration& key : declaration.foreignKeys)
        applier(key);
    mNotes->CountPartialKeys(declaration.partialKeys);
}

void Catalogue::AddColumns(CatalogueTable& table, std::vector<SchemaColumn> columns,
                           const ScriptPlace& place)
{
    std::map<std::string, std::size_t> inherited;
    for (std::size_t i = 0; i < table.columns.size(); ++i)
        inherited.emplace(table.columns[i].name, i);
    std::set<std::string> declared;
    for (SchemaColumn& column : columns) {
        const auto found = inherited.find(column.name);
        if (column.name.empty() || !declared.insert(column.name).second)
            mNotes->Tell(place, "a column without a name of its own: " + table.name.name + '.' +
                                    column.name);
        else if (found == inherited.end())
            table.columns.push_back(std::move(column));
        else if (column.isNotNull)
            table.columns[found->second].isNotNull = true;
    }
}

bool Catalogue::HasTable(const ObjectName& table) const
{
    return mNames.Find(table, *mPath) != nullptr;
}

void Catalogue::Inherit(CatalogueTable& table, const Inheritance& inheritance)
{
    CatalogueTable* const parent = mNames.Find(inheritance.table, *mPath);
    table.isPartition = table.isPartition || inheritance.kind == Inheritance::EKind::Partition;
    if (parent == nullptr || parent == &table)
        return;
    const KeyDeclaration* const primary = parent->FindPrimaryKey();
    for (SchemaColumn column : parent->columns) {
        column.isNotNull =
            column.isNotNull ||
            (primary != nullptr && std::find(primary->columns.begin(), primary->columns.end(),
                                             column.name) != primary->columns.end());
        if (FindColumn(table.columns, column.name) == nullptr)
            table.columns.push_back(std::move(column));
    }
    if (inheritance.kind == Inheritance::EKind::Child)
        parent->children.push_back(&table);
    if (inheritance.kind == Inheritance::EKind::ColumnsAndKeys)
        table.keys.insert(table.keys.end(), parent->keys.begin(), parent->keys.end());
}

void Catalogue::Alter(const ObjectName& name, const Alteration& change, const ScriptPlace& place)
{
    const bool isKey = std::holds_alternative<KeyDeclaration>(change) ||
                       std::holds_alternative<ForeignKeyDeclaration>(change);
    CatalogueTable* const table = mNames.Find(name, *mPath);
    if (table != nullptr && ConcernsColumns(change))
        for (CatalogueTable* const changed : ListWithHeirs(*table))
            std::visit(Applier(*this, *changed, place, mPath), change);
    else if (table != nullptr)
        std::visit(Applier(*this, *table, place, mPath), change);
    else if (isKey)
        mWaiting.push_back({.table = name, .change = change, .place = place, .path = mPath});
}

void Catalogue::DropTable(const ObjectName& name)
{
    CatalogueTable* const table = mNames.Find(name, *mPath);
    if (table == nullptr || (!name.schema.empty() && table->name.schema != name.schema))
        return;
    table->isDropped = true;
}

void Catalogue::DropIndex(const std::string& name)
{
    if (name.empty() || mKeyNames.erase(ascii::ToLower(name)) == 0)
        return;
    for (CatalogueTable& table : mTables)
        std::erase_if(table.keys, [&name](const CatalogueTable::Key& key) {
            return ascii::ToLower(key.declaration.name) == ascii::ToLower(name);
        });
}

DatabaseSchema Catalogue::Finish()
{
    for (const WaitingKey& waiting : std::exchange(mWaiting, {})) {
        if (CatalogueTable* const table = mNames.Find(waiting.table, *waiting.path))
            std::visit(Applier(*this, *table, waiting.place, waiting.path), waiting.change);
        else
            mNotes->Tell(waiting.place,
                         "a key of a table that the scripts do not create: " + waiting.table.name);
    }
    return MakeSchema(mTables, mNames, mDefaultSchema, *mNotes);
}

} // namespace qe::tool
