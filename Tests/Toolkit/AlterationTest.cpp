#include "Tests/Toolkit/SchemaLines.h"
#include "Toolkit/Import/SqlScripts.h"
#include "Toolkit/Text/DisplayText.h"

#include <gmock/gmock.h>

namespace {

using namespace qe::tool;

/// What came of a script: its lines without the tables' own, with commas between them.
std::string Describe(EDialect dialect, const std::string& script)
{
    const ScriptText text = MakeScriptText("s.sql", script);
    const DatabaseSchema schema = ReadSqlTexts({&text, 1}, dialect);
    std::vector<std::string> lines;
    for (const std::string& line : qe::test::DescribeSchema(schema))
        if (!line.starts_with("table "))
            lines.push_back(line);
    for (const std::string& note : schema.notes)
        lines.push_back(note);
    return JoinTexts(lines, {}, "; ");
}

/// Two tables in every dialect, of which `b` refers to `a`.
constexpr const char* kTables =
    "CREATE TABLE a (x int NOT NULL, y int);"
    "CREATE TABLE b (x int NOT NULL, z int);"
    "ALTER TABLE a ADD CONSTRAINT a_key PRIMARY KEY (x);"
    "ALTER TABLE a ADD CONSTRAINT a_y UNIQUE (y);"
    "ALTER TABLE b ADD CONSTRAINT b_a FOREIGN KEY (x) REFERENCES a (x);";

struct Case
{
    EDialect dialect;
    std::string statement;
    std::string expected;
};

void Check(const std::string& tables, const std::vector<Case>& cases)
{
    for (const Case& each : cases)
        EXPECT_EQ(Describe(each.dialect, tables + each.statement), each.expected)
            << DialectName(each.dialect) << ": " << each.statement;
}

TEST(Alterations, ChangeKeysInEveryDialect)
{
    using enum EDialect;
    const std::string join = "join b - a (x = x) not-null";
    const std::string keys = "key a (x); key a (y)";
    Check(
        kTables,
        {
            {MySql, "", join + "; " + keys},
            {MySql, "ALTER TABLE b DROP FOREIGN KEY b_a;", keys},
            {MySql, "ALTER TABLE a DROP INDEX a_y;", join + "; key a (x)"},
            {MySql, "ALTER TABLE b DROP KEY b_a, DROP COLUMN z;", keys},
            {MySql, "ALTER TABLE a DROP PRIMARY KEY;", join + " to no key; key a (y)"},
            {MySql, "ALTER TABLE b CHANGE x w int NULL;", "join b - a (w = x); " + keys},
            {MySql, "ALTER TABLE b MODIFY COLUMN x bigint UNIQUE;",
             "join b - a (x = x) unique; " + keys + "; key b (x)"},
            {MySql, "ALTER TABLE b RENAME TO c;", "join c - a (x = x) not-null; " + keys},
            {MySql, "RENAME TABLE a TO c, b TO a;",
             "join a - c (x = x) not-null; key c (x); key c (y)"},
            {MySql, "DROP TABLE b;", keys},
            {MySql, "CREATE UNIQUE INDEX i ON b (x); DROP INDEX i ON b;", join + "; " + keys},
            {SqlServer, "ALTER TABLE b DROP CONSTRAINT b_a, COLUMN z", keys},
            {SqlServer, "ALTER TABLE b ALTER COLUMN x bigint NULL;", "join b - a (x = x); " + keys},
            {SqlServer, "ALTER TABLE b ADD w int, v int REFERENCES a, UNIQUE (w, v)",
             "join b - a (v = x); " + join + "; " + keys + "; key b (v, w)"},
            {SqlServer, "ALTER TABLE b CHECK CONSTRAINT b_a", join + "; " + keys},
            {PostgreSql, "ALTER TABLE b ALTER x DROP NOT NULL;", "join b - a (x = x); " + keys},
            {PostgreSql, "ALTER TABLE b DROP COLUMN x, ADD COLUMN x int REFERENCES a;",
             "join b - a (x = x); " + keys},
            {PostgreSql, "ALTER TABLE a RENAME COLUMN x TO w; ALTER TABLE a RENAME TO c;",
             "join b - c (x = w) not-null; key c (w); key c (y)"},
            {PostgreSql, "ALTER TABLE a DROP CONSTRAINT a_key; DROP TABLE none;",
             join + " to no key; key a (y)"},
            {PostgreSql, "CREATE UNIQUE INDEX i ON b (x); DROP INDEX public.i;",
             join + "; " + keys},
        });
}

TEST(Alterations, OfOracleChangeWhatTheyName)
{
    using enum EDialect;
    const std::string keys = "key A (X); key A (Y)";
    Check(
        kTables,
        {
            {Oracle, "ALTER TABLE b MODIFY x NUMBER(9);", "join B - A (X = X) not-null; " + keys},
            {Oracle, "ALTER TABLE b MODIFY (x NULL);", "join B - A (X = X); " + keys},
            {Oracle, "ALTER TABLE b DROP (z, x);", keys},
            {Oracle, "ALTER TABLE b ADD w NUMBER REFERENCES a ADD UNIQUE (w);",
             "join B - A (W = X) unique; join B - A (X = X) not-null; " + keys + "; key B (W)"},
            {Oracle, "ALTER TABLE b RENAME COLUMN x TO w;", "join B - A (W = X) not-null; " + keys},
        });
}

TEST(Alterations, ThatCannotBeAreToldOrNothing)
{
    using enum EDialect;
    const std::string kept = "join b - a (x = x) not-null; key a (x); key a (y)";
    Check(
        kTables,
        {
            {MySql, "CREATE TABLE IF NOT EXISTS a (q int PRIMARY KEY);", kept},
            {MySql, "CREATE TABLE a (q int);",
             kept + "; s.sql:1: a table that there is already: a"},
            {MySql, "ALTER TABLE a ADD PRIMARY KEY (y);",
             kept + "; s.sql:1: a second primary key of a"},
            {MySql, "ALTER TABLE a ADD FOREIGN KEY REFERENCES b;",
             kept + "; s.sql:1: cannot be read, a foreign key without columns or without a table"},
            {MySql, "ALTER TABLE b ADD FOREIGN KEY (x, z) REFERENCES a (x);",
             kept + "; s.sql:1: a foreign key whose columns do not exist or do not match: "
                    "b (x, z) -> a"},
            {MySql, "CREATE TABLE c (x int, x int);",
             kept + "; s.sql:1: a column without a name of its own: c.x"},
            {MySql, "CREATE TABLE c AS SELECT 1 AS x;",
             kept + "; s.sql:1: the columns of a table that a query makes are not known: c"},
            {SqlServer, "ALTER TABLE none DROP COLUMN x", kept},
            {PostgreSql, "ALTER TABLE none ALTER x SET NOT NULL;", kept},
        });
}

TEST(Inheritance, PassesColumnsOn)
{
    using enum EDialect;
    Check(
        kTables,
        {
            {PostgreSql,
             "CREATE TABLE c (LIKE b INCLUDING ALL, FOREIGN KEY (x) REFERENCES a);"
             "CREATE TABLE d () INHERITS (a); ALTER TABLE a ADD COLUMN w int;"
             "ALTER TABLE d ADD FOREIGN KEY (w) REFERENCES a; ALTER TABLE a ALTER w SET NOT NULL;",
             "join b - a (x = x) not-null; join c - a (x = x) not-null; join d - a (w = x) "
             "not-null; key a (x); key a (y)"},
            {PostgreSql,
             "CREATE TABLE c (UNIQUE (y)) INHERITS (a); ALTER TABLE a INHERIT c;"
             "ALTER TABLE c RENAME y TO w; ALTER TABLE a DROP COLUMN w;",
             "join b - a (x = x) not-null; key a (x)"},
            {MySql, "CREATE TABLE c LIKE a; CREATE TABLE d (LIKE c);",
             "join b - a (x = x) not-null; key a (x); key a (y); key c (x); key c (y); key d (x); "
             "key d (y)"},
        });
}

TEST(Names, AreLookedForInTheirSchemas)
{
    using enum EDialect;
    Check(
        "",
        {
            {PostgreSql,
             "CREATE TABLE a (x int PRIMARY KEY); CREATE TABLE s.a (y int PRIMARY KEY);"
             "SET search_path = s, public; CREATE TABLE b (y int REFERENCES a);"
             "RESET search_path; SET search_path TO DEFAULT; CREATE TABLE c (x int REFERENCES a);",
             "join b - s.a (y = y); join c - a (x = x); key a (x); key s.a (y)"},
            {PostgreSql,
             "CREATE TABLE a (x int PRIMARY KEY); ALTER TABLE a SET SCHEMA t;"
             "CREATE TABLE a (y int UNIQUE REFERENCES t.a);",
             "join a - t.a (y = x) unique; key a (y); key t.a (x)"},
            {MySql,
             "USE one; CREATE TABLE A (x int PRIMARY KEY); USE two; CREATE TABLE a (y int "
             "PRIMARY KEY, FOREIGN KEY (y) REFERENCES one.a (X)); CREATE TABLE b (FOREIGN KEY "
             "(y) REFERENCES a (y), y int);",
             "join b - two.a (y = y); join two.a - A (y = x) unique not-null; key A (x); key "
             "two.a (y)"},
            {SqlServer,
             "CREATE TABLE shop..a (x int PRIMARY KEY) CREATE TABLE s.b (x int REFERENCES "
             "dbo.A) CREATE TABLE t.b (x int REFERENCES [a])",
             "join s.b - a (x = x); join t.b - a (x = x); key a (x)"},
        });
}

} // namespace
