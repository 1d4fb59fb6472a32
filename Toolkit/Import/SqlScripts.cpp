#include "Toolkit/Import/SqlScripts.h"

#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/Dialects/DialectScript.h"
#include "Toolkit/Import/PostgreSql/PostgresScript.h"
#include "Toolkit/Import/Sqlite/SqliteScript.h"
#include "Toolkit/Text/InputFile.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace qe::tool {

namespace {

using Scripts = std::span<const ScriptText>;

/// How the scripts of a dialect are read.
struct DialectReader
{
    EDialect dialect;
    DatabaseSchema (*read)(Scripts scripts, const ProgressObserver& observer);
};

/// Lets SQLite itself run the statements; where it cannot, they are read without it.
DatabaseSchema ReadSqlite(Scripts scripts, const ProgressObserver& observer)
{
    try {
        return ReadSqliteScripts(scripts, observer);
    } catch (const InputError& error) {
        DatabaseSchema schema = ReadDialectScripts(scripts, EDialect::Sqlite, observer);
        if (schema.tables.empty())
            throw;
        schema.notes.insert(schema.notes.begin(), std::string("not as SQLite reads it: ") +
                                                      error.what() +
                                                      "; all was read without SQLite");
        return schema;
    }
}

template <EDialect dialect>
DatabaseSchema ReadDialect(Scripts scripts, const ProgressObserver& observer)
{
    return ReadDialectScripts(scripts, dialect, observer);
}

constexpr std::array kReaders{
    DialectReader{.dialect = EDialect::Sqlite, .read = ReadSqlite},
    DialectReader{.dialect = EDialect::PostgreSql, .read = ReadPostgresScripts},
    DialectReader{.dialect = EDialect::MySql, .read = ReadDialect<EDialect::MySql>},
    DialectReader{.dialect = EDialect::SqlServer, .read = ReadDialect<EDialect::SqlServer>},
    DialectReader{.dialect = EDialect::Oracle, .read = ReadDialect<EDialect::Oracle>},
};

/// Throws an InputError with what the reading told when nothing came of it.
void RequireTables(const DatabaseSchema& schema, Scripts scripts, EDialect dialect)
{
    if (!schema.tables.empty() || scripts.empty() || dialect == EDialect::Sqlite)
        return;
    std::vector<InputProblem> problems;
    problems.reserve(schema.notes.size() + 1);
    for (const std::string& note : schema.notes)
        problems.push_back({.place = {}, .text = note});
    problems.push_back(
        {.place = scripts.front().path.string(),
         .text = "creates no tables that can be read as " + std::string(DialectName(dialect))});
    throw InputError(std::move(problems));
}

} // namespace

DatabaseSchema ReadSqlTexts(std::span<const ScriptText> scripts, std::optional<EDialect> dialect,
                            const ProgressObserver& observer)
{
    const EDialect used = dialect ? *dialect : RecogniseDialect(scripts);
    const auto reader =
        std::find_if(kReaders.begin(), kReaders.end(),
                     [used](const DialectReader& known) { return known.dialect == used; });
    DatabaseSchema schema = reader->read(scripts, observer);
    schema.dialect = &GetSqlDialect(used);
    RequireTables(schema, scripts, used);
    for (const ScriptText& script : scripts)
        schema.notes.insert(schema.notes.begin(), script.notes.begin(), script.notes.end());
    if (!scripts.empty())
        schema.name = scripts.front().path.stem().string();
    return schema;
}

DatabaseSchema ReadSqlScripts(const std::vector<std::filesystem::path>& paths,
                              std::optional<EDialect> dialect, const ProgressObserver& observer)
{
    std::vector<ScriptText> scripts;
    scripts.reserve(paths.size());
    for (const std::filesystem::path& path : paths)
        scripts.push_back(ReadScriptText(path));
    return ReadSqlTexts(scripts, dialect, observer);
}

} // namespace qe::tool
