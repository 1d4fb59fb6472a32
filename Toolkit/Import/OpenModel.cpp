#include "Toolkit/Import/OpenModel.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/Live/LiveSchema.h"
#include "Toolkit/Import/Live/ServerKinds.h"
#include "Toolkit/Import/ModelFolder.h"
#include "Toolkit/Import/SqlScripts.h"
#include "Toolkit/Import/Sqlite/SqliteSchema.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Model/ModelWords.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace qe::tool {

namespace {

using namespace std::string_view_literals;

/// How many bytes of a file its format is recognised by.
constexpr std::size_t kStartSize = 4096;
constexpr std::string_view kSqliteStart = "SQLite format 3\0"sv;

bool IsSqlite(std::string_view start)
{
    return start.substr(0, kSqliteStart.size()) == kSqliteStart;
}

bool IsJson(std::string_view start)
{
    return RecogniseSyntax(start) == ESyntax::Json;
}

/// SQLite takes an empty file for an empty database.
bool IsText(std::string_view start)
{
    return !start.empty() && IsScriptStart(start);
}

ToolModel MakeSourceModel(const SourceFormat& format, std::span<SourceDocument> documents,
                          const std::filesystem::path& path, const ImportOptions& options)
{
    DatabaseSchema schema = ReadSource(format, documents);
    if (schema.name.empty())
        schema.name = path.stem().string();
    return MakeModel(std::move(schema), options);
}

/// Throws an InputError that tells why nobody knows what the document holds.
[[noreturn]] void RejectUnknown(const SourceDocument& document)
{
    if (!document.templates.empty())
        throw InputError({{document.name, "is no YAML before its templates are rendered"}});
    throw InputError(
        {{document.name, "is of no format that can be read; there are " + ListFormatWords()}});
}

/// Returns whether the document has a key that a model file has, or no key at all.
bool LooksLikeModelFile(const nlohmann::json& json)
{
    constexpr std::array kSigns{keys::kNamespaces,    keys::kSubjects,  keys::kFolders,
                                keys::kRelationships, keys::kShortcuts, keys::kFilters};
    return !json.is_object() || json.empty() ||
           std::any_of(kSigns.begin(), kSigns.end(),
                       [&json](const char* key) { return json.contains(key); });
}

/// What is JSON, but of no other format, is taken for a model file.
ToolModel OpenDocument(SourceDocument document, const std::filesystem::path& path,
                       const ImportOptions& options)
{
    const std::span<SourceDocument> documents(&document, 1);
    if (const SourceFormat* const format = RecogniseFormat(documents))
        return MakeSourceModel(*format, documents, path, options);
    if (document.syntax != ESyntax::Json || !LooksLikeModelFile(document.json))
        RejectUnknown(document);
    return ReadModelDocument(std::move(document.json), document.problems);
}

ToolModel MakeFolderModel(ModelFolder found, const std::filesystem::path& folder,
                          const ImportOptions& options)
{
    ToolModel model = MakeSourceModel(*found.format, found.documents, folder, options);
    for (std::string& note : found.notes)
        model.notes.push_back(std::move(note));
    return model;
}

void RejectEmpty(const std::filesystem::path& path, std::string_view text)
{
    if (text.empty())
        throw InputError({{path.string(), "is empty"}});
    if (HoldsOnlyComments(text))
        throw InputError({{path.string(), "holds nothing but blanks and comments"}});
}

[[noreturn]] void RejectUnreadable(const std::filesystem::path& path)
{
    throw InputError({{path.string(), "is neither a model file nor an SQLite database nor SQL"}});
}

/// Of bytes there is no second look.
ToolModel RecogniseBytes(std::string bytes, const std::filesystem::path& path,
                         const ImportOptions& options)
{
    if (IsSqlite(bytes))
        return MakeModel(ReadSqliteBytes(bytes, path, options.observer), options);
    std::string text = ToSourceText(path, std::move(bytes));
    RejectEmpty(path, text);
    if (const auto syntax = RecogniseSyntax(text))
        return OpenDocument(ReadDocument(path.string(), std::move(text), *syntax), path, options);
    if (!IsScriptStart(text))
        RejectUnreadable(path);
    const std::array scripts{MakeScriptText(path, std::move(text))};
    return MakeModel(ReadSqlTexts(scripts, std::nullopt, options.observer), options);
}

/// A pipe can only be read once, so that all of it is read before it is known what it is.
ToolModel OpenPipe(const std::filesystem::path& path, const ImportOptions& options)
{
    return RecogniseBytes(ReadInputFile(path), path, options);
}

ToolModel OpenFile(const std::filesystem::path& path, const ImportOptions& options)
{
    std::string start = ReadInputStart(path, kStartSize);
    if (IsSqlite(start))
        return ImportSqlite(path, options);
    // What begins with comments is known by what stands behind them.
    if (HoldsOnlyComments(start))
        start = ReadInputStart(path, kMaximumFileSize);
    RejectEmpty(path, start);
    if (IsUtf16(start)) {
        std::string text = ReadSourceText(path);
        RejectEmpty(path, text);
        if (const auto syntax = RecogniseSyntax(text))
            return OpenDocument(ReadDocument(path.string(), std::move(text), *syntax), path,
                                options);
    } else if (const auto syntax = RecogniseSyntax(start)) {
        return OpenDocument(ReadDocument(path.string(), ReadInputFile(path), *syntax), path,
                            options);
    }
    if (IsScriptStart(start))
        return ImportSql({path}, options);
    RejectUnreadable(path);
}

ToolModel OpenServer(const std::string& url, const ImportOptions& options)
{
    return MakeModel(ReadServer(url, options.server, options.observer), options);
}

void RejectPatterns(const ImportOptions& options)
{
    if (!options.server.patterns.IsEmpty())
        throw PatternError(
            {InputProblem{"schemas and tables", "can only be chosen of a database on a server"}});
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

/// Throws an InputError when the text is no path but tells a connection, which may hold a password:
/// only its scheme is shown.
void RejectConnection(const std::string& text)
{
    const std::string folded = ascii::ToLower(text);
    const std::size_t colon = text.find(':');
    const bool isUrl = colon != std::string::npos && text.find('@', colon) != std::string::npos;
    if (!isUrl && folded.find("://") == std::string::npos &&
        folded.find("password") == std::string::npos && folded.find("pwd=") == std::string::npos)
        return;
    std::vector<std::string_view> known;
    for (const ServerKind& kind : ListServerKinds())
        known.insert(known.end(), kind.schemes.begin(), kind.schemes.end());
    std::vector<std::string> schemes(known.begin(), known.end());
    const std::string scheme = text.substr(0, std::min(colon, text.find_first_of(" =/")));
    throw InputError(
        {{ToDisplayText(scheme) + ":...",
          "is neither a file nor the URL of a server; URLs begin with " + JoinTexts(schemes),
          model::NearestNames(scheme + "://", known)}});
}

} // namespace

ToolModel OpenModel(const std::filesystem::path& path, const ImportOptions& options)
{
    if (IsServerUrl(path.string()))
        return OpenServer(path.string(), options);
    RejectPatterns(options);
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        RejectConnection(path.string());
    if (std::filesystem::is_directory(path, error))
        return MakeFolderModel(ReadModelFolder(path), path, options);
    if (std::filesystem::exists(path, error) && std::filesystem::is_other(path, error))
        return OpenPipe(path, options);
    return OpenFile(path, options);
}

namespace {

ToolModel MakeFormatModel(std::string text, const std::filesystem::path& path,
                          const SourceFormat& format, const ImportOptions& options)
{
    RejectEmpty(path, text);
    const std::optional<ESyntax> syntax = RecogniseSyntax(text);
    if (!syntax)
        throw InputError({{path.string(), "is neither JSON nor YAML nor TMDL"}});
    SourceDocument document = ReadDocument(path.string(), std::move(text), *syntax);
    return MakeSourceModel(format, {&document, 1}, path, options);
}

} // namespace

ToolModel ImportSource(const std::filesystem::path& path, const SourceFormat& format,
                       const ImportOptions& options)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        return MakeFolderModel(ReadModelFolder(path, &format), path, options);
    return MakeFormatModel(ReadSourceText(path), path, format, options);
}

