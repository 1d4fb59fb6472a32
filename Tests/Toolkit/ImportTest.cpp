#include "Engine/Model/Model.h"
#include "Engine/Services/Characters.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Import/Schema/DatabaseSchema.h"
#include "Toolkit/Text/InputFile.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <sqlite3.h>

namespace {

using namespace qe::tool;
using qe::model::Model;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string Range(const qe::model::CardinalityRange& range)
{
    const auto bound = [](int value) { return value == 12 ? "n" : value == 11 ? "1" : "0"; };
    return std::string(bound(range.minimum)) + ".." + bound(range.maximum);
}

/// Each join as "name: left low..high -- low..high right".
std::vector<std::string> JoinsOf(const Model& model)
{
    std::vector<std::string> joins;
    for (const amd_id& id : model.GetJoins()) {
        const auto& join = *model.Find(id);
        joins.push_back(join.name + ": " + model.Find(join.left)->name + " " +
                        Range(join.leftCardinality) + " -- " + Range(join.rightCardinality) + " " +
                        model.Find(join.right)->name);
    }
    return joins;
}

std::vector<std::string> SubjectsOf(const Model& model)
{
    std::vector<std::string> subjects;
    for (const amd_id& id : model.GetSubjects())
        subjects.push_back(model.Find(id)->name);
    return subjects;
}

const char* const kWarehouse = R"(
CREATE TABLE day (day_id INTEGER PRIMARY KEY);
CREATE TABLE account (branch TEXT, number INT, PRIMARY KEY (branch, number));
CREATE TABLE person (person_id INTEGER PRIMARY KEY, boss REFERENCES person, deputy REFERENCES person);
CREATE TABLE badge (person_id INTEGER PRIMARY KEY REFERENCES person(person_id));
CREATE TABLE "or]der" (
  order_day INT NOT NULL REFERENCES DAY, ship_day REFERENCES day(DAY_ID),
  branch TEXT, number INT, lost REFERENCES nowhere, wrong REFERENCES day(nope),
  again REFERENCES day, FOREIGN KEY (again) REFERENCES day,
  FOREIGN KEY (branch, number) REFERENCES account);
CREATE VIEW late AS SELECT order_day FROM "or]der" WHERE ship_day > order_day;
CREATE VIEW broken AS SELECT * FROM gone;
)";

void WriteDatabase(const std::filesystem::path& path, const char* statements)
{
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database, statements, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
}

TEST(Import, TurnsKeysIntoRelationships)
{
    const qe::test::TemporaryFolder folder;
    const ToolModel tool = ImportSql({folder.Write("ware house.sql", kWarehouse)}, {});
    EXPECT_THAT(SubjectsOf(*tool.model),
                ElementsAre("account", "badge", "day", "late", "or]der", "person"));
    EXPECT_THAT(JoinsOf(*tool.model),
                ElementsAre("badge-person: badge 0..1 -- 1..1 person",
                            "or]der-day (order_day): or]der 0..n -- 1..1 day",
                            "or]der-day (ship_day): or]der 0..n -- 0..1 day",
                            "or]der-day (again): or]der 0..n -- 0..1 day",
                            "or]der-account: or]der 0..n -- 0..1 account",
                            "person-person (boss): person 0..n -- 0..1 person",
                            "person-person (deputy): person 0..n -- 0..1 person"));
    EXPECT_THAT(tool.notes, ElementsAre(HasSubstr("broken"), HasSubstr("or]der (lost) -> nowhere"),
                                        HasSubstr("or]der (wrong) -> day"),
                                        HasSubstr("twice: or]der (again)")));
    const auto& composite = *tool.model->Find(tool.model->GetJoins()[4]);
    EXPECT_EQ(composite.text,
              "[ware house].[or]]der].[branch] = [ware house].[account].[branch] AND "
              "[ware house].[or]]der].[number] = [ware house].[account].[number]");
}

