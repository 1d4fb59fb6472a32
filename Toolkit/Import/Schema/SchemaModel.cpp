#include "Toolkit/Import/Schema/SchemaModel.h"

#include "Engine/Model/Model.h"
#include "Engine/Model/ModelBuilder.h"
#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Schema/SchemaNames.h"
#include "Toolkit/Import/Schema/StatedJoins.h"
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

/// A table of the schema and one that it refers to, by their positions.
using TablePair = std::pair<std::size_t, std::size_t>;

/// Which of the keys between two tables there is.
struct KeyGroup
{
    std::size_t count = 0;
    /// The one that leads to the table itself where the others lead to roles.
    std::size_t main = 0;
};

/// A key whose columns are called like those that they refer to leads to the table as such.
bool IsNamedAlike(const SchemaForeignKey& key)
{
    return std::equal(key.from.begin(), key.from.end(), key.to.begin(), key.to.end(),
                      [](const std::string& from, const std::string& to) {
                          return ascii::ToLower(from) == ascii::ToLower(to);
                      });
}

bool MayBeNull(const SchemaTable& table, const SchemaForeignKey& key)
{
    return std::any_of(table.columns.begin(), table.columns.end(), [&](const SchemaColumn& column) {
        return !column.isNotNull &&
               std::find(key.from.begin(), key.from.end(), column.name) != key.from.end();
    });
}

class ModelMaker
{
public:
    ModelMaker(const DatabaseSchema& schema, const ImportOptions& options)
        : mSchema(schema),
          mSpaceName(schema.name.empty() ? "database" : schema.name),
          mOptions(options),
          mSpace(mBuilder.AddNamespace(mSpaceName)),
          mNotes(schema.notes)
    {}

    ToolModel Make()
    {
        for (const SchemaTable& table : mSchema.tables)
            AddSubject(table);
        for (std::size_t i = 0; i < mSchema.tables.size(); ++i)
            GroupKeys(i);
        for (std::size_t i = 0; i < mSchema.tables.size(); ++i)
            for (std::size_t key = 0; key < mSchema.tables[i].foreignKeys.size(); ++key)
                AddKey(i, key);
        NoteRoles();
        for (const SchemaJoin& join : mSchema.joins)
            if (!join.isActive)
                mRoleOwners[{join.right.table, RoleColumns(join)}].insert(join.left.table);
        std::vector<amd_id> joins;
        for (const SchemaJoin& join : mSchema.joins)
            joins.push_back(AddStatedJoin(join));
        if (mSchema.tables.empty())
            mNotes.emplace_back("there are no tables to read: " + mSpaceName);
        ToolModel made{mBuilder.Build()};
        made.notes = std::move(mNotes);
        made.origin = mSchema.origin;
        made.descriptions = std::move(mDescriptions);
        made.decisions = MakeDecisions(joins);
        made.writtenNames = {.dialect = mSchema.dialect, .quoted = std::move(mQuotedNames)};
        made.rows = std::move(mRows);
        return made;
    }

private:
    /// A relationship to be made for a key.
    struct Join
    {
        const SchemaTable& table;
        const SchemaForeignKey& key;
        std::string name{};
        /// The table that is referred to, or a role of it.
        amd_id target{};
        std::string targetName{};
    };

    void AddSubject(const SchemaTable& table)
    {
        model::ObjectOptions options;
        // One name, whatever dots are in it.
        const Names source = table.source.empty() ? Names{table.title} : table.source;
        options.source = model::ToText(source);
        for (const Names& key : table.keys)
            options.keys.push_back(TitlesOf(table, key));
        const amd_id subject = mBuilder.AddQuerySubject(mSpace, table.title, options);
        mSubjects.push_back(subject);
        mSubjectNames.insert(table.title);
        Describe(subject, table.description);
        if (table.rows)
            mRows[subject] = *table.rows;
        NameSet quoted;
        for (const std::string& part : source)
            if (table.quoted.count(part == table.title ? table.name : part) != 0)
                quoted.insert(part);
        for (const SchemaColumn& column : table.columns) {
            Describe(mBuilder.AddItem(subject, column.title), column.description);
            if (column.isQuoted)
                quoted.insert(column.title);
        }
        if (!quoted.empty())
            mQuotedNames[subject] = std::move(quoted);
    }

    void Describe(const amd_id& object, const std::string& description)
    {
        if (!description.empty())
            mDescriptions[object] = description;
    }

