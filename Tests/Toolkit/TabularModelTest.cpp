#include "Tests/Toolkit/ReadSource.h"
#include "Toolkit/Import/Formats/MQuery.h"
#include "Toolkit/Import/Formats/PlainSelect.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace qe::test;
using namespace qe::tool;
using testing::HasSubstr;

TEST(Tmdl, IsReadLineByLine)
{
    const std::string text =
        "\xEF\xBB\xBF/// Sold things\r\n"
        "table 'It''s a.b'\r\n"
        "    column 'a.b c'\r\n        isKey\r\n"
        "    column Day\r\n"
        "    measure M = ```\r\n        relationship X\r\n        ```\r\n"
        "        isHidden\r\n"
        "    measure N =\r\n            table T\r\n            fromColumn: 1\r\n"
        "table Other\r\n    column Key\r\n    column Day\r\n"
        "ref table Other\r\n"
        "relationship one\r\n"
        "    fromColumn: Other.Key\r\n"
        "    toColumn: 'It''s a.b'.'a.b c'\r\n"
        "    relyOnReferentialIntegrity\r\n"
        "relationship two\r\n    isActive: false\r\n"
        "    joinOnDateBehavior: datePartOnly\r\n"
        "    fromColumn: Other.Day\r\n    toColumn: 'It''s a.b'.Day\r\n";
    EXPECT_EQ(ReadSourceText("tmdl", text),
              "Other > It's a.b: Key=a.b c\n"
              "Other > It's a.b: Day=Day CAST([left].[Day] AS DATE) = CAST([right].[Day] AS DATE)"
              " inactive\n"
              "left out 2 measures: M, N\n"
              "left out 2 queries of tables, which are called as in the model: It's a.b, Other\n");
    const std::vector<std::pair<const char*, const char*>> mistakes{
        {"table T\n\tcolumn A\nrelationship r\n\tfromColumn: T.A\n\ttoColumn: U.A\n",
         "file:5#/relationships/0/toColumn: there is no table \"U\""},
        {"table T\n\tcolumn Ab\nrelationship r\n\tfromColumn: T.Ac\n\ttoColumn: T.Ab\n",
         "file:4#/relationships/0/fromColumn: \"T\" has no column \"Ac\""},
        {"table T\n\tmeasure M = ```\n\t\tx\n", "file:2: an expression between three backquotes"},
        {"table T\n\tcolumn two words\n", "file:2: a name with blanks"},
        {"table T\n\t[x]\n", "file:2: is neither an object nor a property"},
        {"table T\n\tcolumn 'A\n", "file:2: a name is missing, or its quote"},
        {"table T\n\tisHidden: perhaps\n", "file:2#/tables/0/isHidden: must be true or false"},
    };
    for (const auto& [wrong, mistake] : mistakes)
        EXPECT_THAT(ReadSourceText("tmdl", wrong), HasSubstr(mistake)) << wrong;
}

TEST(TabularModels, AreFoundInScriptsWithoutWhatTheDesktopMakes)
{
    const std::string guid = "0a1b2c3d-0000-1111-2222-333344445555";
    const std::string model = R"({"tables": [
        {"name": "F", "columns": [{"name": "k", "isNullable": false}, {"name": "d"}]},
        {"name": "D", "isHidden": true, "columns": [{"name": "k", "isKey": true}]},
        {"name": "LocalDateTable_)" +
                              guid + R"(", "columns": [{"name": "Date"}]}],
      "relationships": [
        {"name": ")" + guid + R"(", "fromTable": "F", "fromColumn": "k", "toTable": "D",
         "toColumn": "k", "crossFilteringBehavior": "bothDirections"},
        {"fromTable": "F", "fromColumn": "d", "toTable": "LocalDateTable_)" +
                              guid + R"(",
         "toColumn": "Date"}]})";
    const std::string expected = "F > D: k=k\n"
                                 "left out 1 date tables made by the desktop: LocalDateTable_" +
                                 guid +
                                 "\nleft out 1 filters that go both ways: F <-> D\n"
                                 "left out 1 marks of tables as hidden: D\n"
                                 "left out 2 queries of tables, which are called as in the "
                                 "model: F, D\n";
    for (
        const char* const frame :
        {R"({"model": %})", R"({"createOrReplace": {"object": {}, "database": {"model": %}}})",
         R"({"create": {"database": {"name": "x", "model": %}}})",
         R"({"sequence": {"operations": [{"refresh": {}}, {"create": {"database": {"model": %}}}]}})"}) {
        std::string text = frame;
        text.replace(text.find('%'), 1, model);
        EXPECT_EQ(ReadSourceText("tmsl", text), expected) << frame;
    }
}

