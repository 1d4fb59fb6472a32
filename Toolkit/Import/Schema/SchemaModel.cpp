#include "Toolkit/Import/Schema/SchemaModel.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Engine/Model/Names.h"
#include "Toolkit/Text/DisplayText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using Names = std::vector<std::string>;
using TablePair = std::pair<std::string, std::string>;

bool IsSubsetOf(const Names& key, const Names& columns)
{
    return std::all_of(key.begin(), key.end(), [&](const std::string& column) {
        return std::find(columns.begin(), columns.end(), column) != columns.end();
    });
}

class ModelMaker
{
public:
    ModelMaker(const DatabaseSchema& schema, const ImportOptions& options)
        : mSchema(schema),
          mSpaceName(schema.name.empty() ? "database" : schema.name),
          mOptions(options),
          mSpace(mBuilder.AddNamespace(mSpaceName))
    {}

    ToolModel Make()
    {
        for (const SchemaTable& table : mSchema.tables)
            AddSubject(table);
        for (const SchemaTable& table : mSchema.tables)
            for (const SchemaForeignKey& key : table.foreignKeys)
                ++mKeyCounts[{table.name, key.table}];
        for (const SchemaTable& table : mSchema.tables)
            for (const SchemaForeignKey& key : table.foreignKeys)
                AddRelationship(table, key);
        ToolModel made{mBuilder.Build()};
        made.notes = mSchema.notes;
        made.origin = mSchema.origin;
        made.descriptions = std::move(mDescriptions);
        return made;
    }

private:
    void AddSubject(const SchemaTable& table)
    {
        model::ObjectOptions options;
        // One name, whatever dots are in it.
        options.source = model::ToText(table.source.empty() ? Names{table.name} : table.source);
        const amd_id subject = mBuilder.AddQuerySubject(mSpace, table.name, options);
        mSubjects[table.name] = subject;
        mSubjectNames.insert(table.name);
        Describe(subject, table.description);
        for (const SchemaColumn& column : table.columns)
            Describe(mBuilder.AddItem(subject, column.name), column.description);
    }

    void Describe(const amd_id& object, const std::string& description)
    {
        if (!description.empty())
            mDescriptions[object] = description;
    }

    void AddRelationship(const SchemaTable& table, const SchemaForeignKey& key)
    {
        const bool isParallel = mKeyCounts[{table.name, key.table}] > 1;
        const std::string ends = table.name + "-" + key.table;
        const std::string name = isParallel ? ends + " (" + JoinTexts(key.from) + ")" : ends;
        const amd_id parent = mSubjects[key.table];
        const amd_id relationship = mBuilder.AddRelationship(
            mSpace, name, {mSubjects[table.name], ReferringCardinality(table, key)},
            {parent, MayBeNull(table, key) ? model::kZeroToOne : model::kOneToOne},
            Condition(table, key));
        // A table that refers to itself is no dimension of its own.
        if (isParallel && table.name != key.table && mOptions.roles == ERoles::Shortcuts)
            AddRole(table, key, name, relationship);
    }

    /// Lets the table play the role that the key gives it. Roles stand for different rows of one
    /// table, so they are of a kind that is never taken for the table itself.
    void AddRole(const SchemaTable& table, const SchemaForeignKey& key, const std::string& name,
                 const amd_id& relationship)
    {
        constexpr std::int32_t kRoleKind = 1;
        std::string role = key.table + " (" + JoinTexts(key.from) + ")";
        if (mSubjectNames.count(role) != 0)
            role = key.table + " (" + table.name + ": " + JoinTexts(key.from) + ")";
        while (!mSubjectNames.insert(role).second)
            role += "'";
        const amd_id shortcut =
            mBuilder.AddShortcut(mSpace, role, {mSubjects[key.table], kRoleKind});
        mBuilder.AddRelationshipShortcut(
            mSpace, name,
            {.relationship = relationship, .left = mSubjects[table.name], .right = shortcut});
    }

    static model::CardinalityRange ReferringCardinality(const SchemaTable& table,
                                                        const SchemaForeignKey& key)
    {
        const bool isUnique =
            std::any_of(table.keys.begin(), table.keys.end(),
                        [&](const Names& unique) { return IsSubsetOf(unique, key.from); });
        return isUnique ? model::kZeroToOne : model::kZeroToMany;
    }

    static bool MayBeNull(const SchemaTable& table, const SchemaForeignKey& key)
    {
        return std::any_of(table.columns.begin(), table.columns.end(),
                           [&](const SchemaColumn& column) {
                               return !column.isNotNull && IsSubsetOf({column.name}, key.from);
                           });
    }

    [[nodiscard]] std::string Condition(const SchemaTable& table, const SchemaForeignKey& key) const
    {
        const auto item = [&](const std::string& subject, const std::string& column) {
            return model::ToReferenceText({mSpaceName, subject, column});
        };
        std::string condition;
        for (std::size_t i = 0; i < key.from.size(); ++i)
            condition += (i == 0 ? "" : " AND ") + item(table.name, key.from[i]) + " = " +
                         item(key.table, key.to[i]);
        return condition;
    }

    const DatabaseSchema& mSchema;
    std::string mSpaceName;
    ImportOptions mOptions;
    model::ModelBuilder mBuilder;
    amd_id mSpace;
    std::map<std::string, amd_id> mSubjects;
    std::map<amd_id, std::string> mDescriptions;
    std::set<std::string> mSubjectNames;
    std::map<TablePair, int> mKeyCounts;
};

} // namespace

ToolModel MakeModel(DatabaseSchema schema, const ImportOptions& options)
{
    ResolveForeignKeys(schema);
    return ModelMaker(schema, options).Make();
}

} // namespace qe::tool
