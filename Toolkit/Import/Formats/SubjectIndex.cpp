#include "Toolkit/Import/Formats/SubjectIndex.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace qe::tool {

void SubjectIndex::TakeTable(SchemaTable table, DatabaseSchema& schema, JsonObject& json,
                             JsonProblems& problems)
{
    json.RejectMisspeltKeys();
    if (!Add(table.name, schema.tables.size()))
        problems.Add(ChildPointer(json.GetPointer(), "name"),
                     "there is one of that name already: \"" + table.name + '"');
    schema.tables.push_back(std::move(table));
}

std::optional<std::size_t> SubjectIndex::Find(const std::string& name) const
{
    const auto found = mPositions.find(name);
    return found == mPositions.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::size_t> SubjectIndex::Find(JsonObject& json, const char* key,
                                              JsonProblems& problems) const
{
    const std::string name = json.GetText(key, EPresence::Required);
    const std::string pointer = ChildPointer(json.GetPointer(), key);
    if (name.empty())
        return std::nullopt;
    const std::optional<std::size_t> found = Find(name);
    if (!found && mIsComplete && !problems.IsReported(pointer))
        problems.Add(pointer, "there is no \"" + name + '"', Nearest(name));
    return found;
}

std::vector<std::string> SubjectIndex::Nearest(const std::string& name) const
{
    std::vector<std::string_view> known;
    for (const auto& [subject, position] : mPositions)
        if (!subject.empty())
            known.push_back(subject);
    return model::NearestNames(name, known);
}

SchemaColumn& EnsureColumn(SchemaTable& table, const std::string& column)
{
    if (const SchemaColumn* const found = FindColumn(table.columns, column))
        return table.columns[static_cast<std::size_t>(found - table.columns.data())];
    return table.columns.emplace_back(SchemaColumn{.name = column});
}

void ColumnList::Add(const std::string& column, const std::string& description)
{
    const auto [position, isNew] =
        mPositions.try_emplace(ascii::ToLower(column), mTable.columns.size());
    if (isNew)
        mTable.columns.push_back({.name = column});
    SchemaColumn& added = mTable.columns[position->second];
    if (added.description.empty())
        added.description = description;
}

void AddKey(SchemaTable& table, EKey kind, std::vector<std::string> columns)
{
    if (columns.empty())
        return;
    for (std::string& column : columns)
        column = EnsureColumn(table, column).name;
    table.keys.erase(std::remove(table.keys.begin(), table.keys.end(), columns), table.keys.end());
    table.keys.insert(kind == EKey::Primary ? table.keys.begin() : table.keys.end(),
                      std::move(columns));
}

} // namespace qe::tool
