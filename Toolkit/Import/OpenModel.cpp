#include "Toolkit/Import/OpenModel.h"

#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/Live/LiveSchema.h"
#include "Toolkit/Import/Live/ServerKinds.h"
#include "Toolkit/Import/SqlScripts.h"
#include "Toolkit/Import/Sqlite/SqliteSchema.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace qe::tool {

namespace {

using namespace std::string_view_literals;

/// How many bytes of a file its format is recognised by.
constexpr std::size_t kStartSize = 4096;
constexpr std::string_view kSqliteStart = "SQLite format 3\0"sv;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// A format that models are read from.
struct ModelFormat
{
    /// Returns whether a file that starts so is of the format.
    bool (*matches)(std::string_view start);
    ToolModel (*open)(const std::filesystem::path& path, const ImportOptions& options);
};

bool IsSqlite(std::string_view start)
{
    return start.substr(0, kSqliteStart.size()) == kSqliteStart;
}

bool StartsModelFile(std::string_view start)
{
    if (start.substr(0, kByteOrderMark.size()) == kByteOrderMark)
        start.remove_prefix(kByteOrderMark.size());
    const std::size_t first = start.find_first_not_of(" \t\r\n\v\f");
    return first != std::string_view::npos && (start[first] == '{' || start[first] == '[');
}

/// SQLite takes an empty file for an empty database.
bool IsText(std::string_view start)
{
    return !start.empty() && IsScriptStart(start);
}

ToolModel OpenModelFile(const std::filesystem::path& path, const ImportOptions&)
{
    return ReadModelFile(path);
}

ToolModel OpenSql(const std::filesystem::path& path, const ImportOptions& options)
{
    return ImportSql({path}, options);
}

/// The first that matches is taken.
constexpr std::array kFormats{ModelFormat{.matches = IsSqlite, .open = ImportSqlite},
                              ModelFormat{.matches = StartsModelFile, .open = OpenModelFile},
                              ModelFormat{.matches = IsScriptStart, .open = OpenSql}};

/// A pipe can only be read once, so that all of it is read before it is known what it is.
ToolModel OpenPipe(const std::filesystem::path& path, const ImportOptions& options)
{
    std::string text = ReadInputFile(path);
    if (text.empty())
        throw InputError({{path.string(), "is empty"}});
    if (StartsModelFile(text))
        return ReadModelText(text, path.string());
    if (IsSqlite(text))
        throw InputError({{path.string(), "an SQLite database cannot be read from a pipe"}});
    const std::array scripts{MakeScriptText(path, std::move(text))};
    return MakeModel(ReadSqlTexts(scripts, std::nullopt, options.observer), options);
}

ToolModel OpenServer(const std::string& url, const ImportOptions& options)
{
    return MakeModel(ReadServer(url, options.server, options.observer), options);
}

void RejectUrl(const std::filesystem::path& path)
{
    if (IsServerUrl(path.string()))
        throw InputError({{ToShownPath(path), "is a database on a server, not a file"}});
}

/// Throws an InputError when the file is clearly of another kind than a command takes it for.
void RejectFormat(const std::filesystem::path& path, bool (*matches)(std::string_view start),
                  const char* text)
{
    std::error_code error;
    if (std::filesystem::is_regular_file(path, error) && matches(ReadInputStart(path, kStartSize)))
        throw InputError({{path.string(), text}});
}

} // namespace

ToolModel OpenModel(const std::filesystem::path& path, const ImportOptions& options)
{
    if (IsServerUrl(path.string()))
        return OpenServer(path.string(), options);
    if (!options.server.patterns.IsEmpty())
        throw PatternError(
            {InputProblem{"--tables and --schema", "only choose from databases on servers"}});
    std::error_code error;
    if (std::filesystem::exists(path, error) && std::filesystem::is_other(path, error))
        return OpenPipe(path, options);

    const std::string start = ReadInputStart(path, kStartSize);
    if (start.empty())
        throw InputError({{path.string(), "is empty"}});
    const auto format =
        std::find_if(kFormats.begin(), kFormats.end(),
                     [&start](const ModelFormat& known) { return known.matches(start); });
    if (format == kFormats.end())
        throw InputError(
            {{path.string(), "is neither a model file nor an SQLite database nor SQL"}});
    return format->open(path, options);
}

bool IsModelFile(const std::filesystem::path& path)
{
    std::error_code error;
    return !IsServerUrl(path.string()) && !std::filesystem::is_other(path, error) &&
           StartsModelFile(ReadInputStart(path, kStartSize));
}

ToolModel ImportServer(const std::string& url, const ImportOptions& options, const ServerKind& kind)
{
    // What is no URL is not shown: it may hold a password.
    if (FindServerKind(url) != &kind)
        throw InputError({{"import " + std::string(kind.word),
                           "takes a URL such as " + std::string(kind.example)}});
    return OpenServer(url, options);
}

std::string ToShownPath(const std::filesystem::path& path)
{
    return ToShownModelName(path.string());
}

ToolModel ImportSqlite(const std::filesystem::path& path, const ImportOptions& options)
{
    RejectUrl(path);
    RejectFormat(path, StartsModelFile, "is a model file already, not a database");
    RejectFormat(path, IsText, "is a text, not an SQLite database: take \"import sql\" for SQL");
    return MakeModel(ReadSqliteFile(path, options.observer), options);
}

ToolModel ImportSql(const std::vector<std::filesystem::path>& paths, const ImportOptions& options,
                    std::optional<EDialect> dialect)
{
    for (const std::filesystem::path& path : paths) {
        RejectUrl(path);
        RejectFormat(path, StartsModelFile, "is a model file already, not SQL");
        RejectFormat(path, IsSqlite, "is an SQLite database, not SQL: take \"import sqlite\"");
    }
    return MakeModel(ReadSqlScripts(paths, dialect, options.observer), options);
}

} // namespace qe::tool
