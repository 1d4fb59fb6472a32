#include "Toolkit/Import/SqlImport.h"

#include "Engine/Services/TextPosition.h"
#include "Toolkit/Import/SchemaModel.h"
#include "Toolkit/Import/SqliteDatabase.h"
#include "Toolkit/Text/InputError.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>

namespace qe::tool {

namespace {

constexpr std::size_t kMostBytes = std::size_t{256} << 20U;

std::string ReadText(const std::filesystem::path& path)
{
    std::error_code failure;
    if (std::filesystem::is_directory(path, failure))
        throw InputError({{path.string(), "this is a directory, not a file of SQL"}});
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    if (file.peek() != std::ifstream::traits_type::eof())
        text << file.rdbuf();
    if (!file.is_open() || file.bad())
        throw InputError({{path.string(), "cannot read the file"}});
    if (text.view().size() > kMostBytes)
        throw InputError({{path.string(), "the file is too large"}});
    return text.str();
}

/// Gives "file:line:column" of a byte of the text, both counted from 1.
std::string DescribePlace(const std::filesystem::path& path, std::string_view text,
                          std::size_t offset)
{
    const auto [line, column] = PositionCounter(text).MoveTo(offset);
    return path.string() + ":" + std::to_string(line) + ":" + std::to_string(column);
}

/// Skips what may stand before a statement, so that its place is that of its first word. Gives
/// npos where none follows.
std::size_t SkipBlanks(std::string_view text, std::size_t offset)
{
    return text.find_first_not_of(" \t\r\n;", offset);
}

void Execute(SqliteDatabase& database, const std::filesystem::path& path)
{
    const std::string text = ReadText(path);
    if (text.find('\0') != std::string::npos)
        throw InputError({{DescribePlace(path, text, text.find('\0')),
                           "a zero byte stands here; this is no file of SQL"}});
    std::size_t offset = SkipBlanks(text, 0);
    while (offset != std::string::npos) {
        try {
            offset = SkipBlanks(text, database.ExecuteFirst(text, offset));
        } catch (const SqliteError& error) {
            const auto inner = static_cast<std::size_t>(std::max(0, error.GetOffset()));
            throw InputError({{DescribePlace(path, text, offset + inner), error.what()}});
        }
    }
}

} // namespace

ToolModel ImportSql(const std::vector<std::filesystem::path>& paths, const ImportOptions& options)
{
    SqliteDatabase database = SqliteDatabase::OpenMemory();
    for (const std::filesystem::path& path : paths)
        Execute(database, path);
    const std::string name = paths.empty() ? std::string() : paths.front().stem().string();
    try {
        return MakeModel(ReadSchema(database), name, options);
    } catch (const SqliteError& error) {
        throw InputError({{name, error.what()}});
    }
}

} // namespace qe::tool
