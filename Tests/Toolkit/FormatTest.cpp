#include "Engine/Model/Model.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Text/YamlText.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace qe;
using namespace qe::tool;
using nlohmann::json;
using testing::HasSubstr;

std::filesystem::path ModelsFolder()
{
    return std::filesystem::path(QEREFINER_DATA_DIR) / "models";
}

ToolModel Import(const std::string& text)
{
    const test::TemporaryFolder folder;
    return OpenModel(folder.Write("source", text));
}

/// Returns a line for each join: its ends with their cardinalities, and what is said of it.
std::string DescribeJoins(const ToolModel& tool)
{
    const auto sign = [](const model::CardinalityRange& range) {
        return std::string(range.minimum == model::kZeroToOne.minimum ? "0" : "1") +
               (range.maximum == model::kOneToOne.maximum ? "1" : "n");
    };
    std::string text;
    for (const amd_id& id : tool.model->GetJoins()) {
        const model::ObjectRecord& join = *tool.model->Find(id);
        const auto description = tool.descriptions.find(id);
        text += sign(join.leftCardinality) + ' ' + join.text + ' ' + sign(join.rightCardinality) +
                (description == tool.descriptions.end() ? "" : "; " + description->second) + '\n';
    }
    return text;
}

TEST(Formats, DbtTellsWhatIsTestedFromWhatIsEnforced)
{
    const auto test = [](const char* name, const char* column, const json& more,
                         const json& where = nullptr) {
        json kwargs{{"column_name", column}, {"model", "{{ get_where_subquery(ref('a')) }}"}};
        kwargs.update(more);
        return json{{"name", name},
                    {"resource_type", "test"},
                    {"config", {{"where", where}}},
                    {"test_metadata", {{"name", name}, {"kwargs", kwargs}}}};
    };
    const json key{{"type", "primary_key"}, {"columns", {"x", "y"}}};
    const json foreign{
        {"type", "foreign_key"}, {"columns", {"x", "y"}}, {"expression", "s.c (x, y)"}};
    json manifest{{"metadata", {{"project_name", "p"}}}, {"sources", json::object()}};
    json& nodes = manifest["nodes"];
    nodes["model.p.a"] = {{"name", "a"},
                          {"resource_type", "model"},
                          {"database", nullptr},
                          {"contract", {{"enforced", true}}},
                          {"constraints", {foreign}}};
    nodes["model.p.b"] = {{"name", "b"}, {"resource_type", "model"}, {"package_name", "p"}};
    nodes["model.p.c"] = {{"name", "c"},
                          {"resource_type", "seed"},
                          {"constraints", {key}},
                          {"relation_name", "\"d\".\"s\".\"c\""}};
    nodes["test.1"] = test("relationships", "b", {{"to", "ref('b')"}, {"field", "id"}});
    nodes["test.2"] =
        test("relationships", "k", {{"to", "ref('p', 'b')"}, {"field", "k"}}, "k > 0");
    nodes["test.3"] =
        test("relationships", "upper(\"b\")", {{"to", "ref('c')"}, {"field", "lower(z)"}});
    nodes["test.4"] = test("relationships", "b", {{"to", "ref('gone')"}, {"field", "id"}});
    nodes["test.5"] = test("not_null", "b", json::object());
    nodes["test.6"] = test("not_null", "k", json::object());
    nodes["test.7"] = test("unique", "k", json::object());
    nodes["test.8"] = test("unique", "b", json::object(), "b > 0");
    const ToolModel model = Import(manifest.dump());
    EXPECT_EQ(DescribeJoins(model),
              "0n [p].[a].[x] = [p].[c].[x] AND [p].[a].[y] = [p].[c].[y] 01; "
              "a constraint of the database\n"
              "0n [p].[a].[b] = [p].[b].[id] 11; tested, enforced by no constraint\n"
              "01 [p].[a].[k] = [p].[b].[k] 01; "
              "tested, enforced by no constraint, for rows where k > 0\n"
              "0n upper([p].[a].[b]) = lower([p].[c].[z]) 01; tested, enforced by no constraint\n");
    EXPECT_THAT(
        model.notes,
        testing::IsSupersetOf(
            {HasSubstr("tell apart: 3 only tested, 1 constraints of the database"),
             HasSubstr("its columns are unique: a -> b (id), a -> b (k), a -> c (lower(z))"),
             HasSubstr("left out 1 tests of what the file does not hold: relationships"),
             HasSubstr("left out 1 tests that hold for some rows only: unique")}));
}

