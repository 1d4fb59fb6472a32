#include "Engine/Model/Model.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Import/Formats/SourceFormat.h"
#include "Toolkit/Import/Formats/SqlCondition.h"
#include "Toolkit/Import/OpenModel.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace qe;
using namespace qe::test;
using namespace qe::tool;
using testing::AllOf;
using testing::HasSubstr;
namespace fs = std::filesystem;

/// Returns the joins and notes of a model, one a line.
std::string Show(const DatabaseSchema& schema)
{
    std::string text;
    for (const SchemaJoin& join : schema.joins) {
        text += schema.tables[join.left.table].name + " > " + schema.tables[join.right.table].name +
                ':';
        for (std::size_t i = 0; i < join.left.columns.size(); ++i)
            text += ' ' + join.left.columns[i] + '=' + join.right.columns[i];
        text += join.condition.empty() ? "" : ' ' + join.condition;
        text += join.isActive ? "\n" : " inactive\n";
    }
    for (const std::string& note : schema.notes)
        text += note + '\n';
    return text;
}

/// Reads a text as the format; returns the mistakes where there are some.
std::string Read(const char* format, const std::string& text)
{
    try {
        SourceDocument document = ReadDocument("file", text, RecogniseSyntax(text).value());
        return Show(ReadSource(*FindSourceFormat(format), {&document, 1}));
    } catch (const InputError& error) {
        return error.what();
    }
}

/// Replaces each value of a document by one of another type, all types in turn.
void MutateValues(const nlohmann::json& document,
                  const std::function<void(const nlohmann::json&)>& use)
{
    const nlohmann::json replacements{nullptr,
                                      7,
                                      true,
                                      "no such thing",
                                      nlohmann::json::array(),
                                      nlohmann::json::array({nullptr}),
                                      nlohmann::json::object()};
    std::set<std::string> pointers;
    const nlohmann::json values = document.flatten();
    for (const auto& [leaf, value] : values.items()) {
        for (nlohmann::json::json_pointer at(leaf); !at.empty(); at = at.parent_pointer())
            pointers.insert(at.to_string());
    }
    std::size_t turn = 0;
    for (const std::string& pointer : pointers) {
        nlohmann::json changed = document;
        changed[nlohmann::json::json_pointer(pointer)] = replacements[turn++ % replacements.size()];
        use(changed);
    }
}

class SharedModels : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!fs::exists(mFolder))
            GTEST_SKIP() << "no models at hand: " << mFolder;
    }

    [[nodiscard]] std::string Path(const char* file) const { return (mFolder / file).string(); }

    [[nodiscard]] std::string ReadAll(const char* file) const
    {
        std::ifstream stream(mFolder / file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    fs::path mFolder = fs::path(QEREFINER_DATA_DIR) / "models";
};

TEST(SqlConditions, BecomePairsOrConditionsOrAreTold)
{
    const auto read = [](const std::string& sql) {
        const SqlCondition condition = ReadSqlCondition(
            sql, [](const std::vector<std::string>& names) -> std::optional<EndColumn> {
                if (names.size() != 2 || (names[0] != "a" && names[0] != "b"))
                    return std::nullopt;
                return EndColumn{.isLeft = names[0] == "a", .column = names[1]};
            });
        std::string text =
            condition.text + (condition.problem.empty() ? "" : "!" + condition.problem);
        for (std::size_t i = 0; i < condition.left.size(); ++i)
            text += condition.left[i] + '=' + condition.right[i] + ';';
        return text;
    };
    const std::vector<std::pair<const char*, const char*>> cases{
        {"a.x = b.y", "x=y;"},
        {"b.y = a.x AND (a.\"the x\" = b.`y.z`)", "x=y;the x=y.z;"},
        {"a.x::date = b.day", "CAST([left].[x] AS date) = [right].[day]"},
        {"(a.x + 1)::numeric(10, 2) >= b.y",
         "CAST([left].[x] + 1 AS numeric(10,2)) >= [right].[y]"},
        {"lower(a.x)::text!=b.y", "CAST(lower([left].[x]) AS text) <> [right].[y]"},
        {"a.x = b.y OR a.z = b.y", "[left].[x] = [right].[y] OR [left].[z] = [right].[y]"},
        {"a.x = b.y AND b.z <> 'it''s'", "[left].[x] = [right].[y] AND [right].[z] <> 'it''s'"},
        {"a.x BETWEEN b.low AND b.high", "[left].[x] BETWEEN [right].[low] AND [right].[high]"},
        {"a.x = a.y", "!does not compare columns of both ends"},
        {"1 = 1", "!does not compare columns of both ends"},
        {"a.x = c.y", "!names what is no column of its ends: c.y"},
        {"a.x = y", "!names what is no column of its ends: y"},
    };
    for (const auto& [sql, expected] : cases)
        EXPECT_EQ(read(sql), expected) << sql;
    for (const char* const broken : {"", "a.x =", "a.x = b.y;", "a.x = 'b", "a. = b.y", "::date",
                                     "a.x::", "((a.x = b.y)", "a.x = b.y)", "a.x @> b.y"})
        EXPECT_THAT(read(broken), testing::StartsWith("!")) << broken;
}

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
    EXPECT_EQ(Read("tmdl", text),
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
        EXPECT_THAT(Read("tmdl", wrong), HasSubstr(mistake)) << wrong;
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
        EXPECT_EQ(Read("tmsl", text), expected) << frame;
    }
}

