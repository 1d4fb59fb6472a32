#include "Toolkit/Import/Formats/SubjectIndex.h"

#include "Engine/Model/Names.h"

#include <string_view>

namespace qe::tool {

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
    if (!found && !problems.IsReported(pointer))
        problems.Add(pointer, "there is no \"" + name + '"', Nearest(name));
    return found;
}

std::vector<std::string> SubjectIndex::Nearest(const std::string& name) const
{
    std::vector<std::string_view> known;
    for (const auto& [subject, position] : mPositions)
        known.push_back(subject);
    return model::NearestNames(name, known);
}

void EnsureColumn(SchemaTable& table, const std::string& column)
{
    if (FindColumn(table.columns, column) == nullptr)
        table.columns.push_back({.name = column});
}

} // namespace qe::tool
