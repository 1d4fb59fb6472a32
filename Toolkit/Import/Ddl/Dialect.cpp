#include "Toolkit/Import/Ddl/Dialect.h"

#include "Engine/Services/Characters.h"
#include "Toolkit/Import/Ddl/ScriptText.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace qe::tool {

namespace {

constexpr std::size_t kDialectCount = 5;

std::span<const SqlDialect> ListDialects()
{
    return GetSqlDialects().first(kDialectCount);
}

/// A text that scripts of one dialect hold, and how much it says.
struct Mark
{
    EDialect dialect;
    int weight;
    std::string_view text;
};

// In lower case; line breaks are "\n" only.
constexpr std::array kMarks{
    Mark{EDialect::Sqlite, 3, "autoincrement"},
    Mark{EDialect::Sqlite, 4, "pragma "},
    Mark{EDialect::Sqlite, 4, "without rowid"},
    Mark{EDialect::Sqlite, 4, "sqlite_"},
    Mark{EDialect::Sqlite, 1, "integer primary key"},
    Mark{EDialect::PostgreSql, 6, "postgresql database dump"},
    Mark{EDialect::PostgreSql, 6, "pg_catalog"},
    Mark{EDialect::PostgreSql, 6, "\n\\restrict "},
    Mark{EDialect::PostgreSql, 5, "\n\\."},
    Mark{EDialect::PostgreSql, 4, "\n\\c"},
    Mark{EDialect::PostgreSql, 4, "alter table only "},
    Mark{EDialect::PostgreSql, 4, "search_path"},
    Mark{EDialect::PostgreSql, 4, "language plpgsql"},
    Mark{EDialect::PostgreSql, 4, "language 'plpgsql"},
    Mark{EDialect::PostgreSql, 4, "create extension "},
    Mark{EDialect::PostgreSql, 3, "character varying"},
    Mark{EDialect::PostgreSql, 3, " time zone"},
    Mark{EDialect::PostgreSql, 3, "timestamptz"},
    Mark{EDialect::PostgreSql, 3, "nextval("},
    Mark{EDialect::PostgreSql, 3, " serial "},
    Mark{EDialect::PostgreSql, 3, " bigserial"},
    Mark{EDialect::PostgreSql, 3, "bytea"},
    Mark{EDialect::PostgreSql, 3, "jsonb"},
    Mark{EDialect::PostgreSql, 2, " boolean"},
    Mark{EDialect::PostgreSql, 2, "::"},
    Mark{EDialect::PostgreSql, 2, " as $$"},
    Mark{EDialect::PostgreSql, 2, " as identity"},
    Mark{EDialect::PostgreSql, 2, " inherits ("},
    Mark{EDialect::PostgreSql, 2, " using btree"},
    Mark{EDialect::MySql, 6, "mysql dump"},
    Mark{EDialect::MySql, 6, "mariadb dump"},
    Mark{EDialect::MySql, 5, "\ndelimiter "},
    Mark{EDialect::MySql, 5, "auto_increment"},
    Mark{EDialect::MySql, 4, "/*!"},
    Mark{EDialect::MySql, 4, "engine=innodb"},
    Mark{EDialect::MySql, 4, "engine = innodb"},
    Mark{EDialect::MySql, 4, "engine=myisam"},
    Mark{EDialect::MySql, 3, "create table `"},
    Mark{EDialect::MySql, 2, "create table if not exists `"},
    Mark{EDialect::MySql, 3, " unsigned"},
    Mark{EDialect::MySql, 3, "default charset"},
    Mark{EDialect::MySql, 2, "bigint("},
    Mark{EDialect::MySql, 2, "tinyint("},
    Mark{EDialect::MySql, 2, "unique key "},
    Mark{EDialect::MySql, 2, "lock tables"},
    Mark{EDialect::SqlServer, 6, "\ngo\n"},
    Mark{EDialect::SqlServer, 5, "[dbo]."},
    Mark{EDialect::SqlServer, 3, "dbo."},
    Mark{EDialect::SqlServer, 4, " identity(1"},
    Mark{EDialect::SqlServer, 4, " identity (1"},
    Mark{EDialect::SqlServer, 2, "nvarchar("},
    Mark{EDialect::SqlServer, 3, "[nvarchar]"},
    Mark{EDialect::SqlServer, 3, "[int]"},
    Mark{EDialect::SqlServer, 4, "clustered"},
    Mark{EDialect::SqlServer, 4, "on [primary]"},
    Mark{EDialect::SqlServer, 4, "uniqueidentifier"},
    Mark{EDialect::SqlServer, 4, "object_id("},
    Mark{EDialect::SqlServer, 4, "sp_addtype"},
    Mark{EDialect::SqlServer, 4, "sp_addextendedproperty"},
    Mark{EDialect::SqlServer, 4, "quoted_identifier"},
    Mark{EDialect::SqlServer, 3, "with nocheck"},
    Mark{EDialect::SqlServer, 3, "with check add"},
    Mark{EDialect::SqlServer, 2, "datetime2"},
    Mark{EDialect::SqlServer, 2, "exec sp_"},
    Mark{EDialect::Oracle, 6, "varchar2"},
    Mark{EDialect::Oracle, 5, "\n/\n"},
    Mark{EDialect::Oracle, 4, " number("},
    Mark{EDialect::Oracle, 2, " number "},
    Mark{EDialect::Oracle, 4, "\nrem "},
    Mark{EDialect::Oracle, 4, "\nprompt "},
    Mark{EDialect::Oracle, 4, "execute immediate"},
    Mark{EDialect::Oracle, 4, "user_tables"},
    Mark{EDialect::Oracle, 3, ".nextval"},
    Mark{EDialect::Oracle, 3, "sysdate"},
    Mark{EDialect::Oracle, 2, "segment creation"},
    Mark{EDialect::Oracle, 2, "add (constraint"},
    Mark{EDialect::Oracle, 2, "create or replace editionable"},
};

/// What says less may stand in scripts of any dialect.
constexpr int kLeastScore = 3;

/// How much of a script is looked at; more would only say again what this says.
constexpr std::size_t kLookedAt = std::size_t{1024} * 1024;

/// Appends a line as the marks are written, without what stands between single quotes, which is
/// mostly rows.
void AppendLine(std::string& text, std::string_view line)
{
    const std::size_t comment = std::min(line.find("--"), line.size());
    bool isQuoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\'' && i < comment)
            isQuoted = !isQuoted;
        if (!isQuoted && line[i] != '\r')
            text += ascii::ToLower(line[i]);
    }
    text += '\n';
}