TEST(Import, ReadsOnWithoutSqliteBehindWhatItRefuses)
{
    struct Case
    {
        std::string text;
        std::string note;
    };
    const Case cases[] = {
        {"CREATE TABLE a (x);\nCREATE TABEL b (y);", ".sql:2:8: near \"TABEL\": syntax error"},
        {"CREATE TABLE a (x);\n\n  CREATE TABLE a (x);", ".sql:3:16: table a already exists"},
    };
    for (const Case& each : cases) {
        const ToolModel tool = qe::test::ImportText(each.text);
        EXPECT_THAT(SubjectsOf(*tool.model), ElementsAre("a"));
        EXPECT_THAT(tool.notes.front(), HasSubstr(each.note));
    }
}

TEST(Import, LetsRolesTakeThePlaceOfParallelJoins)
{
    const qe::test::TemporaryFolder folder;
    const ToolModel tool = ImportSql({folder.Write("w.sql", kWarehouse)}, {ERoles::Shortcuts});
    EXPECT_THAT(JoinsOf(*tool.model),
                ElementsAre("badge-person: badge 0..1 -- 1..1 person",
                            "or]der-day: or]der 0..n -- 1..1 day",
                            "or]der-day (order_day): or]der 0..n -- 1..1 day (order_day)",
                            "or]der-day (ship_day): or]der 0..n -- 0..1 day (ship_day)",
                            "or]der-day (again): or]der 0..n -- 0..1 day (again)",
                            "or]der-account: or]der 0..n -- 0..1 account",
                            "person-person (boss): person 0..n -- 0..1 person (boss)",
                            "person-person (deputy): person 0..n -- 0..1 person (deputy)"));
    EXPECT_THAT(tool.notes.back(), HasSubstr("a role: or]der (order_day) -> day"));
    const auto& boss = *tool.model->Find(tool.model->GetJoins()[6]);
    EXPECT_EQ(boss.text, "[w].[person].[boss] = [w].[person (boss)].[person_id]");
    EXPECT_EQ(tool.model->Find(boss.right)->shortcutKind, 1);

    // A key that is called like what it refers to is the one that stands for the table itself.
    const ToolModel named = qe::test::ImportText(
        "CREATE TABLE day (day_id INTEGER PRIMARY KEY);"
        "CREATE TABLE f (ship REFERENCES day, DAY_ID INT NOT NULL REFERENCES day);");
    EXPECT_THAT(named.notes, IsEmpty());
    const std::string again = folder.Write(
        "n.sql", "CREATE TABLE day (day_id INTEGER PRIMARY KEY);"
                 "CREATE TABLE f (ship REFERENCES day, DAY_ID INT NOT NULL REFERENCES day);");
    EXPECT_THAT(JoinsOf(*ImportSql({again}, {ERoles::Shortcuts}).model),
                ElementsAre("f-day (ship): f 0..n -- 0..1 day (ship)", "f-day: f 0..n -- 1..1 day",
                            "f-day (DAY_ID): f 0..n -- 1..1 day (DAY_ID)"));
}

TEST(Import, CountsColumnsThatAreNoKeyAsMany)
{
    const ToolModel tool = qe::test::ImportText(R"(
        CREATE TABLE p (a INT, b INT, c INT, d INT, e INT, f INT, PRIMARY KEY (a, b), UNIQUE (c));
        CREATE UNIQUE INDEX part ON p (d) WHERE d > 0;
        CREATE UNIQUE INDEX computed ON p (e + 1);
        CREATE TABLE half (x INT NOT NULL REFERENCES p (a));
        CREATE TABLE whole (x INT, y INT, FOREIGN KEY (y, x) REFERENCES p (b, a));
        CREATE TABLE more (x INT, y INT, FOREIGN KEY (x, y) REFERENCES p (c, a));
        CREATE TABLE partial (x INT UNIQUE REFERENCES p (d));
        CREATE TABLE expression (x INT REFERENCES p (e));
        CREATE TABLE none (x INT REFERENCES half (x));)");
    EXPECT_THAT(JoinsOf(*tool.model),
                ElementsAre("expression-p: expression 0..n -- 0..n p",
                            "half-p: half 0..n -- 1..n p", "more-p: more 0..n -- 0..1 p",
                            "none-half: none 0..n -- 0..n half",
                            "partial-p: partial 0..n -- 0..n p", "whole-p: whole 0..n -- 0..1 p"));
    EXPECT_THAT(tool.notes,
                ElementsAre(HasSubstr("expression (x) -> p (e)"), HasSubstr("half (x) -> p (a)"),
                            HasSubstr("none (x) -> half (x)"), HasSubstr("partial (x) -> p (d)")));
    const auto& parent = *tool.model->Find(tool.model->GetSubjects()[4]);
    EXPECT_THAT(parent.keys, ElementsAre(ElementsAre("a", "b"), ElementsAre("c")));
}

