#include "Toolkit/Answers/SqlTables.h"

#include "Engine/Model/Names.h"
#include "Toolkit/Model/ToolModel.h"

#include <cstddef>

namespace qe::tool {

SqlTables::SqlTables(const ToolModel& model, const PathTables& path, const SqlDialect& dialect)
    : mModel(*model.model), mPath(path), mNames(dialect, model.writtenNames)
{
    AliasNames aliases(dialect);
    for (std::size_t table = 0; table < path.GetCount(); ++table) {
        const amd_id& first = path.GetSubjects(table).front();
        const Source source = FindSource(first);
        const std::string alias = aliases.Take(mModel.Find(first)->name);
        const bool isItself = !source.parts.empty() && alias == source.parts.back();
        mTables.push_back(
            {.source = Write(source),
             .alias = isItself ? mNames.Write(source.subject, alias) : mNames.WriteAlias(alias)});
    }
}

std::string SqlTables::WriteColumn(const amd_id& subject, std::string_view column) const
{
    return Get(IndexOf(subject)).alias + '.' + mNames.Write(mModel.GetTarget(subject), column);
}

SqlTables::Source SqlTables::FindSource(const amd_id& subject) const
{
    const amd_id target = mModel.GetTarget(subject);
    const model::ObjectRecord* const record = mModel.Find(target);
    if (record == nullptr)
        return {};
    if (record->text.empty())
        return {.subject = target, .parts = {record->name}};
    return {.subject = target, .parts = model::ParseQualifiedName(record->text)};
}

std::string SqlTables::Write(const Source& source) const
{
    std::string text;
    for (const std::string& part : source.parts)
        text += (text.empty() ? "" : ".") + mNames.Write(source.subject, part);
    return text;
}

} // namespace qe::tool
