#include "Toolkit/Import/OpenModel.h"

#include "Engine/Model/Names.h"
#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/Live/LiveSchema.h"
#include "Toolkit/Import/Live/ServerKinds.h"
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
/// What the files of a folder are called that make a model.
constexpr std::string_view kTmdlEnding = ".tmdl";
constexpr std::array kFolderEndings{".yml"sv, ".yaml"sv, kTmdlEnding};
/// Programs that may make parts of a model, and what folder holds those of others.
constexpr std::string_view kProgramEnding = ".js";
constexpr std::string_view kForeignFolder = "node_modules";

bool IsSqlite(std::string_view start)
{
    return start.substr(0, kSqliteStart.size()) == kSqliteStart;
}

/// Some tools save texts so.
bool IsUtf16(std::string_view start)
{
    return start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF");
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

std::string ListFormatWords()
{
    std::vector<std::string> words;
    for (const SourceFormat& format : ListSourceFormats())
        words.emplace_back(format.word);
    return JoinTexts(words);
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

/// Returns what a file holds, in UTF-8 where it begins as UTF-16.
std::string ReadSourceText(const std::filesystem::path& path)
{
    std::string text = ReadInputFile(path);
    return IsUtf16(text) ? MakeScriptText(path, std::move(text)).text : text;
}

/// Returns what a file of a folder is written in: what it begins with counts before its ending.
ESyntax SyntaxOf(const std::filesystem::path& path, std::string_view text)
{
    if (path.extension() == kProgramEnding)
        return ESyntax::JavaScript;
    const ESyntax expected = path.extension() == kTmdlEnding ? ESyntax::Tmdl : ESyntax::Yaml;
    return RecogniseSyntax(text).value_or(expected);
}

/// Returns the documents in the folder and in those within, in the order of their paths.
std::vector<SourceDocument> ReadFolder(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> paths;
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator entry(folder, error), end;
         !error && entry != end; entry.increment(error)) {
        if (entry->path().filename() == kForeignFolder)
            entry.disable_recursion_pending();
        const std::string ending = entry->path().extension().string();
        if (ending == kProgramEnding ||
            std::find(kFolderEndings.begin(), kFolderEndings.end(), ending) != kFolderEndings.end())
            paths.push_back(entry->path());
    }
    if (error)
        throw InputError({{folder.string(), "cannot be read: " + error.message()}});
    std::sort(paths.begin(), paths.end());
    std::vector<SourceDocument> documents;
    for (const std::filesystem::path& path : paths) {
        std::string text = ReadSourceText(path);
        documents.push_back(ReadDocument(path.string(), std::move(text), SyntaxOf(path, text)));
    }
    return documents;
}

/// Returns the format of the first document that is of one; null when none is.
const SourceFormat* FindFolderFormat(std::span<const SourceDocument> documents)
{
    for (const SourceDocument& document : documents) {
        if (document.syntax == ESyntax::JavaScript)
            continue;
        if (const SourceFormat* const format = RecogniseFormat({&document, 1}))
            return format;
    }
    return nullptr;
}

/// Takes the documents of the format; the others are told. Where none is of it, the user has chosen
/// it for all.
ToolModel MakeFolderModel(const SourceFormat& format, std::vector<SourceDocument>& documents,
                          const std::filesystem::path& folder, const ImportOptions& options)
{
    auto others = std::stable_partition(documents.begin(), documents.end(), format.matches);
    if (others == documents.begin())
        others = documents.end();
    ToolModel model = MakeSourceModel(format, {documents.begin(), others}, folder, options);
    for (; others != documents.end(); ++others) {
        if (others->syntax != ESyntax::JavaScript)
            model.notes.push_back("left out a file that " +
                                  std::string(others->templates.empty()
                                                  ? "is not of " + std::string(format.title)
                                                  : "templates make, which needs code") +
                                  ": " + others->name);
    }
    return model;
}

ToolModel OpenFolder(const std::filesystem::path& folder, const ImportOptions& options)
{
    std::vector<SourceDocument> documents = ReadFolder(folder);
    if (documents.empty())
        throw InputError({{folder.string(), "is a folder without files of a model; those of " +
                                                ListFormatWords() + " can be read"}});
    if (const SourceFormat* const format = FindFolderFormat(documents))
        return MakeFolderModel(*format, documents, folder, options);
    throw InputError(
        {{folder.string(), "is of no format that can be read; there are " + ListFormatWords()}});
}

/// A pipe can only be read once, so that all of it is read before it is known what it is.
ToolModel OpenPipe(const std::filesystem::path& path, const ImportOptions& options)
{
    std::string text = ReadSourceText(path);
    if (text.empty())
        throw InputError({{path.string(), "is empty"}});
    if (IsSqlite(text))
        throw InputError({{path.string(), "an SQLite database cannot be read from a pipe"}});
    if (const auto syntax = RecogniseSyntax(text))
        return OpenDocument(ReadDocument(path.string(), std::move(text), *syntax), path, options);
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
    if (!options.server.patterns.IsEmpty())
        throw PatternError(
            {InputProblem{"--tables and --schema", "only choose from databases on servers"}});
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        RejectConnection(path.string());
    if (std::filesystem::is_directory(path, error))
        return OpenFolder(path, options);
    if (std::filesystem::exists(path, error) && std::filesystem::is_other(path, error))
        return OpenPipe(path, options);

    const std::string start = ReadInputStart(path, kStartSize);
    if (start.empty())
        throw InputError({{path.string(), "is empty"}});
    if (IsSqlite(start))
        return ImportSqlite(path, options);
    if (const auto syntax = RecogniseSyntax(start))
        return OpenDocument(ReadDocument(path.string(), ReadInputFile(path), *syntax), path,
                            options);
    if (IsUtf16(start)) {
        std::string text = ReadSourceText(path);
        if (const auto syntax = RecogniseSyntax(text))
            return OpenDocument(ReadDocument(path.string(), std::move(text), *syntax), path,
                                options);
    }
    if (IsScriptStart(start))
        return ImportSql({path}, options);
    throw InputError({{path.string(), "is neither a model file nor an SQLite database nor SQL"}});
}

ToolModel ImportSource(const std::filesystem::path& path, const SourceFormat& format,
                       const ImportOptions& options)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        std::vector<SourceDocument> documents = ReadFolder(path);
        if (documents.empty())
            throw InputError({{path.string(), "is a folder without files of a model"}});
        return MakeFolderModel(format, documents, path, options);
    }
    std::string text = ReadSourceText(path);
    const std::optional<ESyntax> syntax = RecogniseSyntax(text);
    if (!syntax)
        throw InputError({{path.string(), "is neither JSON nor YAML nor TMDL"}});
    SourceDocument document = ReadDocument(path.string(), std::move(text), *syntax);
    return MakeSourceModel(format, {&document, 1}, path, options);
}

bool IsModelFolder(const std::filesystem::path& path)
{
    std::error_code error;
    if (!std::filesystem::is_directory(path, error))
        return false;
    const SourceFormat* const format = FindFolderFormat(ReadFolder(path));
    return format != nullptr && format->takesSeveral;
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

} // namespace qe::tool
