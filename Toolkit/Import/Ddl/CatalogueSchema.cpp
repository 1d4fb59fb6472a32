#include "Toolkit/Import/Ddl/CatalogueSchema.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <utility>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;

class SchemaMaker
{
public:
    SchemaMaker(std::deque<CatalogueTable>& tables, const TableNames& names,
                const std::string& defaultSchema, ReadingNotes& notes)
        : mTables(tables), mNames(names), mDefaultSchema(defaultSchema), mNotes(notes)
    {}

    DatabaseSchema Make()
    {
        NameTables();
        for (auto& [table, name] : mShownNames)
            SetPrimaryColumns(*table);
        DatabaseSchema schema;
        for (const auto& [table, name] : mShownNames)
            schema.tables.push_back(MakeTable(*table, name));
        std::sort(schema.tables.begin(), schema.tables.end(),
                  [](const SchemaTable& left, const SchemaTable& right) {
                      return left.name < right.name;
                  });
        return schema;
    }

private:
    [[nodiscard]] bool IsInDefault(const CatalogueTable& table) const
    {
        return table.name.schema.empty() || table.name.schema == mDefaultSchema;
    }

    /// Gives every table a name of its own, letter case of A to Z aside.
    void NameTables()
    {
        std::map<std::string, std::size_t> counts;
        for (CatalogueTable& table : mTables) {
            if (table.isPartition && !table.isDropped)
                mNotes.CountPartition();
            if (!table.isPartition && !table.isDropped)
                ++counts[ascii::ToLower(table.name.name)];
        }
        std::set<std::string> taken;
        for (CatalogueTable& table : mTables) {
            if (table.isPartition || table.isDropped)
                continue;
            const bool isShared = counts[ascii::ToLower(table.name.name)] > 1;
            const std::string wanted = isShared && !IsInDefault(table)
                                           ? table.name.schema + '.' + table.name.name
                                           : table.name.name;
            std::string name = wanted;
            for (int number = 2; !taken.insert(ascii::ToLower(name)).second; ++number)
                name = wanted + " (" + std::to_string(number) + ')';
            mPositions[&table] = mShownNames.size();
            mShownNames.emplace_back(&table, name);
        }
    }

    static void SetPrimaryColumns(CatalogueTable& table)
    {
        const KeyDeclaration* const primary = table.FindPrimaryKey();
        if (primary == nullptr)
            return;
        for (const std::string& name : primary->columns)
            if (SchemaColumn* const column = table.FindColumn(name))
                column->isNotNull = true;
    }

    SchemaTable MakeTable(const CatalogueTable& table, const std::string& name)
    {
        SchemaTable made{.name = name,
                         .quoted = table.name.quoted,
                         .description = table.description,
                         .rows = table.rows,
                         .columns = table.columns};
        if (!IsInDefault(table))
            made.source = {table.name.schema, table.name.name};
        else if (name != table.name.name)
            made.source = {table.name.name};
        std::set<Names> known;
        for (const EKeyKind kind : {EKeyKind::Primary, EKeyKind::Unique})
            for (const CatalogueTable::Key& key : table.keys)
                if (key.declaration.kind == kind)
                    AddKey(key, made, known);
        for (const CatalogueTable::ForeignKey& key : table.foreignKeys)
            AddForeignKey(key, made);
        return made;
    }

    /// Adds a key unless it is known; `known` are sets of columns, each sorted.
    void AddKey(const CatalogueTable::Key& key, SchemaTable& made, std::set<Names>& known)
    {
        Names columns = key.declaration.columns;
        if (!SpellLike(made.columns, columns)) {
            mNotes.Tell(key.place, "a key over columns that do not exist: " + made.name + " (" +
                                       JoinTexts(key.declaration.columns) + ")");
            return;
        }
        Names sorted = columns;
        std::sort(sorted.begin(), sorted.end());
        if (!columns.empty() && known.insert(std::move(sorted)).second)
            made.keys.push_back(std::move(columns));
    }

    void AddForeignKey(const CatalogueTable::ForeignKey& key, SchemaTable& made)
    {
        const ForeignKeyDeclaration& declaration = key.declaration;
        const std::string what =
            made.name + " (" + JoinTexts(declaration.columns) + ") -> " + declaration.table.name;
        CatalogueTable* const target = mNames.Find(declaration.table, *key.path);
        const auto position = mPositions.find(target);
        if (position == mPositions.end()) {
            mNotes.Tell(key.place,
                        target == nullptr
                            ? "a foreign key to a table that the scripts do not create: " + what
                            : "a foreign key to a partition: " + what);
            return;
        }
        SchemaForeignKey added{.table = mShownNames[position->second].second,
                               .from = declaration.columns,
                               .to = declaration.referenced};
        if (added.to.empty() && target->FindPrimaryKey() != nullptr)
            added.to = target->FindPrimaryKey()->columns;
        if (added.to.empty() || added.to.size() != added.from.size() ||
            !SpellLike(made.columns, added.from) || !SpellLike(target->columns, added.to)) {
            mNotes.Tell(key.place,
                        "a foreign key whose columns do not exist or do not match: " + what);
            return;
        }
        made.foreignKeys.push_back(std::move(added));
    }

    /// Writes the names as the columns are written; false when there are no such columns.
    static bool SpellLike(const std::vector<SchemaColumn>& columns, Names& names)
    {
        for (std::string& name : names) {
            const SchemaColumn* const column = FindColumn(columns, name);
            if (column == nullptr)
                return false;
            name = column->name;
        }
        return true;
    }

    std::deque<CatalogueTable>& mTables;
    const TableNames& mNames;
    const std::string& mDefaultSchema;
    ReadingNotes& mNotes;
    std::vector<std::pair<CatalogueTable*, std::string>> mShownNames;
    std::map<const CatalogueTable*, std::size_t> mPositions;
};

} // namespace

DatabaseSchema MakeSchema(std::deque<CatalogueTable>& tables, const TableNames& names,
                          const std::string& defaultSchema, ReadingNotes& notes)
{
    return SchemaMaker(tables, names, defaultSchema, notes).Make();
}

} // namespace qe::tool