std::optional<ImportKind> FindImportKind(std::string_view word)
{
    if (const std::optional<EDialect> dialect = FindDialect(word))
        return ImportKind{.dialect = dialect};
    if (const SourceFormat* const format = FindSourceFormat(word))
        return ImportKind{.format = format};
    return std::nullopt;
}

std::vector<std::string> ListImportWords()
{
    std::vector<std::string> words = ListDialectWords();
    for (const SourceFormat& format : ListSourceFormats())
        words.emplace_back(format.word);
    return words;
}

ToolModel OpenModelAs(const std::filesystem::path& path, const ImportKind& kind,
                      const ImportOptions& options)
{
    if (kind.dialect)
        return ImportSql({path}, options, kind.dialect);
    return kind.format == nullptr ? OpenModel(path, options)
                                  : ImportSource(path, *kind.format, options);
}

ToolModel OpenBytes(std::string bytes, const std::filesystem::path& name, const ImportKind& kind,
                    const ImportOptions& options)
{
    RejectPatterns(options);
    if (kind.format != nullptr)
        return MakeFormatModel(ToSourceText(name, std::move(bytes)), name, *kind.format, options);
    if (!kind.dialect)
        return RecogniseBytes(std::move(bytes), name, options);
    const std::array scripts{MakeScriptText(name, std::move(bytes))};
    return MakeModel(ReadSqlTexts(scripts, kind.dialect, options.observer), options);
}