TEST(Import, CountsColumnsThatAreNoKeyAsManyInEveryDialect)
{
    const qe::test::TemporaryFolder folder;
    const std::string file =
        folder.Write("d.sql", "CREATE TABLE p (a INT NOT NULL, b INT NOT NULL, PRIMARY KEY (a, b));"
                              "CREATE TABLE c (x INT NOT NULL UNIQUE,"
                              " CONSTRAINT half FOREIGN KEY (x) REFERENCES p (a));");
    for (const EDialect dialect : {EDialect::Sqlite, EDialect::PostgreSql, EDialect::MySql,
                                   EDialect::SqlServer, EDialect::Oracle}) {
        const ToolModel tool = ImportSql({file}, {}, dialect);
        EXPECT_EQ(qe::ascii::ToLower(JoinsOf(*tool.model).at(0)), "c-p: c 0..n -- 1..n p")
            << DialectName(dialect);
        EXPECT_THAT(tool.notes, Contains(HasSubstr("many at both ends"))) << DialectName(dialect);
    }
}

TEST(Import, NotesWhatItRenames)
{
    const qe::test::TemporaryFolder folder;
    WriteDatabase(folder / "data.db", "CREATE TABLE \"caf\xE9\" (\"pr\xE9\" INTEGER PRIMARY KEY, "
                                      "\"\" INT); CREATE TABLE b (x REFERENCES \"caf\xE9\");");
    const ToolModel tool = ImportSqlite(folder / "data.db", {});
    EXPECT_THAT(SubjectsOf(*tool.model), ElementsAre("b", "caf\\xE9"));
    EXPECT_THAT(JoinsOf(*tool.model), ElementsAre("b-caf\\xE9: b 0..n -- 0..1 caf\\xE9"));
    EXPECT_THAT(tool.notes, ElementsAre(HasSubstr("\"caf\\xE9\""), HasSubstr("\"pr\\xE9\""),
                                        HasSubstr("\"column 2\"")));
    EXPECT_THAT(qe::test::ImportText("CREATE TEMP TABLE passing (x); CREATE TABLE a (x);").notes,
                ElementsAre(HasSubstr("temporary table: passing")));
    EXPECT_THAT(qe::test::ImportText("-- nothing").notes, ElementsAre(HasSubstr("no tables")));
}

TEST(Import, TellsTablesOfSeveralSchemasApart)
{
    const DatabaseSchema schema{
        .name = "d",
        .tables = {{.name = "t", .columns = {{"k", true}}, .keys = {{"k"}}, .space = "one"},
                   {.name = "u", .columns = {{"k"}}, .foreignKeys = {{"t", {"k"}}}, .space = "two"},
                   {.name = "T",
                    .columns = {{"k", true}},
                    .keys = {{"k"}},
                    .foreignKeys = {{.table = "t", .from = {"k"}, .space = "one"}},
                    .space = "two"},
                   {.name = "v", .columns = {{"k"}}, .foreignKeys = {{"t", {"k"}}}}}};
    const ToolModel tool = MakeModel(schema, {});
    EXPECT_THAT(SubjectsOf(*tool.model), ElementsAre("t", "u", "two.T", "v"));
    EXPECT_THAT(JoinsOf(*tool.model),
                ElementsAre("u-two.T: u 0..n -- 0..1 two.T", "two.T-t: two.T 0..1 -- 1..1 t"));
    EXPECT_THAT(tool.notes, ElementsAre(HasSubstr("called \"two.T\""), HasSubstr("v (k) -> t")));
}

