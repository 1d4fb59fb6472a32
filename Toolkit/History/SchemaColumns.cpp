#include "Toolkit/History/SchemaColumns.h"

#include "Engine/Model/Model.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/History/NamedPairs.h"

namespace qe::tool {

SchemaColumns::SchemaColumns(const model::Model& model)
{
    const auto subjects = model.GetIds(IdClassQuerySubject);
    for (const amd_id& subject : subjects)
        AddTable(model, subject);
    for (const amd_id& subject : subjects) {
        AddColumns(model, subject);
        const model::QualifiedName source = model::ParseQualifiedName(model.Find(subject)->text);
        const std::string name = source.empty() ? "" : ascii::ToLower(source.back());
        if (mTableNumbers.find(name) == mTableNumbers.end())
            mSourceNumbers.emplace(name,
                                   mTableNumbers.at(ascii::ToLower(model.Find(subject)->name)));
    }
}

void SchemaColumns::AddTable(const model::Model& model, const amd_id& subject)
{
    const std::string& displayName = model.Find(subject)->name;
    const std::string name = ascii::ToLower(displayName);
    const auto [known, isNew] = mTableNumbers.emplace(name, static_cast<Number>(mTables.size()));
    if (isNew)
        mTables.push_back({.subject = subject, .name = name, .displayName = displayName});
    else
        mTables[known->second].subject = {};
}

void SchemaColumns::AddColumns(const model::Model& model, const amd_id& subject)
{
    const std::string& table = model.Find(subject)->name;
    const Number tableNumber = mTableNumbers.at(ascii::ToLower(table));
    for (const amd_id& item : model.GetItems(subject)) {
        const std::string name = ToColumnName(table, model.Find(item)->name);
        const auto [known, isNew] =
            mColumnNumbers.emplace(name, static_cast<Number>(mColumns.size()));
        if (isNew)
            mColumns.push_back({.table = tableNumber, .item = item, .name = name});
        else
            mColumns[known->second].item = {};
    }
}

std::optional<SchemaColumns::Number> SchemaColumns::FindTable(std::string_view name) const
{
    while (true) {
        for (const Names* const names : {&mTableNumbers, &mSourceNumbers}) {
            if (const auto found = names->find(name); found != names->end())
                return found->second;
        }
        const std::size_t dot = name.find('.');
        if (dot == std::string_view::npos)
            return std::nullopt;
        name.remove_prefix(dot + 1);
    }
}

std::optional<SchemaColumns::Number> SchemaColumns::FindColumn(std::string_view name) const
{
    if (const auto found = mColumnNumbers.find(name); found != mColumnNumbers.end())
        return found->second;
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos)
        return std::nullopt;
    const auto table = FindTable(name.substr(0, dot));
    if (!table)
        return std::nullopt;
    const auto found = mColumnNumbers.find(mTables[*table].name + std::string(name.substr(dot)));
    return found == mColumnNumbers.end() ? std::nullopt : std::optional(found->second);
}

std::vector<std::string_view> SchemaColumns::GetTableNames() const
{
    std::vector<std::string_view> names;
    for (const Table& table : mTables)
        names.push_back(table.displayName);
    return names;
}

} // namespace qe::tool