TEST(Cube, TellsWhatCannotBe)
{
    const std::string base = "cubes:\n  - name: a\n    sql_table: a\n    joins:\n"
                             "      - {name: b, relationship: many_to_one, sql: \"%\"}\n"
                             "    dimensions:\n      - {name: x, sql: x, type: number}\n"
                             "      - {name: loop, sql: \"{loop} + 1\", type: number}\n"
                             "  - name: b\n    extends: !\n";
    const auto read = [&](const std::string& sql, const std::string& extends) {
        std::string text = base;
        text.replace(text.find('%'), 1, sql);
        text.replace(text.find('!'), 1, extends);
        return Read("cube", text);
    };
    EXPECT_THAT(read("{CUBE}.x = {b.x}", "a"), HasSubstr("a > b: x=x\n"));
    EXPECT_THAT(read("{x} = ${b}.y", "a"), HasSubstr("a > b: x=y\n"));
    EXPECT_THAT(read("{CUBE}.x = {b.x}", "b"),
                HasSubstr("leads back to a cube that extends this one: b"));
    EXPECT_THAT(read("{CUBE}.x = {b.x}", "aa"),
                HasSubstr("file:10#/cubes/1/extends: there is no cube \"aa\""));
    EXPECT_THAT(read("{CUBE}.x = {b.nothing}", "a"), HasSubstr("names no dimension: {b.nothing}"));
    EXPECT_THAT(read("{CUBE}.x = {loop}", "a"), HasSubstr("members that stand for each other"));
    EXPECT_THAT(read("{CUBE}.x = {b.x", "a"), HasSubstr("has a brace that does not end"));
    // The same join from both sides is one.
    EXPECT_EQ(Read("cube",
                   "cubes:\n"
                   "  - name: a\n    joins:\n"
                   "      - {name: b, relationship: belongs_to, sql: \"{a}.x::date = {b}.y\"}\n"
                   "  - name: b\n    joins:\n"
                   "      - {name: a, relationship: has_many, sql: \"{a}.x::date = {b}.y\"}\n"),
              "a > b: CAST([left].[x] AS date) = [right].[y]\n");
}

TEST(Cube, LeavesOutTemplatesWithTheSmallestPartAroundThem)
{
    EXPECT_EQ(Read("cube", "{# who #}\n"
                           "cubes:\n"
                           "  - name: a\n"
                           "    sql_table: {{ schema }}.a\n"
                           "    joins:\n"
                           "      - name: b\n        relationship: many_to_one\n"
                           "        sql: \"{CUBE}.b = {b.id}\"\n"
                           "      - name: c\n        relationship: many_to_one\n"
                           "        sql: \"{CUBE}.{{ column }} = {c}.id\"\n"
                           "      {% if wide %}\n"
                           "      - name: d\n"
                           "      {% endif %}\n"
                           "  - name: b\n"
                           "    dimensions:\n"
                           "      {{ dimensions() }}\n"
                           "      - {name: id, sql: id, type: number, primary_key: true}\n"
                           "  {%- for name in names %}\n"
                           "  - name: {{ name }}\n"
                           "  {%- endfor %}\n"),
              "a > b: b=id\n"
              "left out 5 parts that templates make, which needs code: file:4, file:11, file:12, "
              "file:17, file:19\n");
    EXPECT_THAT(MistakesOf([] { (void)ReadDocument("file", "cubes:\n  - a: [\n", ESyntax::Yaml); }),
                HasSubstr("not valid YAML"));
}

