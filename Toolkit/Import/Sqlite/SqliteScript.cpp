#include "Toolkit/Import/Sqlite/SqliteScript.h"

#include "Toolkit/Import/Sqlite/ScriptDatabase.h"
#include "Toolkit/Import/Sqlite/SqliteDatabase.h"
#include "Toolkit/Import/Sqlite/SqliteSchema.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qe::tool {

namespace {

/// Skips what may stand before a statement, so that its place is that of its first word. Returns
/// npos where none follows.
std::size_t SkipSpace(std::string_view text, std::size_t offset)
{
    return text.find_first_not_of(" \t\r\n;", offset);
}

void Execute(ScriptDatabase& database, const ScriptText& script, const ProgressObserver& observer)
{
    const std::string& text = script.text;
    std::uint64_t statements = 0;
    std::size_t offset = SkipSpace(text, 0);
    while (offset != std::string::npos) {
        if (observer)
            observer(
                {.done = offset, .size = text.size(), .count = statements++, .unit = "statements"});
        try {
            offset = SkipSpace(text, database.ExecuteFirst(text, offset));
        } catch (const SqliteError& error) {
            const auto inner = static_cast<std::size_t>(std::max(0, error.GetOffset()));
            throw InputError({{DescribePlace(script, offset + inner), error.what()}});
        }
    }
}

} // namespace

DatabaseSchema ReadSqliteScripts(std::span<const ScriptText> scripts,
                                 const ProgressObserver& observer)
{
    ScriptDatabase database;
    for (const ScriptText& script : scripts)
        Execute(database, script, observer);
    try {
        return ReadSqliteSchema(database.GetParts(), observer);
    } catch (const SqliteError& error) {
        const std::string name = scripts.empty() ? std::string() : scripts.front().path.string();
        throw InputError({{name, error.what()}});
    }
}

} // namespace qe::tool
