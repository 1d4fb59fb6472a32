#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/InputFile.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using namespace qe::tool;
using qe::test::Connect;
using qe::test::MistakesOf;
using qe::test::WriteAs;
using testing::HasSubstr;

/// Returns the SQL that joins the subjects; without a word, in the dialect of the model.
std::string WriteIn(const std::string& word, const ToolModel& model,
                    std::vector<std::string> subjects)
{
    FormatOptions options;
    options.sql.dialect = FindSqlDialect(word);
    return WriteAs("sql", model, Connect(std::move(subjects)), options);
}

ToolModel Import(EDialect dialect, const std::string& statements)
{
    return ImportSql({qe::test::TemporaryFolder().Write("shop.sql", statements)}, {}, dialect);
}

/// Returns the condition between the tables a and b as the dialect writes it.
std::string ConditionIn(const std::string& word, const std::string& condition)
{
    const std::string text =
        R"({"version": 1, "subjects": [{"name": "a", "items": ["x", "Y"]}, {"name": "b", "items": ["x"]}],
            "relationships": [{"name": "j", "left": "a", "leftCardinality": "1..n", "right": "b",
            "rightCardinality": "1..1", "condition": ")" +
        condition + R"("}]})";
    const std::string sql = WriteIn(word, ReadModelText(text, "m.json"), {"a", "b"});
    const std::string before = "    ON ";
    const std::string rest = sql.substr(sql.find(before) + before.size());
    return rest.substr(0, rest.size() - 1);
}

TEST(SqlDialectTest, NamesAreWrittenAsEachDialectWouldHaveThem)
{
    const std::string tables = R"(
        CREATE TABLE Orders (Id INT PRIMARY KEY, "Ship To" INT, Size INT REFERENCES "Level"("user"));
        CREATE TABLE "Level" ("user" INT PRIMARY KEY);
    )";
    struct Case
    {
        EDialect source;
        std::string word;
        std::string sql;
    };
    const std::vector<Case> cases{
        {EDialect::PostgreSql, "",
         "FROM orders\n  LEFT OUTER JOIN \"Level\"\n    ON orders.size = \"Level\".\"user\"\n"},
        {EDialect::PostgreSql, "oracle",
         "FROM orders\n  LEFT OUTER JOIN \"Level\"\n    ON orders.\"SIZE\" = \"Level\".\"user\"\n"},
        {EDialect::Oracle, "",
         "FROM ORDERS\n  LEFT OUTER JOIN \"Level\"\n    ON ORDERS.\"SIZE\" = \"Level\".\"user\"\n"},
        {EDialect::Oracle, "postgresql",
         "FROM ORDERS\n  LEFT OUTER JOIN \"Level\"\n    ON ORDERS.\"SIZE\" = \"Level\".\"user\"\n"},
        {EDialect::SqlServer, "",
         "FROM Orders\n  LEFT OUTER JOIN [Level]\n    ON Orders.Size = [Level].[user]\n"},
        {EDialect::SqlServer, "mysql",
         "FROM Orders\n  LEFT OUTER JOIN `Level`\n    ON Orders.Size = `Level`.`user`\n"},
        {EDialect::Sqlite, "ansi",
         "FROM Orders\n  LEFT OUTER JOIN \"Level\"\n    ON Orders.\"SIZE\" = \"Level\".\"user\"\n"},
    };
    for (const Case& entry : cases) {
        const ToolModel model = Import(entry.source, tables);
        const bool isUpper = entry.source == EDialect::Oracle;
        const bool isLower = entry.source == EDialect::PostgreSql;
        const std::string orders = isUpper ? "ORDERS" : isLower ? "orders" : "Orders";
        EXPECT_EQ(WriteIn(entry.word, model, {orders, "Level"}), entry.sql);
        const ToolModel again = ReadModelText(WriteModelText(model), "shop.json");
        EXPECT_EQ(WriteIn(entry.word, again, {orders, "Level"}), entry.sql);
    }

    // A catalogue does not tell what stood between quotes, but a reserved word must have.
    ToolModel live = Import(EDialect::PostgreSql, R"(CREATE TABLE "order" (id INT PRIMARY KEY);
        CREATE TABLE line (id INT REFERENCES "order"(id));)");
    live.writtenNames.quoted.clear();
    EXPECT_EQ(WriteIn("oracle", live, {"line", "order"}),
              "FROM line\n  LEFT OUTER JOIN \"order\"\n    ON line.id = \"order\".id\n");
}