bool IsModelFile(const std::filesystem::path& path)
{
    std::error_code error;
    if (IsServerUrl(path.string()) || !std::filesystem::is_regular_file(path, error) ||
        !IsJson(ReadInputStart(path, kStartSize)))
        return false;
    const SourceDocument document = ReadDocument(path.string(), ReadInputFile(path), ESyntax::Json);
    return RecogniseFormat({&document, 1}) == nullptr;
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
    RejectFormat(path, IsJson, "is a model file already, or other JSON, not a database");
    RejectFormat(path, IsText, "is a text, not an SQLite database: take \"import sql\" for SQL");
    return MakeModel(ReadSqliteFile(path, options.observer), options);
}

ToolModel ImportSql(const std::vector<std::filesystem::path>& paths, const ImportOptions& options,
                    std::optional<EDialect> dialect)
{
    for (const std::filesystem::path& path : paths) {
        RejectUrl(path);
        RejectFormat(path, IsJson, "is a model file already, or other JSON, not SQL");
        RejectFormat(path, IsSqlite, "is an SQLite database, not SQL: take \"import sqlite\"");
    }
    return MakeModel(ReadSqlScripts(paths, dialect, options.observer), options);
}

ToolModel ImportTogether(const std::vector<std::filesystem::path>& paths,
                         const ImportOptions& options)
{
    for (const std::filesystem::path& path : paths) {
        RejectUrl(path);
        std::string what;
        std::error_code error;
        if (std::filesystem::is_directory(path, error)) {
            what = "a folder";
        } else if (std::filesystem::is_regular_file(path, error)) {
            const std::string start = ReadInputStart(path, kStartSize);
            if (const auto syntax = RecogniseSyntax(start))
                what = TitleOf(*syntax);
            else if (IsSqlite(start))
                what = "an SQLite database";
        }
        if (!what.empty())
            throw InputError({{path.string(), "is " + what +
                                                  ": only files of SQL can be given together; of "
                                                  "anything else one file or one folder makes a "
                                                  "model"}});
    }
    return ImportSql(paths, options);
}

} // namespace qe::tool
