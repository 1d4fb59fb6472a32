#include "Toolkit/Import/SqlScript.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Import/ScriptDatabase.h"
#include "Toolkit/Import/SqliteDatabase.h"
#include "Toolkit/Import/SqliteSchema.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qe::tool {

namespace {

constexpr std::uintmax_t kMaximumScriptSize = std::uintmax_t{256} * 1024 * 1024;

/// Returns "file:line:column" of a byte of the text, both counted from 1.
std::string DescribePlace(const std::filesystem::path& path, std::string_view text,
                          std::size_t offset)
{
    const auto [line, column] = PositionCounter(text).MoveTo(offset);
    return path.string() + ":" + std::to_string(line) + ":" + std::to_string(column);
}

/// Skips what may stand before a statement, so that its place is that of its first word. Returns
/// npos where none follows.
std::size_t SkipSpace(std::string_view text, std::size_t offset)
{
    return text.find_first_not_of(" \t\r\n;", offset);
}

void Execute(ScriptDatabase& database, const std::filesystem::path& path, const std::string& text,
             const ProgressObserver& observer)
{
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
            throw InputError({{DescribePlace(path, text, offset + inner), error.what()}});
        }
    }
}

} // namespace

DatabaseSchema ReadSqlTexts(const std::vector<SqlText>& texts, const ProgressObserver& observer)
{
    ScriptDatabase database;
    for (const SqlText& script : texts) {
        if (script.text.find('\0') != std::string::npos)
            throw InputError({{DescribePlace(script.file, script.text, script.text.find('\0')),
                               "a zero byte stands here; not valid SQL"}});
        Execute(database, script.file, script.text, observer);
    }
    const std::string name = texts.empty() ? std::string() : texts.front().file.stem().string();
    try {
        DatabaseSchema schema = ReadSqliteSchema(database.GetParts(), observer);
        schema.name = name;
        return schema;
    } catch (const SqliteError& error) {
        throw InputError({{name, error.what()}});
    }
}

DatabaseSchema ReadSqlScripts(const std::vector<std::filesystem::path>& paths,
                              const ProgressObserver& observer)
{
    std::vector<SqlText> texts;
    for (const std::filesystem::path& path : paths)
        texts.push_back({path, ReadInputFile(path, kMaximumScriptSize)});
    return ReadSqlTexts(texts, observer);
}

} // namespace qe::tool