TEST(SqlDialectTest, AlterationsAndSchemasKeepHowNamesWereWritten)
{
    const ToolModel renamed = Import(EDialect::MySql, R"(
        CREATE TABLE a (id INT PRIMARY KEY, old INT, kept INT);
        CREATE TABLE b (id INT PRIMARY KEY);
        ALTER TABLE a CHANGE old `New` INT;
        ALTER TABLE a ADD COLUMN `Added` INT, ADD FOREIGN KEY (`New`) REFERENCES b (id);
        RENAME TABLE a TO `A a`;)");
    EXPECT_EQ(WriteIn("", renamed, {"A a", "b"}),
              "FROM `A a`\n  LEFT OUTER JOIN b\n    ON `A a`.`New` = b.id\n");
    const ToolModel schemas = Import(EDialect::SqlServer, R"(
        CREATE TABLE [dbo].[City] (Id INT PRIMARY KEY);
        CREATE TABLE Sales.[Order] (CityId INT NOT NULL REFERENCES [dbo].[City] (Id));)");
    EXPECT_EQ(WriteIn("", schemas, {"Order", "City"}),
              "FROM Sales.[Order] AS [Order]\n  INNER JOIN [City]\n"
              "    ON [Order].CityId = [City].Id\n");
    EXPECT_EQ(WriteIn("oracle", schemas, {"Order", "City"}),
              "FROM Sales.\"Order\" \"Order\"\n  INNER JOIN \"City\"\n"
              "    ON \"Order\".CityId = \"City\".Id\n");
}

TEST(SqlDialectTest, ModelsWrittenByHandHaveQuotesUnlessTheirNamesAreSmallLetters)
{
    const ToolModel model = ReadModelText(
        R"({"version": 1, "subjects": [{"name": "Sale", "table": "shop.sale", "items": ["id", "Day"]},
            {"name": "day", "items": ["order"]}],
            "shortcuts": [{"name": "Due", "target": "day", "kind": 1}],
            "relationships": [{"name": "j", "left": "Sale", "leftCardinality": "1..n",
            "right": "Due", "rightCardinality": "1..1",
            "condition": "[Sale].[Day] = [Due].[order]"}]})",
        "m.json");
    EXPECT_EQ(WriteIn("", model, {"Sale", "Due"}),
              "FROM \"shop\".\"sale\" AS \"Sale\"\n  INNER JOIN \"day\" AS \"Due\"\n"
              "    ON \"Sale\".\"Day\" = \"Due\".\"order\"\n");
    EXPECT_EQ(WriteIn("oracle", model, {"Sale", "Due"}),
              "FROM shop.sale Sale\n  INNER JOIN day Due\n    ON Sale.\"Day\" = Due.\"ORDER\"\n");
}

TEST(SqlDialectTest, NamesTooLongAreRefusedAndAliasesAreShortened)
{
    const std::string name(64, 'n');
    const ToolModel model =
        Import(EDialect::SqlServer, "CREATE TABLE " + name + " (id INT PRIMARY KEY);");
    EXPECT_EQ(WriteIn("mysql", model, {name}), "FROM " + name + "\n");
    EXPECT_EQ(MistakesOf([&] { static_cast<void>(WriteIn("postgresql", model, {name})); }),
              "sql: PostgreSQL has no names of more than 63 bytes: \"" + name + '"');
    const std::string longer(130, 'n');
    const ToolModel own = Import(EDialect::SqlServer, "CREATE TABLE " + longer + " (id INT);");
    EXPECT_EQ(WriteIn("", own, {longer}), "FROM " + longer + " AS " + longer.substr(2) + '\n')
        << "its own dialect has the name";

    AliasNames aliases(*FindSqlDialect("oracle"));
    const std::string alias(200, 'a');
    EXPECT_EQ(aliases.Take(alias).size(), 128U);
    EXPECT_EQ(aliases.Take(alias), std::string(126, 'a') + " 2");
    EXPECT_EQ(AliasNames(*FindSqlDialect("sqlite")).Take(alias), alias);
}