/// Returns the beginning of a script as the marks are written.
std::string Normalise(std::string_view script)
{
    std::string_view rest = script.substr(0, kLookedAt);
    std::string text = "\n";
    text.reserve(rest.size() + 2);
    while (!rest.empty()) {
        const std::size_t size = std::min(rest.find('\n'), rest.size());
        AppendLine(text, rest.substr(0, size));
        rest.remove_prefix(std::min(size + 1, rest.size()));
    }
    return text;
}

} // namespace

std::vector<std::string> ListDialectWords()
{
    std::vector<std::string> words;
    words.reserve(kDialectCount);
    for (const SqlDialect& dialect : ListDialects())
        words.emplace_back(dialect.word);
    return words;
}

std::optional<EDialect> FindDialect(std::string_view word)
{
    for (std::size_t i = 0; i < kDialectCount; ++i)
        if (ListDialects()[i].word == word)
            return static_cast<EDialect>(i);
    return std::nullopt;
}

const SqlDialect& GetSqlDialect(EDialect dialect)
{
    return ListDialects()[static_cast<std::size_t>(dialect)];
}

std::string_view DialectName(EDialect dialect)
{
    return GetSqlDialect(dialect).name;
}

EDialect RecogniseDialect(std::span<const ScriptText> scripts)
{
    std::array<int, kDialectCount> scores{};
    for (const ScriptText& script : scripts) {
        const std::string text = Normalise(script.text);
        for (const Mark& mark : kMarks)
            if (text.find(mark.text) != std::string::npos)
                scores[static_cast<std::size_t>(mark.dialect)] += mark.weight;
    }
    const auto best = std::max_element(scores.begin(), scores.end());
    return *best < kLeastScore ? EDialect::Sqlite : static_cast<EDialect>(best - scores.begin());
}

} // namespace qe::tool