TEST(Import, SaysWhatAFileIsInstead)
{
    const qe::test::TemporaryFolder folder;
    const std::string model = folder.Write("m.json", " {}");
    const std::string database = folder.Write("d.sql", std::string("SQLite format 3\0", 16));
    const auto mistakes = [](const auto& read) { return qe::test::MistakesOf(read); };
    EXPECT_THAT(mistakes([&] { (void)ImportSql({model}, {}); }), HasSubstr("a model file already"));
    EXPECT_THAT(mistakes([&] { (void)ImportSqlite(model, {}); }),
                HasSubstr("a model file already"));
    EXPECT_THAT(mistakes([&] { (void)ImportSqlite(folder.Write("t.db", "CREATE"), {}); }),
                HasSubstr("a text, not an SQLite database"));
    EXPECT_THAT(mistakes([&] { (void)ImportSql({database}, {}); }), HasSubstr("import sqlite"));
}

TEST(Import, ReadsDatabasesAndLeavesThemAlone)
{
    const qe::test::TemporaryFolder folder;
    WriteDatabase(folder / "data.db", kWarehouse);
    EXPECT_EQ(JoinsOf(*ImportSqlite(folder / "data.db", {}).model).size(), 7U);
}

TEST(Import, TellsWhereAFileIsWrong)
{
    struct Case
    {
        std::string text;
        std::string expected;
    };
    const Case cases[] = {
        {"\nCREATE TABEL b (y);", ".sql:2:8: near \"TABEL\": syntax error"},
        {"WITH RECURSIVE r(n) AS (SELECT 1 UNION ALL SELECT n FROM r) SELECT max(n) FROM r;",
         "the statement takes too long"},
        {"ATTACH DATABASE '/tmp/never.db' AS other;", ".sql:1:1: too many attached databases"},
        {std::string("CREATE TABLE a (x);\0", 20), ".sql:1:20: a zero byte"},
    };
    for (const Case& test : cases)
        EXPECT_THAT(qe::test::MistakesOf([&] { (void)qe::test::ImportText(test.text); }),
                    HasSubstr(test.expected));
    EXPECT_FALSE(std::filesystem::exists("/tmp/never.db"));
    const qe::test::TemporaryFolder folder;
    const std::string text =
        folder.Write("text.db", "this is no database, and it is long enough to be sure");
    EXPECT_THROW((void)ImportSqlite(text, {}), InputError);
    EXPECT_THROW((void)ImportSqlite("/nonexistent.db", {}), InputError);
    EXPECT_THROW((void)ImportSql({"/nonexistent.sql"}, {}), InputError);
    EXPECT_THROW((void)ImportSql({"/"}, {}), InputError);
    EXPECT_THAT(SubjectsOf(*ImportSql({}, {}).model), IsEmpty());
}

/// Returns the subjects, joins and notes that the statements make, or what is wrong with them.
std::string Describe(const std::string& statements)
{
    std::string text;
    const std::string mistakes = qe::test::MistakesOf([&] {
        const ToolModel tool = qe::test::ImportText(statements);
        for (const auto& lines : {SubjectsOf(*tool.model), JoinsOf(*tool.model), tool.notes})
            for (const std::string& line : lines)
                text += line.substr(line.rfind('/') + 1) + '\n';
    });
    // The file lies in a folder of its own.
    return text + mistakes.substr(mistakes.rfind('/') + 1);
}

