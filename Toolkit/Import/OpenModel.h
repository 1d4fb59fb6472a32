#ifndef TOOLKIT_IMPORT_OPENMODEL_H
#define TOOLKIT_IMPORT_OPENMODEL_H

#include "Toolkit/Import/Ddl/Dialect.h"
#include "Toolkit/Import/Formats/SourceFormat.h"
#include "Toolkit/Import/Schema/SchemaModel.h"
#include "Toolkit/Model/ToolModel.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe::tool {

struct ServerKind;

/// Returns the model of whatever the file holds: an SQLite database, a format of another tool,
/// other JSON, which is a model file, else SQL statements that create tables. The name of the file
/// does not matter. A folder holds the files of one format. What is no regular file, such as a
/// pipe, holds no database. A path that is the URL of a server stands for the database there.
/// Throws an InputError when it cannot be read, and a PatternError for patterns that match no table
/// of a server or are given with a file.
[[nodiscard]] ToolModel OpenModel(const std::filesystem::path& path,
                                  const ImportOptions& options = {});

/// What a model is read as; nothing where that is to be recognised.
struct ImportKind
{
    /// That of SQL statements.
    std::optional<EDialect> dialect{};
    /// May be null.
    const SourceFormat* format = nullptr;
};

/// Returns the kind of the word, which is that of a dialect or of a format; nothing when there is
/// none.
[[nodiscard]] std::optional<ImportKind> FindImportKind(std::string_view word);

/// Returns all these words, those of dialects first.
[[nodiscard]] std::vector<std::string> ListImportWords();

/// Returns the model of the file, read as that kind. Throws like OpenModel.
[[nodiscard]] ToolModel OpenModelAs(const std::filesystem::path& path, const ImportKind& kind,
                                    const ImportOptions& options);

/// Returns the model of what a file holds that is called `name` and need not exist, read as that
/// kind. Throws like OpenModel.
[[nodiscard]] ToolModel OpenBytes(std::string bytes, const std::filesystem::path& name,
                                  const ImportKind& kind, const ImportOptions& options);

/// Returns whether the path leads to a file, not a pipe, that is taken for a model file. All of it
/// is read. Throws an InputError when it cannot be read.
[[nodiscard]] bool IsModelFile(const std::filesystem::path& path);

/// Returns the model of a file or folder of that format. Throws an InputError when it cannot be
/// read as one.
[[nodiscard]] ToolModel ImportSource(const std::filesystem::path& path, const SourceFormat& format,
                                     const ImportOptions& options);

/// Returns the model of the database that a URL of the kind, one of the list, names. Throws an
/// InputError when the text is no such URL or the database cannot be read, and a PatternError for
/// patterns that match no table.
[[nodiscard]] ToolModel ImportServer(const std::string& url, const ImportOptions& options,
                                     const ServerKind& kind);

/// Returns how the path of a model may be shown: URLs without what is not for all eyes.
[[nodiscard]] std::string ToShownPath(const std::filesystem::path& path);

/// Returns the model of an SQLite database, called after the file. Throws an InputError when the
/// file cannot be read as one.
[[nodiscard]] ToolModel ImportSqlite(const std::filesystem::path& path,
                                     const ImportOptions& options);

/// Returns the model of what the statements of the files declare, read one file after the other as
/// one script of the dialect; without a dialect, it is recognised. It is called after the first
/// file. Throws an InputError when a file cannot be read or when nothing in the files can.
[[nodiscard]] ToolModel ImportSql(const std::vector<std::filesystem::path>& paths,
                                  const ImportOptions& options,
                                  std::optional<EDialect> dialect = std::nullopt);

/// Returns the model of several files, which are SQL: read like ImportSql. Throws an InputError
/// that tells what can be given together when one of them is something else.
[[nodiscard]] ToolModel ImportTogether(const std::vector<std::filesystem::path>& paths,
                                       const ImportOptions& options);

} // namespace qe::tool

#endif