    void GroupKeys(std::size_t position)
    {
        const std::vector<SchemaForeignKey>& keys = mSchema.tables[position].foreignKeys;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            KeyGroup& group = mGroups[{position, keys[i].target}];
            const bool isMain =
                group.count == 0 || (IsNamedAlike(keys[i]) && !IsNamedAlike(keys[group.main]));
            if (isMain)
                group.main = i;
            ++group.count;
        }
    }

    void AddKey(std::size_t position, std::size_t keyPosition)
    {
        const SchemaTable& table = mSchema.tables[position];
        const SchemaForeignKey& key = table.foreignKeys[keyPosition];
        const SchemaTable& parent = mSchema.tables[key.target];
        const KeyGroup& group = mGroups[{position, key.target}];
        const bool isSelf = position == key.target;
        const bool hasRoles = mOptions.roles == ERoles::Shortcuts && (isSelf || group.count > 1);
        const std::string ends = table.title + "-" + parent.title;
        const std::string columns = " (" + JoinTexts(TitlesOf(table, key.from)) + ")";
        if (!hasRoles || (!isSelf && group.main == keyPosition))
            AddJoin({.table = table,
                     .key = key,
                     .name = group.count > 1 && !hasRoles ? ends + columns : ends,
                     .target = mSubjects[key.target],
                     .targetName = parent.title});
        if (hasRoles) {
            const std::string role = NameRole(table, parent, columns);
            AddJoin({.table = table,
                     .key = key,
                     .name = ends + columns,
                     .target = AddRole(mSubjects[key.target], role),
                     .targetName = role});
        }
        if (!IsUnique(parent, key.to))
            mNotes.push_back("counted as many at both ends, for the columns referred to are no key "
                             "of their table: " +
                             table.title + columns + " -> " + parent.title + " (" +
                             JoinTexts(TitlesOf(parent, key.to)) + ")");
    }

    void AddJoin(const Join& join)
    {
        const bool mayBeNull = MayBeNull(join.table, join.key);
        const bool isToOne = IsUnique(mSchema.tables[join.key.target], join.key.to);
        const model::CardinalityRange one = mayBeNull ? model::kZeroToOne : model::kOneToOne;
        const model::CardinalityRange many = mayBeNull ? model::kZeroToMany : model::kOneToMany;
        const bool isFromOne = isToOne && IsUnique(join.table, join.key.from);
        mBuilder.AddRelationship(mSpace, join.name,
                                 {model::Reference(mSubjects[PositionOf(join.table)]),
                                  isFromOne ? model::kZeroToOne : model::kZeroToMany},
                                 {join.target, isToOne ? one : many}, Condition(join));
    }

    /// A join that is only used where it is asked for leads to a role of its own.
    amd_id AddStatedJoin(const SchemaJoin& join)
    {
        const SchemaTable& left = mSchema.tables[join.left.table];
        const SchemaTable& right = mSchema.tables[join.right.table];
        amd_id target = mSubjects[join.right.table];
        std::string targetName = right.title;
        if (!join.isActive) {
            targetName = NameStatedRole(join);
            target = AddRole(target, targetName);
        }
        const JoinRanges ranges = RangesOf(mSchema, join);
        const amd_id added = mBuilder.AddRelationship(
            mSpace, join.name, {mSubjects[join.left.table], ranges.left}, {target, ranges.right},
            WriteStatedCondition(join, [&](bool isLeft, const std::string& column) {
                const SchemaTable& table = isLeft ? left : right;
                return model::QualifiedName{mSpaceName, isLeft ? left.title : targetName,
                                            FindColumn(table.columns, column)->title};
            }));
        Describe(added, join.description);
        return added;
    }

    /// Returns what tells the roles apart that a table has for stated joins.
    [[nodiscard]] std::string RoleColumns(const SchemaJoin& join) const
    {
        return join.left.columns.empty()
                   ? join.name
                   : JoinTexts(TitlesOf(mSchema.tables[join.left.table], join.left.columns));
    }

    /// Where several tables would give a role one name, each gives it its own, so that nobody who
    /// asks for a role gets that of another table.
    std::string NameStatedRole(const SchemaJoin& join)
    {
        const SchemaTable& left = mSchema.tables[join.left.table];
        std::string columns = RoleColumns(join);
        if (mRoleOwners[{join.right.table, columns}].size() > 1)
            columns.insert(0, left.title + ": ");
        return NameRole(left, mSchema.tables[join.right.table], " (" + columns + ")");
    }

    /// A model has one decision for each set of query subjects; the first counts.
    [[nodiscard]] std::vector<Decision> MakeDecisions(const std::vector<amd_id>& joins)
    {
        std::map<std::vector<amd_id>, Decision> decisions;
        for (const SchemaPreference& preference : mSchema.preferences) {
            Decision decision{.reason = preference.reason};
            for (const std::size_t table : preference.tables)
                decision.subjects.push_back(mSubjects[table]);
            for (const std::size_t join : preference.joins)
                decision.preferred.push_back(joins[join]);
            SortUnique(decision.subjects);
            SortUnique(decision.preferred);
            if (decision.preferred.empty())
                continue;
            const bool isNew = decisions.emplace(decision.subjects, decision).second;
            if (!isNew)
                mNotes.push_back(
                    "left out a preference for query subjects that have one already: " +
                    preference.reason);
        }
        std::vector<Decision> made;
        made.reserve(decisions.size());
        for (auto& [subjects, decision] : decisions)
            made.push_back(std::move(decision));
        return made;
    }

    static void SortUnique(std::vector<amd_id>& ids)
    {
        std::sort(ids.begin(), ids.end());
        ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    }

    [[nodiscard]] std::size_t PositionOf(const SchemaTable& table) const
    {
        return static_cast<std::size_t>(&table - mSchema.tables.data());
    }

    std::string NameRole(const SchemaTable& table, const SchemaTable& parent,
                         const std::string& columns)
    {
        std::string role = parent.title + columns;
        if (mSubjectNames.count(role) != 0)
            role = parent.title + " (" + table.title + ": " + columns.substr(2);
        while (!mSubjectNames.insert(role).second)
            role += "'";
        return role;
    }

    /// Roles stand for different rows of one table, so they are of a kind that is never taken for
    /// the table itself.
    amd_id AddRole(const amd_id& subject, const std::string& role)
    {
        constexpr std::int32_t kRoleKind = 1;
        return mBuilder.AddShortcut(mSpace, role, {subject, kRoleKind});
    }

    [[nodiscard]] std::string Condition(const Join& join) const
    {
        const Names from = TitlesOf(join.table, join.key.from);
        const Names to = TitlesOf(mSchema.tables[join.key.target], join.key.to);
        std::string condition;
        for (std::size_t i = 0; i < from.size(); ++i)
            condition += (i == 0 ? "" : " AND ") +
                         model::ToReferenceText({mSpaceName, join.table.title, from[i]}) + " = " +
                         model::ToReferenceText({mSpaceName, join.targetName, to[i]});
        return condition;
    }

    /// Tells which of several keys the table itself stands for.
    void NoteRoles()
    {
        if (mOptions.roles != ERoles::Shortcuts)
            return;
        Names choices;
        for (const auto& [pair, group] : mGroups) {
            const SchemaTable& table = mSchema.tables[pair.first];
            if (group.count > 1 && pair.first != pair.second)
                choices.push_back(table.title + " (" +
                                  JoinTexts(TitlesOf(table, table.foreignKeys[group.main].from)) +
                                  ") -> " + mSchema.tables[pair.second].title);
        }
        if (choices.empty())
            return;
        constexpr std::size_t kShown = 5;
        const std::size_t hidden = choices.size() - std::min(choices.size(), kShown);
        choices.resize(choices.size() - hidden);
        mNotes.push_back("of several keys to one table the first stands for the table itself, and "
                         "each has a role: " +
                         JoinTexts(choices) +
                         (hidden == 0 ? "" : ", and " + std::to_string(hidden) + " more"));
    }

    const DatabaseSchema& mSchema;
    std::string mSpaceName;
    ImportOptions mOptions;
    model::ModelBuilder mBuilder;
    amd_id mSpace;
    Names mNotes;
    std::map<amd_id, std::string> mDescriptions;
    std::map<amd_id, NameSet> mQuotedNames;
    std::map<amd_id, std::uint64_t> mRows;
    /// By the positions of the tables.
    std::vector<amd_id> mSubjects;
    std::set<std::string> mSubjectNames;
    std::map<TablePair, KeyGroup> mGroups;
    /// Which tables have a role of a table by such columns.
    std::map<std::pair<std::size_t, std::string>, std::set<std::size_t>> mRoleOwners;
};

} // namespace

ToolModel MakeModel(DatabaseSchema schema, const ImportOptions& options)
{
    RequireNoZeros(schema);
    GiveTitles(schema);
    ResolveForeignKeys(schema);
    ResolveStatedJoins(schema);
    return ModelMaker(schema, options).Make();
}

} // namespace qe::tool
