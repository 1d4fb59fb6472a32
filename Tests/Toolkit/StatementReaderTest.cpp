#include "Toolkit/Import/Ddl/StatementReader.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using namespace qe::tool;
using testing::ElementsAreArray;

/// Each statement as "line: text", its first line only.
std::vector<std::string> Split(EDialect dialect, const std::string& script)
{
    StatementReader reader(script, dialect);
    ScriptStatement statement;
    std::vector<std::string> lines;
    while (reader.Read(statement)) {
        const std::string text(statement.text.substr(0, statement.text.find('\n')));
        lines.push_back(std::to_string(statement.line) + ": " + text);
    }
    return lines;
}

TEST(Statements, EndAsTheDialectEndsThem)
{
    struct Case
    {
        EDialect dialect;
        std::string script;
        std::vector<std::string> expected;
    };
    using enum EDialect;
    const Case cases[] = {
        {PostgreSql,
         "a;\n\nb 'x;''y' \"c;\" $q$;$q$ -- ;\n/*;/*;*/;*/c;;d",
         {"1: a", "3: b 'x;''y' \"c;\" $q$;$q$ -- ;", "4: d"}},
        {PostgreSql,
         "\\c shop\na\n\\gexec\nb; COPY t FROM stdin;\n1;2\n\\.\nc;",
         {"2: a", "4: b", "4: COPY t FROM stdin", "7: c"}},
        {PostgreSql,
         "SELECT E'\\';'; SELECT '\\'; b; $1$; c; x$y$z",
         {"1: SELECT E'\\';'", "1: SELECT '\\'", "1: b", "1: $1$", "1: c", "1: x$y$z"}},
        {PostgreSql,
         "CREATE FUNCTION f() BEGIN ATOMIC SELECT 1; SELECT 2; END; b;",
         {"1: CREATE FUNCTION f() BEGIN ATOMIC SELECT 1; SELECT 2; END", "1: b"}},
        {MySql,
         "DELIMITER $$\nCREATE TABLE a (x int)$$ b;c $$\nDELIMITER ;\nd;e",
         {"2: CREATE TABLE a (x int)", "2: b;c ", "4: d", "4: e"}},
        {MySql,
         "# a;\nSELECT \"x;\\\";\", 5--3, `y;`; -- b;\nsource other.sql\n/*!40101 c */; d",
         {"2: SELECT \"x;\\\";\", 5--3, `y;`", "4: c */", "4: d"}},
        {MySql,
         "CREATE TRIGGER t BEGIN IF a THEN CASE b WHEN 1 THEN c; END CASE; END IF; END; d;",
         {"1: CREATE TRIGGER t BEGIN IF a THEN CASE b WHEN 1 THEN c; END CASE; END IF; END",
          "1: d"}},
        {SqlServer,
         "SET a ON\nGO 2\nUSE b CREATE TABLE c (d int)\n go \nGOTO x",
         {"1: SET a ON", "3: USE b ", "3: CREATE TABLE c (d int)", "5: GOTO x"}},
        {SqlServer,
         ":r other.sql\nIF a BEGIN ALTER TABLE b ALTER COLUMN c int END ELSE DROP TABLE d",
         {"2: IF a ", "2: BEGIN ", "2: ALTER TABLE b ALTER COLUMN c int ", "2: END ", "2: ELSE ",
          "2: DROP TABLE d"}},
        {SqlServer,
         "ALTER TABLE a ADD b int REFERENCES c ON DELETE SET NULL ON UPDATE CASCADE "
         "DROP TABLE IF EXISTS d",
         {"1: ALTER TABLE a ADD b int REFERENCES c ON DELETE SET NULL ON UPDATE CASCADE ",
          "1: DROP TABLE IF EXISTS d"}},
        {SqlServer,
         "CREATE PROC p AS CREATE TABLE a (b int);\nDROP TABLE a\nGO\nc",
         {"1: CREATE PROC p AS ", "4: c"}},
        {Oracle, "rem a;\nSET b ON -\n more\nc\n/\n@d\nprompt e;\nf;\n/\n", {"4: c", "8: f"}},
        {Oracle,
         "BEGIN a; b; END;\n/\nc 'q;' q'[;']' ; d / e;",
         {"1: BEGIN a", "3: c 'q;' q'[;']' ", "3: d / e"}},
        {Sqlite,
         ".tables\nCREATE TRIGGER t BEGIN a; b; END; [c;] `d;` \"e;\"; f",
         {"2: CREATE TRIGGER t BEGIN a; b; END", "2: [c;] `d;` \"e;\"", "2: f"}},
    };
    for (const Case& each : cases)
        EXPECT_THAT(Split(each.dialect, each.script), ElementsAreArray(each.expected))
            << DialectName(each.dialect) << ": " << each.script;
}

TEST(Statements, KeepTokensOnlyWhereTheySaySomething)
{
    const std::string rows = "INSERT INTO t VALUES (1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12);";
    const std::string table = "CREATE TABLE t (a int, b int, c int, d int, e int, f int, g int)";
    const std::string script = rows + table;
    StatementReader reader(script, EDialect::MySql);
    ScriptStatement statement;
    ASSERT_TRUE(reader.Read(statement));
    EXPECT_EQ(statement.kind, EStatementKind::Other);
    EXPECT_LE(statement.tokens.size(), kTokensThatTell);
    ASSERT_TRUE(reader.Read(statement));
    EXPECT_EQ(statement.kind, EStatementKind::CreateTable);
    EXPECT_EQ(statement.tokens.size(), 25U);
    EXPECT_FALSE(reader.Read(statement));
    EXPECT_EQ(reader.GetOffset(), script.size());
}

} // namespace