TEST(Cube, TakesAFolderAndTellsWhatNeedsCode)
{
    const TemporaryFolder folder;
    folder.Write("a.yml", "services:\n  web: {}\n");
    folder.Write("b.yml",
                 "cubes:\n  - name: a\n    joins:\n"
                 "      - {name: b, relationship: many_to_one, sql: \"{a}.b = {b}.id\"}\n"
                 "      - {name: far, relationship: many_to_one, sql: \"{a}.f = {far}.id\"}\n");
    folder.Write("c.yaml", "cubes:\n  - name: b\n");
    folder.Write("d.js", "// far\ncube(`far`, {\n});\n");
    folder.Write("e.yml", "{{ all() }}\n");
    const ToolModel model = OpenModel(folder / "");
    EXPECT_EQ(model.model->GetIds(IdClassRelationship).size(), 1U);
    EXPECT_THAT(model.notes,
                testing::ElementsAre(
                    AllOf(HasSubstr("JavaScript, which needs code: far ("), HasSubstr("d.js:2)")),
                    "left out 1 uses of cubes that need code: far",
                    AllOf(HasSubstr("is not of a data model of Cube"), HasSubstr("a.yml")),
                    AllOf(HasSubstr("templates make, which needs code"), HasSubstr("e.yml"))));
}

TEST_F(SharedModels, AnswerWhatPeopleAsk)
{
    struct Case
    {
        const char* file;
        std::vector<std::string> subjects;
        const char* joins;
    };
    const std::vector<Case> cases{
        {"tmsl/adventureworks.bim", {"Internet Sales", "Date"}, "OrderDateKey"},
        {"tmsl/adventureworks.bim",
         {"Internet Sales", "Date (Internet Sales: ShipDateKey)"},
         "\"Internet Sales\".\"ShipDateKey\""},
        {"tmdl/contoso-sales", {"Sales", "Calendar (Delivery Date)"}, "Delivery Date"},
        {"wren/tpch.json", {"Lineitem", "Nation"}, "\"wren\".\"tpch\".\"Lineitem\""},
        {"wren/jaffle.json", {"orders", "customers"}, "JOIN \"wren\".\"public\".\"customers\""},
        {"cube/school.yml", {"enrolments", "rooms"}, "closed"},
        {"cube/school.yml",
         {"enrolments", "enrolled_on"},
         "\"school\".\"calendar\" AS \"enrolled_on\""},
    };
    for (const Case& asked : cases) {
        std::vector<std::string> arguments{"path", Path(asked.file)};
        arguments.insert(arguments.end(), asked.subjects.begin(), asked.subjects.end());
        arguments.insert(arguments.end(), {"--format", "sql"});
        const ToolRun run = RunTool(arguments);
        EXPECT_THAT(run.output, HasSubstr(asked.joins)) << asked.file << run.error;
    }
}

TEST_F(SharedModels, AreReadOrRejectedWhateverTheyHold)
{
    std::size_t read = 0;
    std::size_t rejected = 0;
    const auto use = [&](const char* format, SourceDocument document) {
        try {
            (void)MakeModel(ReadSource(*FindSourceFormat(format), {&document, 1}), {});
            ++read;
        } catch (const InputError& error) {
            EXPECT_STRNE(error.what(), "");
            ++rejected;
        }
    };
    const std::vector<std::pair<const char*, const char*>> files{{"wren", "wren/orders.json"},
                                                                 {"wren", "wren/jaffle.json"},
                                                                 {"cube", "cube/school.yml"},
                                                                 {"cube", "cube/shop.yml"}};
    for (const auto& [format, file] : files) {
        const std::string text = ReadAll(file);
        const SourceDocument whole = ReadDocument(file, text, RecogniseSyntax(text).value());
        MutateValues(whole.json, [&, name = format](const nlohmann::json& changed) {
            SourceDocument document = whole;
            document.text = std::make_shared<const std::string>(changed.dump());
            document.json = changed;
            use(name, std::move(document));
        });
    }
    const std::string text = ReadAll("tmdl/adventureworksdw2020/tables/Reseller.tmdl") +
                             ReadAll("tmdl/adventureworksdw2020/relationships.tmdl").substr(3);
    for (std::size_t size = 0; size < text.size(); ++size) {
        try {
            use("tmdl", ReadDocument("cut", text.substr(0, size), ESyntax::Tmdl));
        } catch (const InputError&) {
            ++rejected;
        }
    }
    EXPECT_GT(read, 500U);
    EXPECT_GT(rejected, 500U);
}

} // namespace