TEST(Tmdl, TellsWordsThatNobodyKnows)
{
    const std::string text = "table A\n\tcolumn k\n\nTable B\n\tColumn k\n\n"
                             "relationship r\n\tfromcolumn: A.k\n\ttoColumn: \"B.k\"\n"
                             "\tisactive: False\n";
    EXPECT_THAT(ReadSourceText("tmdl", text), HasSubstr("A > B: k=k inactive\n"));
    const auto change = [&text](const std::string& from, const std::string& to) {
        std::string changed = text;
        changed.replace(changed.find(from), from.size(), to);
        return ReadSourceText("tmdl", changed);
    };
    const char* const unknown = "is no word for an object of TMDL: ";
    EXPECT_EQ(change("relationship", "relationshp"),
              "file:7: " + (unknown + std::string("\"relationshp\" (did you mean relationship?)")));
    EXPECT_THAT(change("Table", "tabel"),
                HasSubstr("file:4: " + std::string(unknown) + "\"tabel\""));
    EXPECT_THAT(change("column", "colum"), HasSubstr("(did you mean column?)"));
    EXPECT_THAT(change("toColumn", "toColum"),
                HasSubstr("key is unknown: \"toColum\" (did you mean toColumn?)"));
    EXPECT_THAT(change("relationship r", "relationship"),
                HasSubstr("#/relationship: key is unknown: \"relationship\""));
    // What joins do not need may be new to the format, with all that it holds.
    EXPECT_THAT(change("\n\nTable", "\n\tmeasuer M = 1\n\n"
                                    "novelty X\n\ttabel Y\n\t\tkind: 1\n\nTable"),
                HasSubstr("left out 2 objects of kinds that TMDL is not known to have: "
                          "measuer (file:3, did you mean measure?), novelty (file:5)\n"));
}

TEST(Partitions, AreSeenThroughWhereTheyOnlyChooseColumns)
{
    const auto show = [](const std::optional<QueriedTable>& table) {
        std::string text;
        if (!table)
            return text;
        for (const std::string& part : table->path)
            text += part + ';';
        for (const std::string& column : table->renamed)
            text += ' ' + column;
        return text;
    };
    const std::string start = "let S = Sql.Database(\"a\", \"b\"), // the source, in a room\n"
                              " t = S{[Schema = \"dbo\", Item=\"Fact\"]}[Data]";
    const std::vector<std::pair<std::string, const char*>> queries{
        {start + " in t", "dbo;Fact;"},
        {"#\"The \"\"base\"{[Item=\"t\"\"\",Schema=\"s, in\"]}[Data]", "s, in;t\";"},
        {start +
             ", #\"Removed 1\" = Table.RemoveColumns(t, {\"x\", \"in\"}), "
             "r = Table.RenameColumns(#\"Removed 1\", {{\"a\", \"b c\"}, {\"d\", \"e\"}}, "
             "MissingField.Ignore), y = Table.TransformColumnTypes(r, {{\"b c\", type date}}) in y",
         "dbo;Fact; b c e"},
        {"let d = Databricks.Catalogs(\"h\", [Catalog = \"c\"]){[Name=\"c\",Kind=\"Database\"]}"
         "[Data]{[Name=\"s\",Kind=\"Schema\"]}[Data], t = d{[Name=\"t\",Kind=\"Table\"]}[Data] "
         "in Table.SelectColumns(t, {\"k\"})",
         "c;s;t;"},
        {"let s = Sql.Database(\"a\", \"b\", [Query=\"SELECT *#(lf)FROM dbo.Fact\"]) in s",
         "dbo;Fact;"},
        {"Value.NativeQuery(S, \"select a as b from [dbo].[Fact] f;\", null, [Folding = true])",
         "dbo;Fact; b"},
        {start + ", f = Table.SelectRows(t, each [x] > 1) in f", ""},
        {start + ", g = Table.Group(t, {\"k\"}, {}) in g", ""},
        {start + ", u = S{[Schema=\"dbo\",Item=\"Other\"]}[Data], "
                 "j = Table.NestedJoin(t, \"k\", u, \"k\", \"n\") in j",
         ""},
        {start + ", n = Table.TransformColumnNames(t, Text.Upper) in n", ""},
        {start + ", r = Table.RenameColumns(t, List.Zip({old, new})) in r", ""},
        {start + ", c = t & t in c", ""},
        {start + ", u = if x then t else S in u", ""},
        {"let S = Sql.Database(\"a\", \"b\", [Query=\"SELECT * FROM Fact WHERE x = 1\"]) in S", ""},
        {"let S = Sql.Database(\"a\", \"b\", [Query=\"SELECT * FROM \" & name]) in S", ""},
        {"let S = Sql.Database(\"a\", \"b\", [Query=\"SELECT * FROM T#(00E9)l\"]) in S", ""},
        {"let a = b, b = a in a", ""},
        {"let t = S{[Schema=\"dbo\",Item=Name]}[Data] in t", ""},
        {"let t = S{[Schema=\"dbo\",Item=\"Fact", ""},
        {"((((", ""},
        {"", ""},
    };
    for (const auto& [query, expected] : queries)
        EXPECT_EQ(show(SeeThroughM(query)), expected) << query;
    const std::vector<std::pair<const char*, const char*>> selects{
        {"SELECT * FROM [dbo].[Dim Date]", "dbo;Dim Date;"},
        {"select d.*, d.[Full Date] from db.dbo.DimDate as d", "db;dbo;DimDate;"},
        {"SELECT DateKey AS datekey, x AS [Full Date], y z FROM DimDate", "DimDate; Full Date z"},
        {"SELECT * FROM a WHERE x = 1", ""},
        {"SELECT * FROM a, b", ""},
        {"SELECT * FROM a JOIN b ON a.x = b.x", ""},
        {"SELECT k FROM a GROUP BY k", ""},
        {"SELECT DISTINCT k FROM a", ""},
        {"SELECT TOP 5 * FROM a", ""},
        {"SELECT max(k) FROM a", ""},
        {"SELECT * FROM a UNION SELECT * FROM b", ""},
        {"SELECT * FROM a; DROP TABLE b", ""},
        {"SELECT * FROM", ""},
        {"SELECT 'a", ""},
    };
    for (const auto& [query, expected] : selects)
        EXPECT_EQ(show(SeeThroughSql(query)), expected) << query;
}

