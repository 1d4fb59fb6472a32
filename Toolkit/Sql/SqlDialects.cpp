// The list of dialects.

#include "Toolkit/Sql/ReservedWords.h"
#include "Toolkit/Sql/SqlDialect.h"

namespace qe::tool {

namespace {

using EUnit = NameLimit::EUnit;
using EBooleans = ConditionForms::EBooleans;
using EConcatenation = ConditionForms::EConcatenation;

constexpr CallForms kAnsiCalls{"SUBSTRING($1 FROM $2)", "SUBSTRING($1 FROM $2 FOR $3)",
                               "CHAR_LENGTH($1)",       "MOD($1, $2)",
                               "CEILING($1)",           "COALESCE($1, $2)",
                               "EXTRACT(YEAR FROM $1)", "EXTRACT(MONTH FROM $1)",
                               "EXTRACT(DAY FROM $1)",  "CURRENT_DATE",
                               "CURRENT_TIMESTAMP"};

constexpr TypeForms kAnsiTypes{
    TypeForm{"VARCHAR(4000)", "VARCHAR"}, TypeForm{"INTEGER", ""},          TypeForm{"BIGINT", ""},
    TypeForm{"DECIMAL", "DECIMAL"},       TypeForm{"DOUBLE PRECISION", ""}, TypeForm{"BOOLEAN", ""},
    TypeForm{"TIMESTAMP", "TIMESTAMP"}};

constexpr SqlDialect kUsual{
    .word = {},
    .name = "SQL",
    .names = {.quotes = NameForms::EQuotes::Always, .aliases = {63, EUnit::Bytes}},
    .conditions = {},
};

constexpr SqlDialect kSqlite{
    .word = "sqlite",
    .name = "SQLite",
    .names = {.reservedWords = reserved::kSqlite},
    .conditions = {.isSame = "$1 IS $2",
                   .isNotSame = "$1 IS NOT $2",
                   .calls = {"SUBSTR($1, $2)", "SUBSTR($1, $2, $3)", "LENGTH($1)", "($1 % $2)",
                             "CEIL($1)", "COALESCE($1, $2)", "CAST(STRFTIME('%Y', $1) AS INTEGER)",
                             "CAST(STRFTIME('%m', $1) AS INTEGER)",
                             "CAST(STRFTIME('%d', $1) AS INTEGER)", "CURRENT_DATE",
                             "CURRENT_TIMESTAMP"},
                   .types = {TypeForm{"TEXT", ""}, TypeForm{"INTEGER", ""}, TypeForm{"INTEGER", ""},
                             TypeForm{"NUMERIC", ""}, TypeForm{"REAL", ""}, TypeForm{"INTEGER", ""},
                             TypeForm{"TEXT", ""}}},
};

constexpr SqlDialect kPostgreSql{
    .word = "postgresql",
    .name = "PostgreSQL",
    .names = {.folding = EFolding::Lower,
              .reservedWords = reserved::kPostgreSql,
              .names = {63, EUnit::Bytes},
              .aliases = {63, EUnit::Bytes}},
    .conditions = {.calls = kAnsiCalls,
                   .types = {TypeForm{"text", "varchar"}, TypeForm{"integer", ""},
                             TypeForm{"bigint", ""}, TypeForm{"numeric", "numeric"},
                             TypeForm{"double precision", ""}, TypeForm{"boolean", ""},
                             TypeForm{"timestamp", "timestamp"}}},
};

constexpr SqlDialect kMySql{
    .word = "mysql",
    .name = "MySQL",
    .names = {.openingQuote = '`',
              .closingQuote = '`',
              .reservedWords = reserved::kMySql,
              .names = {64, EUnit::Characters},
              .aliases = {256, EUnit::Characters}},
    .conditions = {.concatenation = EConcatenation::Function,
                   .isSame = "$1 <=> $2",
                   .isNotSame = "NOT ($1 <=> $2)",
                   .escapedLetters = "\\",
                   .calls = {"SUBSTRING($1, $2)", "SUBSTRING($1, $2, $3)", "CHAR_LENGTH($1)",
                             "MOD($1, $2)", "CEILING($1)", "COALESCE($1, $2)", "YEAR($1)",
                             "MONTH($1)", "DAY($1)", "CURRENT_DATE", "CURRENT_TIMESTAMP"},
                   .types = {TypeForm{"CHAR", "CHAR"}, TypeForm{"SIGNED", ""},
                             TypeForm{"SIGNED", ""}, TypeForm{"DECIMAL(65, 10)", "DECIMAL"},
                             TypeForm{"DOUBLE", ""}, TypeForm{"UNSIGNED", ""},
                             TypeForm{"DATETIME(6)", "DATETIME"}}},
};

constexpr SqlDialect kSqlServer{
    .word = "sqlserver",
    .name = "SQL Server",
    .names = {.openingQuote = '[',
              .closingQuote = ']',
              .reservedWords = reserved::kSqlServer,
              .names = {128, EUnit::Characters},
              .aliases = {128, EUnit::Characters}},
    .conditions = {.booleans = EBooleans::Numbers,
                   .concatenation = EConcatenation::Plus,
                   .isSame = "EXISTS (SELECT $1 INTERSECT SELECT $2)",
                   .isNotSame = "NOT EXISTS (SELECT $1 INTERSECT SELECT $2)",
                   .nationalPrefix = "N",
                   .calls = {"SUBSTRING($1, $2, 2147483647)", "SUBSTRING($1, $2, $3)", "LEN($1)",
                             "($1 % $2)", "CEILING($1)", "COALESCE($1, $2)", "YEAR($1)",
                             "MONTH($1)", "DAY($1)", "CAST(GETDATE() AS date)",
                             "CURRENT_TIMESTAMP"},
                   .types = {TypeForm{"nvarchar(max)", "nvarchar"}, TypeForm{"int", ""},
                             TypeForm{"bigint", ""}, TypeForm{"decimal(38, 10)", "decimal"},
                             TypeForm{"float", ""}, TypeForm{"bit", ""},
                             TypeForm{"datetime2", "datetime2"}}},
};

constexpr SqlDialect kOracle{
    .word = "oracle",
    .name = "Oracle",
    .names = {.innerQuote = NameForms::EInnerQuote::None,
              .folding = EFolding::Upper,
              .mayBeginWithUnderscore = false,
              .reservedWords = reserved::kOracle,
              .names = {128, EUnit::Bytes},
              .aliases = {128, EUnit::Bytes},
              .tableAlias = " "},
    .conditions = {.booleans = EBooleans::Numbers,
                   .isSame = "DECODE($1, $2, 1, 0) = 1",
                   .isNotSame = "DECODE($1, $2, 1, 0) = 0",
                   .calls = {"SUBSTR($1, $2)", "SUBSTR($1, $2, $3)", "LENGTH($1)", "MOD($1, $2)",
                             "CEIL($1)", "COALESCE($1, $2)", "EXTRACT(YEAR FROM $1)",
                             "EXTRACT(MONTH FROM $1)", "EXTRACT(DAY FROM $1)",
                             "TRUNC(CURRENT_DATE)", "CURRENT_TIMESTAMP"},
                   .types = {TypeForm{"VARCHAR2(4000)", "VARCHAR2"}, TypeForm{"NUMBER(10)", ""},
                             TypeForm{"NUMBER(19)", ""}, TypeForm{"NUMBER", "NUMBER"},
                             TypeForm{"BINARY_DOUBLE", ""}, TypeForm{"NUMBER(1)", ""},
                             TypeForm{"TIMESTAMP", "TIMESTAMP"}}},
};

constexpr SqlDialect kDuckDb{
    .word = "duckdb",
    .name = "DuckDB",
    .names = {.reservedWords = reserved::kDuckDb},
    .conditions = {.calls = {"SUBSTRING($1, $2)", "SUBSTRING($1, $2, $3)", "LENGTH($1)",
                             "($1 % $2)", "CEIL($1)", "COALESCE($1, $2)", "YEAR($1)", "MONTH($1)",
                             "DAY($1)", "CURRENT_DATE", "CURRENT_TIMESTAMP"},
                   .types = {TypeForm{"VARCHAR", "VARCHAR"}, TypeForm{"INTEGER", ""},
                             TypeForm{"BIGINT", ""}, TypeForm{"DECIMAL", "DECIMAL"},
                             TypeForm{"DOUBLE", ""}, TypeForm{"BOOLEAN", ""},
                             TypeForm{"TIMESTAMP", ""}}},
};

constexpr SqlDialect kAnsi{
    .word = "ansi",
    .name = "standard SQL",
    .names = {.folding = EFolding::Upper,
              .mayBeginWithUnderscore = false,
              .reservedWords = reserved::kAnsi,
              .names = {128, EUnit::Characters},
              .aliases = {128, EUnit::Characters}},
    .conditions = {.calls = kAnsiCalls, .types = kAnsiTypes},
};

constexpr std::array kDialects{kSqlite, kPostgreSql, kMySql, kSqlServer, kOracle, kDuckDb, kAnsi};

} // namespace

std::span<const SqlDialect> GetSqlDialects()
{
    return kDialects;
}

const SqlDialect& GetUsualSqlDialect()
{
    return kUsual;
}

} // namespace qe::tool
