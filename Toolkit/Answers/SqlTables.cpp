#include "Toolkit/Answers/SqlTables.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Text/InputFile.h"

#include <cstddef>
#include <utility>

namespace qe::tool {
namespace {

// PostgreSQL cuts identifiers there.
constexpr std::size_t kMaximumBytes = 63;

} // namespace

std::string QuoteIdentifier(std::string_view name)
{
    if (name.empty() || name.find('\0') != std::string_view::npos)
        throw InputError({{"sql", "SQL cannot hold an empty name, nor one with a zero in it: \"" +
                                      std::string(name) + '"'}});
    std::string quoted = "\"";
    for (const char letter : name) {
        quoted += letter;
        if (letter == '"')
            quoted += '"';
    }
    return quoted + '"';
}

std::string QuoteTableName(std::string_view source)
{
    std::string quoted;
    for (const std::string& part : model::ParseQualifiedName(source))
        quoted += (quoted.empty() ? "" : ".") + QuoteIdentifier(part);
    return quoted;
}

std::string AliasNames::Take(std::string_view wanted)
{
    std::string name(CutUtf8(wanted, kMaximumBytes));
    for (int number = 2; !mTaken.insert(model::FoldCase(name)).second; ++number) {
        const std::string suffix = ' ' + std::to_string(number);
        name = std::string(CutUtf8(wanted, kMaximumBytes - suffix.size())) + suffix;
    }
    return name;
}

namespace {

std::string SourceOf(const model::Model& model, const amd_id& subject)
{
    const model::ObjectRecord* const record = model.Find(model.GetTarget(subject));
    if (record == nullptr)
        return {};
    return record->text.empty() ? QuoteIdentifier(record->name) : QuoteTableName(record->text);
}

} // namespace

SqlTables::SqlTables(const model::Model& model, const PathTables& path) : mPath(path)
{
    AliasNames aliases;
    for (std::size_t table = 0; table < path.GetCount(); ++table) {
        const amd_id& first = path.GetSubjects(table).front();
        mTables.push_back(
            {SourceOf(model, first), QuoteIdentifier(aliases.Take(model.Find(first)->name))});
    }
}

} // namespace qe::tool