TEST(Partitions, NameTablesWhereJoinedColumnsAreCalledSo)
{
    const auto read = [](const std::string& column, const std::string& partitions) {
        const DatabaseSchema schema = ReadSchema(
            "tmsl",
            R"({"model": {"tables": [{"name": "T", "columns": [{"name": "o"}, )" + column +
                R"(], "partitions": [)" + partitions +
                R"(]}], "relationships": [)"
                R"({"fromTable": "T", "fromColumn": "k", "toTable": "T", "toColumn": "k"}]}})");
        std::string text;
        for (const std::string& part : schema.tables.front().source)
            text += part + ';';
        return text;
    };
    const std::string plain = R"({"name": "k", "sourceColumn": "k"})";
    const auto query = [](const std::string& sql) {
        return R"({"source": {"type": "query", "query": [")" + sql + R"("]}})";
    };
    EXPECT_EQ(read(plain, query("SELECT k, x AS o FROM s.F")), "s;F;");
    EXPECT_EQ(read(plain, query("SELECT x AS k FROM s.F")), "");
    EXPECT_EQ(read(R"({"name": "k", "sourceColumn": "x"})", query("SELECT * FROM s.F")), "");
    EXPECT_EQ(read(R"({"name": "k", "type": "calculated", "expression": "1"})",
                   query("SELECT * FROM s.F")),
              "");
    EXPECT_EQ(read(plain, query("SELECT * FROM s.F") + ',' + query("SELECT k FROM s.F")), "s;F;");
    EXPECT_EQ(read(plain, query("SELECT * FROM s.F") + ',' + query("SELECT k FROM s.G")), "");
    EXPECT_EQ(
        read(plain, query("SELECT * FROM s.F WHERE k > 1") + ',' + query("SELECT k FROM s.F")), "");
    EXPECT_EQ(
        read(plain, R"({"source": {"type": "entity", "entityName": "F", "schemaName": "s"}})"),
        "s;F;");
    EXPECT_EQ(
        read(
            plain,
            R"({"source": {"type": "calculated", "expression": "S{[Schema=\"s\",Item=\"F\"]}[Data]"}})"),
        "");

    const std::string tmdl = "table T\n\tcolumn k\n\tpartition p = entity\n\t\tsource\n"
                             "\t\t\tentityName: F\n\t\t\tschemaName: s\n"
                             "table U\n\tcolumn k\n\tpartition q = m\n\t\tsource = ```\n"
                             "\t\t\tlet t = S{[Schema=\"s\",Item=\"F\"]}[Data]\n\t\t\tin t```\n";
    for (const SchemaTable& table : ReadSchema("tmdl", tmdl).tables)
        EXPECT_THAT(table.source, testing::ElementsAre("s", "F")) << table.name;
}

} // namespace
