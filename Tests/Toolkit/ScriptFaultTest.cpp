#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/SchemaLines.h"
#include "Toolkit/Import/SqlScripts.h"
#include "Toolkit/Text/InputFile.h"

#include <gmock/gmock.h>

#include <array>

namespace {

using namespace qe::tool;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

constexpr std::array kAllDialects{EDialect::Sqlite, EDialect::PostgreSql, EDialect::MySql,
                                  EDialect::SqlServer, EDialect::Oracle};

DatabaseSchema Read(const std::string& script, std::optional<EDialect> dialect = std::nullopt)
{
    const ScriptText text = MakeScriptText("s.sql", script);
    return ReadSqlTexts({&text, 1}, dialect);
}

std::string Repeat(const std::string& text, std::size_t count)
{
    std::string repeated;
    for (std::size_t i = 0; i < count; ++i)
        repeated += text;
    return repeated;
}

TEST(ScriptFaults, HideWhatFollowsAndAreTold)
{
    struct Case
    {
        EDialect dialect;
        std::string open;
    };
    const Case cases[] = {
        {EDialect::PostgreSql, "SELECT 'it"},     {EDialect::PostgreSql, "/* /* */"},
        {EDialect::PostgreSql, "SELECT $a$ $b$"}, {EDialect::PostgreSql, "SELECT E'\\'"},
        {EDialect::MySql, "SELECT `it"},          {EDialect::MySql, "SELECT 'it\\'"},
        {EDialect::SqlServer, "SELECT [it"},      {EDialect::Oracle, "SELECT q'[it]"},
        {EDialect::Oracle, "BEGIN x := \"it;"},
    };
    for (const Case& each : cases) {
        const DatabaseSchema schema = Read(
            "CREATE TABLE a (x int);\n\n" + each.open + ";\nCREATE TABLE b (x int);", each.dialect);
        EXPECT_THAT(schema.tables, SizeIs(1)) << each.open;
        EXPECT_THAT(schema.notes, ElementsAre(HasSubstr("s.sql:3: a quote or comment that begins")))
            << each.open;
    }
}

TEST(ScriptFaults, LeaveOneClearErrorWhereNothingCanBeRead)
{
    using qe::test::MistakesOf;
    EXPECT_THAT(MistakesOf([] { (void)Read("CREATE TABLE (x);", EDialect::Oracle); }),
                HasSubstr("s.sql:1: cannot be read, a table without a name\n"));
    EXPECT_THAT(MistakesOf([] { (void)Read("SELECT 1", EDialect::MySql); }),
                HasSubstr("s.sql: creates no tables that can be read as MySQL"));
    const DatabaseSchema many =
        Read("CREATE TABLE a (x int);" + Repeat("ALTER TABLE a ADD UNIQUE (y);", 150),
             EDialect::SqlServer);
    EXPECT_THAT(many.notes, SizeIs(101));
    EXPECT_EQ(many.notes.back(), "more that could not be read: 50");
}

TEST(ScriptFaults, OfLettersAreRepaired)
{
    const std::string script = "CREATE TABLE \"\xC3\xA4\" (x serial);";
    std::string little = "\xFF\xFE";
    std::string big = "\xFE\xFF";
    for (const char c : std::string("CREATE TABLE \"\xE4\" (x serial);")) {
        little += {c, '\0'};
        big += {'\0', c};
    }
    for (const std::string& text : {script, "\xEF\xBB\xBF" + script, little, big}) {
        const DatabaseSchema schema = Read(text, EDialect::PostgreSql);
        EXPECT_EQ(schema.tables.front().name, "\xC3\xA4");
        EXPECT_THAT(schema.notes, SizeIs(0));
    }
    const DatabaseSchema latin = Read("CREATE TABLE\n\"\xE4\" (x serial);", EDialect::PostgreSql);
    EXPECT_EQ(latin.tables.front().name, "\xC3\xA4");
    EXPECT_THAT(latin.notes, ElementsAre(HasSubstr("the first one at")));
    EXPECT_THAT(latin.notes.front(), HasSubstr("s.sql:2:2"));
}

TEST(ScriptFaults, OfSizeCostNoStackAndNoSquares)
{
    constexpr std::size_t kMany = 60'000;
    std::string columns = "x0 int";
    for (int i = 1; i < 5000; ++i)
        columns += ", x" + std::to_string(i) + " int REFERENCES t (x0) UNIQUE";
    const std::string scripts[] = {
        "CREATE TABLE t (x int CHECK (1" + Repeat("+1", kMany) + "));",
        "CREATE TABLE t (x int CHECK " + Repeat("(", kMany) + Repeat(")", kMany) + ");",
        "CREATE TABLE t (x int" + Repeat("(", kMany),
        "CREATE TABLE t (" + columns + ");",
        "CREATE TABLE t (x int);" + Repeat("/*", kMany),
        "CREATE TABLE t (x int);" + Repeat("BEGIN ", kMany) + Repeat(";", kMany),
        "CREATE TABLE t (x int);" + Repeat("$a", kMany) + Repeat(")", kMany),
        "CREATE TABLE t (x int);\nINSERT INTO t VALUES (" + Repeat("1,", kMany) + "1);",
    };
    for (const EDialect dialect : kAllDialects)
        for (const std::string& script : scripts)
            EXPECT_EQ(Read(script, dialect).tables.front().columns.empty(), false)
                << DialectName(dialect) << script.substr(0, 60);
}

/// The script is cut in many places, and bytes are replaced by quotes and parentheses: nothing but
/// an InputError may come of it.
TEST(ScriptFaults, NeverEndInAnythingButAnInputError)
{
    const std::string script =
        "CREATE TABLE \"a\" (id int NOT NULL PRIMARY KEY, b varchar(3) DEFAULT 'x' UNIQUE,"
        "CONSTRAINT c FOREIGN KEY (id, b) REFERENCES s.a (id, b), KEY k (b(3)), CHECK (b > 1));\n"
        "/*!1 x */ ALTER TABLE a ADD COLUMN c int, DROP COLUMN b, MODIFY c int NOT NULL;\nGO\n"
        "ALTER TABLE a ADD (d int, UNIQUE (d)); CREATE UNIQUE INDEX i ON a (c DESC) WHERE c > 1;\n"
        "COMMENT ON COLUMN s.a.c IS 'it'; DELIMITER $$\nCREATE TRIGGER t BEGIN x; END$$\n/\n"
        "CREATE TABLE e PARTITION OF a DEFAULT; DROP TABLE a, e; RENAME TABLE a TO b; \\x\n"
        "COPY a FROM stdin;\n1\n\\.\nEXEC sp_x a, 'b' CREATE TABLE [f] (LIKE a); $q$ x $q$";
    for (const EDialect dialect : kAllDialects)
        for (std::size_t i = 0; i < script.size(); i += 2)
            for (const char put : {'\'', '(', ',', '"'}) {
                std::string mutated = script;
                mutated[i] = put;
                try {
                    (void)Read(put == ',' ? script.substr(0, i) : mutated, dialect);
                } catch (const InputError&) {
                    continue;
                }
            }
}

} // namespace