TEST(Formats, SemanticEntitiesJoinAsTheirTypesAllow)
{
    const auto model = [](const char* name, std::vector<json> entities, const json& dimensions) {
        return json{{"name", name}, {"entities", std::move(entities)}, {"dimensions", dimensions}};
    };
    const auto entity = [](const char* name, const char* type, const json& expr) {
        return json{{"name", name}, {"type", type}, {"expr", expr}};
    };
    const json times = {
        {{"name", "from"}, {"type_params", {{"validity_params", {{"is_start", true}}}}}}};
    json manifest;
    manifest["semantic_models"] = {
        model("a", {entity("k", "foreign", "x"), entity("host", "foreign", "h")}, json::array()),
        model("b", {entity("k", "foreign", "x"), entity("n", "natural", "n")}, json::array()),
        model("c", {entity("k", "unique", "y || '-' || z")}, nullptr),
        model("d", {entity("n", "foreign", nullptr)}, nullptr),
        model("e", {entity("n", "natural", "m")}, times)};
    const ToolModel read = Import(manifest.dump());
    EXPECT_EQ(
        DescribeJoins(read),
        "0n [source].[a].[x] = [source].[c].[y] || '-' || [source].[c].[z] 01; by the entity k\n"
        "0n [source].[b].[x] = [source].[c].[y] || '-' || [source].[c].[z] 01; by the entity k\n"
        "0n [source].[d].[n] = [source].[e].[m] 0n; by the entity n\n");
    EXPECT_THAT(read.notes, testing::Contains(HasSubstr("left out 1 natural entities")));
}

TEST(Formats, OssieCardinalitiesFollowFromKeys)
{
    const std::string datasets = R"(version: 0.2.0.dev0
semantic_model:
- name: shop
  datasets:
  - {name: a, source: s.a, unique_keys: [[x]], fields: [{name: code, expression: {dialects: [
      {dialect: ANSI_SQL, expression: '"Raw Code"'}]}}]}
  - {name: b, source: s.b, primary_key: [k, l]}
  relationships:
)";
    const ToolModel model = Import(datasets + R"(
  - {name: one, from: a, to: b, from_columns: [x, y], to_columns: [l, k]}
  - {name: half, from: a, to: b, from_columns: [x], to_columns: [k]}
  - {name: many, from: a, to: b, from_columns: [code, y], to_columns: [k, l]}
)");
    EXPECT_EQ(DescribeJoins(model),
              "01 [shop].[a].[x] = [shop].[b].[l] AND [shop].[a].[y] = [shop].[b].[k] 01\n"
              "0n [shop].[a].[x] = [shop].[b].[k] 0n\n"
              "0n [shop].[a].[Raw Code] = [shop].[b].[k] AND [shop].[a].[y] = [shop].[b].[l] 01\n");
    EXPECT_THAT(model.notes,
                testing::ElementsAre(HasSubstr("no declared key of their dataset: half")));

    const auto mistakesOf = [](const std::string& text) {
        return test::MistakesOf([&] { static_cast<void>(Import(text)); });
    };
    EXPECT_THAT(mistakesOf(datasets + "  - {name: r, from: a, to: c, from_columns: [x], "
                                      "to_columns: [k, l]}\n"),
                HasSubstr(":9#/semantic_model/0/relationships/0/to: there is no \"c\""));
    EXPECT_THAT(mistakesOf(datasets + "  - {name: r, from: a, to: b, from_columns: [x], "
                                      "to_columns: [k, l]}\n"),
                HasSubstr("pairs 1 columns with 2"));
    EXPECT_THAT(mistakesOf("version: 0.2.0.dev0\nontology:\n- name: flights\n"),
                HasSubstr("/ontology: is an ontology"));
}

// Versions of a format that differ in the frame say the same joins.
TEST(Formats, AreReadInOlderAndNewerFrames)
{
    const std::string datasets = R"(
- {name: a, source: s.a, fields: [{name: x, expression: code}]}
- {name: b, source: s.b, primary_key: [k]}
)";
    const std::string joins = "- {name: j, from: a, to: b, from_columns: [x], to_columns: [k]}\n";
    for (const char* const version : {"", "version: 0.2.0.dev0\n"})
        EXPECT_EQ(DescribeJoins(Import(std::string(version) + "name: shop\ndatasets:" + datasets +
                                       "relationships:\n" + joins)),
                  "0n [shop].[a].[code] = [shop].[b].[k] 01\n");

    const auto manifest = [](const std::string& joinType, const std::string& schema) {
        return R"({"catalog": null, "schema": null, "models": [
            {"name": "a", "tableReference": {"catalog": null, "schema": )" +
               schema + R"(, "table": "t"}, "columns": [{"name": "x", "type": "int"}]},
            {"name": "b", "columns": [{"name": "k", "type": "int"}]}], "relationships": [
            {"name": "j", "models": ["a", "b"], "joinType": ")" +
               joinType + R"(", "condition": "a.x = b.k"}]})";
    };
    EXPECT_EQ(DescribeJoins(Import(manifest("many_to_one", "null"))),
              DescribeJoins(Import(manifest("MANY_TO_ONE", "\"s\""))));
}

