#include "Toolkit/Import/OpenModel.h"

#include "Toolkit/Import/SqlImport.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/InputError.h"
#include "Toolkit/Text/InputFile.h"

#include <string>
#include <string_view>
#include <system_error>

namespace qe::tool {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t LookedAt = 4096;
constexpr std::string_view SqliteStart = "SQLite format 3\0"sv;
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

/// Gives the first character that is no blank, or a zero character.
char FirstCharacter(std::string_view text)
{
    if (text.substr(0, ByteOrderMark.size()) == ByteOrderMark)
        text.remove_prefix(ByteOrderMark.size());
    const std::size_t first = text.find_first_not_of(" \t\r\n\v\f");
    return first == std::string_view::npos ? '\0' : text[first];
}

} // namespace

ToolModel OpenModel(const std::filesystem::path& path, const OpenOptions& options)
{
    std::error_code error;
    if (std::filesystem::exists(path, error) && std::filesystem::is_other(path, error))
        return ReadModelFile(path);

    const std::string start = ReadInputStart(path, LookedAt);
    if (std::string_view(start).substr(0, SqliteStart.size()) == SqliteStart)
        return ImportSqlite(path, {options.roles});
    const char first = FirstCharacter(start);
    if (first == '{' || first == '[')
        return ReadModelFile(path);
    if (start.empty())
        throw InputError({{path.string(), "is empty"}});
    if (start.find('\0') != std::string::npos)
        throw InputError(
            {{path.string(), "is neither a model file nor an SQLite database nor SQL"}});
    return ImportSql({path}, {options.roles});
}

} // namespace qe::tool