TEST(Import, ReadsTablesThatAreKeptApartAsOneDatabase)
{
    std::string many = "PRAGMA foreign_keys=OFF; BEGIN TRANSACTION;";
    for (int i = 0; i < 250; ++i)
        many += "CREATE TABLE t" + std::to_string(i) + " (id INTEGER PRIMARY KEY, up REFERENCES T" +
                std::to_string(i * 7 % 250) + "); CREATE UNIQUE INDEX u" + std::to_string(i) +
                " ON \"T" + std::to_string(i / 2) + "\" (up);";
    const std::string scripts[] = {
        many + "COMMIT;",
        many + "COMMIT; ALTER TABLE t7 RENAME TO t1000; CREATE TABLE t7 (id);",
        many + "ROLLBACK; CREATE TABLE t7 (id);",
        many + "CREATE TABLE t3 (id);",
        many + "BEGIN;",
        many + "CREATE INDEX t3 ON t4 (id);",
        "CREATE TABLE IF NOT EXISTS a (x); create table if not exists [A] (y, z REFERENCES a (y));",
        "CREATE TABLE a (x, y); CREATE UNIQUE INDEX i ON a (x); CREATE INDEX I ON a (y);",
        "CREATE TABLE a (x); CREATE VIEW v AS SELECT x FROM a; CREATE TABLE v (z);",
        "CREATE TABLE a AS SELECT 1 AS x; CREATE TABLE main.b (y); CREATE TABLE b (z);",
        "CREATE TABLE a (x); CREATE INDEX i ON b (x);",
        "CREATE TABLE a (x); CREATE INDEX i ON a (y); CREATE TABLE b (y);",
        "/* one */ CREATE -- two\n TABLE a (x /* three */); CREATE TABLE b (x, x);",
        R"(CREATE TABLE "a""b" (x); CREATE INDEX i ON [a"b] (x); CREATE TABLE `A"B` (x);)",
        "CREATE TABLE a (x INTEGER PRIMARY KEY AUTOINCREMENT); CREATE INDEX i ON sqlite_sequence "
        "(x);",
        "CREATE TABLE a (x); COMMIT;",
        "CREATE TABLE a (x); CREATE TABLE",
    };
    // A statement of another kind at the beginning lets everything run in one database.
    const std::string together = "CREATE TEMP TABLE z (a); DROP TABLE z; ";
    const std::string apart(together.size(), ' ');
    for (const std::string& script : scripts)
        EXPECT_EQ(Describe(apart + script), Describe(together + script))
            << script.substr(script.size() - std::min<std::size_t>(script.size(), 100));
}

TEST(Import, TellsHowFarItIs)
{
    const qe::test::TemporaryFolder folder;
    std::vector<std::string> units;
    const auto observe = [&units](const Progress& progress) {
        EXPECT_LE(progress.done, progress.size);
        units.emplace_back(progress.unit);
    };
    (void)ImportSql({folder.Write("w.sql", "CREATE TABLE a (x); CREATE TABLE b (x);")},
                    {.observer = observe});
    EXPECT_THAT(units, ElementsAre("statements", "statements", "tables", "tables"));
}

TEST(Import, ReadsEveryRealSchema)
{
    const std::filesystem::path folder = std::filesystem::path(QEREFINER_DATA_DIR) / "schemas";
    if (!std::filesystem::exists(folder))
        GTEST_SKIP() << "no real schemas at hand: " << folder;
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".sql")
            continue;
        ++files;
        for (const ERoles roles : {ERoles::Plain, ERoles::Shortcuts})
            EXPECT_NO_THROW((void)ImportSql({entry.path()}, {roles})) << entry.path();
    }
    EXPECT_GE(files, 153U);
    const std::shared_ptr<const Model> mantle = ImportSql({folder / "mantle.sql"}, {}).model;
    EXPECT_EQ(mantle->GetSubjects().size(), 540U);
    EXPECT_GE(mantle->GetJoins().size(), 1770U);
}

} // namespace
