#include "Toolkit/Import/ModelFolder.h"

#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Text/DisplayText.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <span>
#include <system_error>
#include <utility>

namespace qe::tool {

namespace {

using namespace std::string_view_literals;
using Paths = std::vector<std::filesystem::path>;

/// What tools call the one file that holds a model, the first to be taken first.
constexpr std::array kModelFiles{"manifest.json"sv,
                                 "target/manifest.json"sv,
                                 "semantic_manifest.json"sv,
                                 "target/semantic_manifest.json"sv,
                                 "model.bim"sv,
                                 "Model.bim"sv,
                                 "schema.json"sv,
                                 "mdl.json"sv,
                                 "target/mdl.json"sv};
/// A project of dbt without what dbt makes of it.
constexpr std::string_view kDbtProject = "dbt_project.yml";
/// What the files of a folder are called that make a model together.
constexpr std::string_view kTmdlEnding = ".tmdl";
constexpr std::array kFolderEndings{".yml"sv, ".yaml"sv, kTmdlEnding};
/// Programs that may make parts of a model, and what folder holds those of others.
constexpr std::string_view kProgramEnding = ".js";
constexpr std::string_view kForeignFolder = "node_modules";

/// Returns what a file is written in: what it begins with counts before its ending.
ESyntax SyntaxOf(const std::filesystem::path& path, std::string_view text)
{
    const std::filesystem::path ending = path.extension();
    if (ending == kProgramEnding)
        return ESyntax::JavaScript;
    const bool isFolderFile = std::find(kFolderEndings.begin(), kFolderEndings.end(),
                                        ending.string()) != kFolderEndings.end();
    const ESyntax expected = ending == kTmdlEnding ? ESyntax::Tmdl
                             : isFolderFile        ? ESyntax::Yaml
                                                   : ESyntax::Json;
    return RecogniseSyntax(text).value_or(expected);
}

SourceDocument ReadSourceDocument(const std::filesystem::path& path)
{
    std::string text = ReadSourceText(path);
    const ESyntax syntax = SyntaxOf(path, text);
    return ReadDocument(path.string(), std::move(text), syntax);
}

/// Returns the documents in the folder and in those within, in the order of their paths.
std::vector<SourceDocument> ReadFolder(const std::filesystem::path& folder)
{
    Paths paths;
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
    documents.reserve(paths.size());
    for (const std::filesystem::path& path : paths)
        documents.push_back(ReadSourceDocument(path));
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

/// Returns the format by which a document is read; null when it is not.
using FormatChoice = std::function<const SourceFormat*(const SourceDocument& document)>;

/// Returns the first of the known files that holds a model.
std::optional<ModelFolder> FindModelFile(const std::filesystem::path& folder,
                                         const FormatChoice& choose)
{
    std::optional<ModelFolder> found;
    for (const std::string_view name : kModelFiles) {
        const std::filesystem::path path = folder / name;
        std::error_code error;
        if (!std::filesystem::is_regular_file(path, error))
            continue;
        if (found) {
            found->notes.push_back("read " + found->documents.front().name +
                                   " of the folder, not what lies beside it: " + path.string());
            continue;
        }
        SourceDocument document = ReadSourceDocument(path);
        const SourceFormat* const format = choose(document);
        if (format == nullptr)
            continue;
        found.emplace();
        found->format = format;
        found->documents.push_back(std::move(document));
    }
    return found;
}

/// The same for a model of that format, or of any where it is null. A file that is of the format
/// goes before one that only could be read so.
std::optional<ModelFolder> FindModelFile(const std::filesystem::path& folder,
                                         const SourceFormat* format)
{
    const auto recognise = [format](const SourceDocument& document) {
        const SourceFormat* const known = RecogniseFormat({&document, 1});
        return format == nullptr || known == format ? known : nullptr;
    };
    std::optional<ModelFolder> found = FindModelFile(folder, recognise);
    if (!found && format != nullptr)
        found = FindModelFile(folder, [format](const SourceDocument& document) {
            return format->matches(document) ? format : nullptr;
        });
    return found;
}

/// Returns what is to be said of JSON in the folder that is no file of those names; empty where
/// there is none.
std::string DescribeOtherJson(const std::filesystem::path& folder)
{
    Paths paths;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().extension() == ".json" || entry->path().extension() == ".bim")
            paths.push_back(entry->path());
    if (paths.empty())
        return {};
    return "; other files are read when they are given themselves, such as " +
           std::min_element(paths.begin(), paths.end())->string();
}

/// Throws an InputError that tells where a model was looked for.
[[noreturn]] void RejectFolder(const std::filesystem::path& folder)
{
    std::error_code error;
    if (std::filesystem::exists(folder / kDbtProject, error))
        throw InputError({{folder.string(), "is a project of dbt without target/manifest.json, "
                                            "which \"dbt parse\" writes"}});
    throw InputError(
        {{folder.string(), "is a folder without a model of the formats that can be read, " +
                               ListFormatWords() + "; looked for " + JoinTexts(kModelFiles) +
                               " and, also in folders within, for models in files that end in " +
                               JoinTexts(kFolderEndings) + DescribeOtherJson(folder)}});
}

} // namespace

ModelFolder ReadModelFolder(const std::filesystem::path& folder, const SourceFormat* format)
{
    if (std::optional<ModelFolder> found = FindModelFile(folder, format))
        return std::move(*found);
    ModelFolder model{.format = format, .documents = ReadFolder(folder)};
    if (format == nullptr)
        model.format = FindFolderFormat(model.documents);
    if (model.format == nullptr)
        RejectFolder(folder);
    // The documents of the format are taken; the others are told. Where none is of it, the user has
    // chosen it for all.
    std::vector<SourceDocument>& documents = model.documents;
    auto others = std::stable_partition(documents.begin(), documents.end(), model.format->matches);
    if (others == documents.begin() && model.format->takesSeveral)
        others = documents.end();
    if (others == documents.begin())
        RejectFolder(folder);
    for (auto other = others; other != documents.end(); ++other) {
        if (other->syntax == ESyntax::JavaScript)
            continue;
        model.notes.push_back("left out a file that " +
                              std::string(other->templates.empty()
                                              ? "is not of " + std::string(model.format->title)
                                              : "templates make, which needs code") +
                              ": " + other->name);
    }
    documents.erase(others, documents.end());
    return model;
}

bool IsModelFolder(const std::filesystem::path& path)
{
    std::error_code error;
    if (!std::filesystem::is_directory(path, error))
        return false;
    if (FindModelFile(path, nullptr))
        return true;
    const SourceFormat* const format = FindFolderFormat(ReadFolder(path));
    return format != nullptr && format->takesSeveral;
}

std::string ReadSourceText(const std::filesystem::path& path)
{
    return ToSourceText(path, ReadInputFile(path));
}

std::string ToSourceText(const std::filesystem::path& path, std::string bytes)
{
    return IsUtf16(bytes) ? MakeScriptText(path, std::move(bytes)).text : bytes;
}

bool IsUtf16(std::string_view start)
{
    return start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF");
}

std::string ListFormatWords()
{
    std::vector<std::string> words;
    for (const SourceFormat& format : ListSourceFormats())
        words.emplace_back(format.word);
    return JoinTexts(words);
}

} // namespace qe::tool
