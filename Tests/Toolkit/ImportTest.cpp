#include "Engine/Model/Model.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Text/InputFile.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <sqlite3.h>

namespace {

using namespace qe::tool;
using qe::model::Model;
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

TEST(Import, MakesRolesOfTablesReferredToSeveralTimes)
{
    const qe::test::TemporaryFolder folder;
    const ToolModel tool = ImportSql({folder.Write("w.sql", kWarehouse)}, {ERoles::Shortcuts});
    const auto shortcuts = tool.model->GetIds(109);
    ASSERT_EQ(shortcuts.size(), 3U) << "a table that refers to itself plays no roles";
    EXPECT_EQ(tool.model->Find(shortcuts[1])->name, "day (ship_day)");
    EXPECT_EQ(tool.model->Find(shortcuts[1])->shortcutKind, 1);
    const auto& role = *tool.model->Find(tool.model->GetIds(110)[1]);
    EXPECT_EQ(role.right, shortcuts[1]);
    EXPECT_EQ(tool.model->Find(role.referenced)->name, "or]der-day (ship_day)");
}

TEST(Import, ReadsDatabasesAndLeavesThemAlone)
{
    const qe::test::TemporaryFolder folder;
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open((folder / "data.db").c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database, kWarehouse, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
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
    const std::string together = "CREATE TEMP TABLE z (a); ";
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
