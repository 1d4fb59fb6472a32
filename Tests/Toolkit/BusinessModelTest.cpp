#include "Engine/Model/Model.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/ReadSource.h"
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
        return ReadSourceText("cube", text);
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
    EXPECT_EQ(
        ReadSourceText("cube",
                       "cubes:\n"
                       "  - name: a\n    joins:\n"
                       "      - {name: b, relationship: belongs_to, sql: \"{a}.x::date = {b}.y\"}\n"
                       "  - name: b\n    joins:\n"
                       "      - {name: a, relationship: has_many, sql: \"{a}.x::date = {b}.y\"}\n"),
        "a > b: CAST([left].[x] AS date) = [right].[y]\n");
}

TEST(Cube, LeavesOutTemplatesWithTheSmallestPartAroundThem)
{
    EXPECT_EQ(ReadSourceText("cube",
                             "{# who #}\n"
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