TEST(SqlDialectTest, ConditionsAreWrittenWithWhatTheDialectHas)
{
    struct Case
    {
        std::string condition;
        std::string word;
        std::string sql;
    };
    const std::vector<Case> cases{
        {"[a].[x] IS NOT DISTINCT FROM [b].[x]", "", R"("a"."x" IS NOT DISTINCT FROM "b"."x")"},
        {"[a].[x] IS NOT DISTINCT FROM [b].[x]", "sqlserver",
         "EXISTS (SELECT a.x INTERSECT SELECT b.x)"},
        {"[a].[x] IS DISTINCT FROM [b].[x]", "oracle", "DECODE(a.x, b.x, 1, 0) = 0"},
        {"[a].[x]", "sqlserver", "a.x = 1"},
        {"[a].[x]", "mysql", "a.x"},
        {"NOT [a].[x] OR [b].[x] = TRUE", "oracle", "NOT a.x = 1 OR b.x = 1"},
        {"TRUE AND [a].[x] || [b].[x] = 'it''s'", "oracle", "1 = 1 AND a.x || b.x = 'it''s'"},
        {"[a].[x] || '-' || 'K\u00f6' = [b].[x]", "sqlserver",
         "CAST(a.x AS nvarchar(4000)) + '-' + N'K\u00f6' = b.x"},
        {"[a].[x] || [b].[x] * 2 = 'a'", "oracle", "a.x || (b.x * 2) = 'a'"},
        {"([a].[x] = [b].[x]) = ([a].[Y] IS NULL)", "sqlserver",
         "(CASE WHEN a.x = b.x THEN 1 WHEN NOT (a.x = b.x) THEN 0 END) = "
         "(CASE WHEN a.[Y] IS NULL THEN 1 ELSE 0 END)"},
        {"CASE WHEN [a].[x] THEN [b].[x] = 1 ELSE FALSE END", "oracle",
         "CASE WHEN a.x = 1 THEN CASE WHEN b.x = 1 THEN 1 WHEN NOT (b.x = 1) THEN 0 END "
         "ELSE 0 END = 1"},
        {"CASE [a].[x] WHEN 1 THEN TRUE END", "sqlserver", "CASE a.x WHEN 1 THEN 1 END = 1"},
        {"[a].[x] IN (mod([b].[x], 2), 2 * length([b].[x]))", "sqlserver",
         "a.x IN ((b.x % 2), 2 * LEN(b.x))"},
        {"year([a].[x]) = CAST([b].[x] AS varchar(4))", "oracle",
         "EXTRACT(YEAR FROM a.x) = CAST(b.x AS VARCHAR2(4))"},
        {"CAST([a].[x] AS text) = CAST([b].[x] AS my_type(3))", "sqlserver",
         "CAST(a.x AS nvarchar(max)) = CAST(b.x AS my_type(3))"},
        {"lib.f([a].[x]) = CURRENT_DATE", "sqlserver", "lib.f(a.x) = CAST(GETDATE() AS date)"},
    };
    for (const Case& entry : cases)
        EXPECT_EQ(ConditionIn(entry.word, entry.condition), entry.sql) << entry.word;

    std::string nested = "[a].[x] = 1";
    for (int depth = 0; depth < 10; ++depth)
        nested = "(" + nested + ") = ([b].[x] = 1)";
    EXPECT_THAT(MistakesOf([&] { static_cast<void>(ConditionIn("oracle", nested)); }),
                HasSubstr("The condition cannot be written for Oracle"));
}

TEST(SqlDialectTest, ConditionsOfTheOwnDialectKeepTheirFunctions)
{
    const std::string text =
        R"json({"version": 1, "dialect": "mysql", "subjects": [{"name": "a", "items": ["x"]},
            {"name": "b", "items": ["x"], "quoted": true}],
            "relationships": [{"name": "j", "left": "a", "leftCardinality": "1..n", "right": "b",
            "rightCardinality": "1..1", "condition": "length([a].[x]) = CAST([b].[x] AS int)"}]})json";
    EXPECT_EQ(WriteIn("", ReadModelText(text, "m.json"), {"a", "b"}),
              "FROM a\n  INNER JOIN `b`\n    ON length(a.x) = CAST(`b`.`x` AS int)\n");
}

TEST(SqlDialectTest, WrongWordsAndNamesAreTold)
{
    const auto mistakes = [](const std::string& members) {
        return MistakesOf([&] {
            static_cast<void>(ReadModelText(R"({"version": 1, )" + members + "}", "m.json"));
        });
    };
    EXPECT_THAT(mistakes(R"("dialect": "mysqll")"),
                HasSubstr("m.json#/dialect: unknown value: \"mysqll\" (did you mean"));
    EXPECT_THAT(
        mistakes(R"("subjects": [{"name": "a", "items": ["size"], "quoted": ["sise"]}])"),
        HasSubstr("m.json#/subjects/0/quoted/0: is no item of the query subject and no part of "
                  "its table: \"sise\" (did you mean size?)"));
    EXPECT_EQ(qe::test::RunTool({"path", "-", "a", "b", "--dialect", "oracle"}).code,
              EExitCode::WrongUsage);
    EXPECT_THAT(
        MistakesOf([] { static_cast<void>(QuoteIdentifier("a\"b", *FindSqlDialect("oracle"))); }),
        HasSubstr("Oracle cannot hold a name with a quote in it"));
}

} // namespace