TEST(Formats, TellTextsInAnotherEncoding)
{
    const auto mistakesOf = [](const std::string& text) {
        return test::MistakesOf([&] { static_cast<void>(Import(text)); });
    };
    for (const char* text :
         {"cubes:\n- {name: a, sql_table: caf\xE9}\n", "table A\n\tcolumn \xE9\n"})
        EXPECT_THAT(mistakesOf(text), HasSubstr("source:2: is a text in another encoding"));
}

TEST(Formats, MergeKeysOfYamlThatComeLast)
{
    const auto read = [](const std::string& text) {
        JsonProblems problems("source");
        const json document = ParseYaml(text, problems);
        return test::MistakesOf([&] { problems.ThrowIfAny(); }) + ' ' + document.dump();
    };
    EXPECT_EQ(read("a: &a {x: 1}\nb: &b {y: 2, <<: *a}\nc: {<<: *b}\n"),
              R"(no mistake {"a":{"x":1},"b":{"x":1,"y":2},"c":{"x":1,"y":2}})");
    EXPECT_EQ(read("a:\n  b: {x: 1, <<: 3}\n"),
              R"(source#/a/b/<<: "<<" must name objects {"a":{"b":{"x":1}}})");
}

TEST(Formats, AnswerWhatPeopleAsk)
{
    struct Case
    {
        const char* file;
        std::vector<std::string> subjects;
        const char* path;
    };
    const Case cases[] = {
        {"dbt/jaffle-shop-v1.11.manifest.json",
         {"order_items", "stg_customers"},
         "order_items-orders orders-stg_customers"},
        {"dbt/dbt-constraints.manifest.json",
         {"fact_order_line", "dim_customers"},
         "fact_order_line-dim_orders dim_orders-dim_customers"},
        {"dbt/jaffle-shop.semantic_manifest.json",
         {"order_item", "locations"},
         "order_item-orders orders-locations"},
        {"ossie/tpcds.yaml", {"customer", "store"}, "store_sales_to_customer store_sales_to_store"},
        {"tbls/detect_relations.json", {"comments", "users"}, "comments-users"},
    };
    for (const Case& asked : cases) {
        SCOPED_TRACE(asked.file);
        if (!std::filesystem::exists(ModelsFolder() / asked.file))
            GTEST_SKIP() << "no models at hand";
        const ToolModel model = OpenModel(ModelsFolder() / asked.file);
        const Answer answer = Ask(model, test::Connect(asked.subjects));
        EXPECT_EQ(test::NamesOf(answer, answer.path), asked.path);
    }
}

TEST(Formats, TellWhatIsWrongWithAnyValue)
{
    if (!std::filesystem::exists(ModelsFolder()))
        GTEST_SKIP() << "no models at hand";
    const json values[] = {nullptr, 7, "text", json::array({1}), json{{"a", 1}}};
    // Every value of a small file, and some of a large one.
    constexpr std::size_t kChangesPerFile = 150;
    for (const char* name :
         {"dbt/dbt-constraints.manifest.json", "dbt/metricflow-simple.semantic_manifest.json",
          "ossie/tpcds.yaml", "tbls/mssql.json"}) {
        const std::filesystem::path path = ModelsFolder() / name;
        std::stringstream text;
        text << std::ifstream(path).rdbuf();
        JsonProblems problems;
        const json whole = ParseYaml(text.str(), problems);
        const SourceFormat& format = *FindSourceFormat(
            name[0] == 'o'                                            ? "ossie"
            : name[0] == 't'                                          ? "tbls"
            : std::string(name).find("semantic") != std::string::npos ? "dbt-semantic"
                                                                      : "dbt");
        const json flat = whole.flatten();
        std::vector<std::string> pointers;
        for (const auto& [pointer, value] : flat.items())
            for (std::string part = pointer; !part.empty(); part.resize(part.rfind('/')))
                pointers.push_back(part);
        std::sort(pointers.begin(), pointers.end());
        pointers.erase(std::unique(pointers.begin(), pointers.end()), pointers.end());
        const std::size_t step = pointers.size() * std::size(values) / kChangesPerFile + 1;
        for (std::size_t i = 0; i < pointers.size() * std::size(values); i += step) {
            SourceDocument document = ReadDocument(name, "{}", ESyntax::Json);
            document.json = whole;
            const std::string& pointer = pointers[i / std::size(values)];
            document.json[json::json_pointer(pointer)] = values[i % std::size(values)];
            try {
                static_cast<void>(MakeModel(ReadSource(format, {&document, 1}), {}));
            } catch (const InputError& error) {
                EXPECT_THAT(error.what(), HasSubstr(name)) << pointer;
            }
        }
    }
}

} // namespace
