#include "Engine/Model/Model.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Import/ModelFolder.h"
#include "Toolkit/Import/OpenModel.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace qe;
using namespace qe::test;
using namespace qe::tool;
using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// Returns what is told of a file that holds the text: mistakes, else notes.
std::string Tell(const std::string& text)
{
    const TemporaryFolder folder;
    const std::string path = folder.Write("source", text);
    std::string told;
    try {
        for (const std::string& note : OpenModel(path).notes)
            told += note + '\n';
    } catch (const InputError& error) {
        told = error.what();
    }
    for (std::size_t at = told.find(path); at != std::string::npos; at = told.find(path))
        told.replace(at, path.size(), "source");
    return told;
}

/// Returns a manifest of dbt with two versions of a model, tables that refer to them, and more.
json MakeManifest(const json& more = json::object())
{
    const auto model = [](const char* name, const char* table, const json& version) {
        return json{{"name", name},
                    {"resource_type", "model"},
                    {"alias", table},
                    {"version", version},
                    {"latest_version", version.is_null() ? version : json(10)},
                    {"relation_name", "\"db\".\"main\".\"" + std::string(table) + '"'}};
    };
    const auto test = [](const char* column, const char* target) {
        return json{{"name", column},
                    {"resource_type", "test"},
                    {"test_metadata",
                     {{"name", "relationships"},
                      {"kwargs",
                       {{"column_name", column},
                        {"model", "ref('orders')"},
                        {"to", target},
                        {"field", "id"}}}}}};
    };
    json manifest{{"metadata", {{"project_name", "shop"}}},
                  {"nodes",
                   {{"model.shop.customers.v9", model("customers", "customers_old", 9)},
                    {"model.shop.customers.v10", model("customers", "customers_v10", 10)},
                    {"model.shop.orders", model("orders", "orders", nullptr)},
                    {"test.shop.1", test("old_id", "ref('customers', v=9)")},
                    {"test.shop.2", test("customer_id", "ref('customers')")}}}};
    manifest.merge_patch(more);
    return manifest;
}

TEST(DbtManifests, CallVersionsOfModelsAsTheirTables)
{
    const TemporaryFolder folder;
    const std::string path = folder.Write("manifest.json", MakeManifest().dump());
    const auto sql = [&path](const char* subject) {
        return RunTool({"path", path, "orders", subject, "--format", "sql"}).output;
    };
    EXPECT_THAT(sql("customers"), AllOf(HasSubstr("customers_v10"), HasSubstr("customer_id")));
    EXPECT_THAT(sql("customers_old"), AllOf(HasSubstr("customers_old"), HasSubstr("old_id")));
}

TEST(DbtManifests, TellWhatElseDbtWritesAndVersionsThatAreUnknown)
{
    const auto tell = [](const std::string& schema, const json& more = json::object()) {
        json manifest = MakeManifest(
            {{"metadata", {{"dbt_schema_version", "https://schemas.getdbt.com/dbt/" + schema}}}});
        manifest.merge_patch(more);
        return Tell(manifest.dump(1));
    };
    const std::string place = "source:3#/metadata/dbt_schema_version: ";
    EXPECT_EQ(tell("catalog/v1.json", {{"sources", json::object()}}),
              place + "says that the file is of the kind \"catalog\", which states no joins: take "
                      "manifest.json");
    EXPECT_EQ(tell("run-results/v6.json", {{"nodes", nullptr}, {"results", json::array()}}),
              place + "says that the file is of the kind \"run-results\", which states no joins: "
                      "take manifest.json");
    EXPECT_EQ(tell("manifest/v3.json"), place + "is version 3 of manifests; 4 to 12 can be read");
    EXPECT_THAT(tell("manifest/vX"), HasSubstr("names no version of a manifest"));
    EXPECT_THAT(tell("manifest/v4.json"), Not(HasSubstr("version")));
    EXPECT_THAT(tell("manifest/v20.json"),
                HasSubstr("version 20 of manifests is newer than what is known of them: read as "
                          "version 12\n"));
    EXPECT_EQ(tell("manifest/v12.json", {{"nodes", nullptr}, {"node", json::object()}}),
              "source:1#: lacks the key \"nodes\", but has \"node\"");
}

TEST(Formats, WithoutWhatTheyNeedAreToldAsTheirs)
{
    const std::vector<std::pair<const char*, const char*>> cases{
        {R"({"semantic_models": [], "metrics": []})",
         "source: describes no query subjects as a semantic manifest of dbt does"},
        {R"({"name": "d", "tables": null, "relations": []})",
         "source: describes no query subjects as a schema of tbls does"},
        {R"({"name": "M", "compatibilityLevel": 1550})",
         "source:1#: holds no model, nor a script that creates one"},
        {R"({"model": {"tables": [{"name": 7}]}})",
         "source:1#/model/tables/0/name: must be a string, not a number"},
        {"cubes:\n", "source: describes no query subjects as a data model of Cube does"},
        {R"({"name": "d", "tables": [{"name": "a", "columns": [{"name": "x"}]}, {"name": "b",
             "columns": [{"name": "y"}]}], "relations": [
             {"table": "a", "columns": ["x"], "parent_table": "b", "parent_columns": ["z"]}]})",
         "left out a join whose columns do not exist: a (x) -> b (z) (source:3#/relations/0)\n"},
        {R"({"models": [{"name": 1, "columns": [{"name": "k"}]}], "relationships": [
             {"name": "r", "models": ["a", "a"], "joinType": "MANY_TO_ONE", "condition": "a.k"}]})",
         "source:1#/models/0/name: must be a string, not a number"},
    };
    for (const auto& [text, told] : cases)
        EXPECT_EQ(Tell(text), told) << text;
}

TEST(Formats, AreRecognisedByHowYamlBegins)
{
    for (const char* const start :
         {"\"cubes\": x", "'cubes' : x", "- cubes", "---\ncubes: x", "%YAML 1.2\n---\ncubes: x",
          "# cubes\n\ncubes: x", "{cubes: x}", "{ 'cubes': x}", "[cubes, x]", "cube-s.x: x"}) {
        EXPECT_THAT(Tell(std::string(start) + "\n]"), HasSubstr("not valid YAML")) << start;
        EXPECT_THAT(Tell(start), Not(HasSubstr("syntax error"))) << start;
    }
    const std::string comments = "# " + std::string(5000, '-') + '\n';
    EXPECT_THAT(Tell(comments + "cubes: ]"), HasSubstr("not valid YAML"));
    for (const char* const text : {"{\"a\" 1}", "{a\": 1}", "{", "[1,", "[true, a]", "\"x"})
        EXPECT_THAT(Tell(text), HasSubstr("syntax error while parsing")) << text;
    for (const char* const value : {"null", "17", "\"x\""})
        EXPECT_THAT(Tell(value), HasSubstr("must be an object")) << value;
    EXPECT_EQ(Tell("-------\n-- Tables\n-------\nCREATE TABLE a (b INT);\n"), "");
}

TEST(Folders, HoldTheFileThatToolsCallSo)
{
    const TemporaryFolder folder;
    const auto tell = [&folder](const char* format) {
        return MistakesOf([&] {
            (void)(format == nullptr ? OpenModel(folder / "")
                                     : ImportSource(folder / "", *FindSourceFormat(format), {}));
        });
    };
    folder.Write("other.json", "{}");
    EXPECT_THAT(tell(nullptr), AllOf(HasSubstr("looked for manifest.json, "),
                                     HasSubstr(".yml, .yaml, .tmdl"), HasSubstr("other.json")));
    EXPECT_THAT(tell("dbt"), HasSubstr("looked for manifest.json, "));
    folder.Write("dbt_project.yml", "name: shop\n");
    EXPECT_THAT(tell(nullptr), HasSubstr("without target/manifest.json, which \"dbt parse\""));
    EXPECT_FALSE(IsModelFolder(folder / ""));

    std::filesystem::create_directory(folder / "target");
    folder.Write("target/manifest.json", MakeManifest().dump());
    const std::string semantic = R"({"semantic_models": [{"name": "visits"}]})";
    folder.Write("target/semantic_manifest.json", semantic);
    for (const std::string& path : {folder / "", folder / "target"}) {
        const ToolModel model = OpenModel(path);
        EXPECT_EQ(model.model->GetSubjects().size(), 3U) << path;
        EXPECT_THAT(model.notes, Contains(AllOf(HasSubstr("target/manifest.json of the folder"),
                                                HasSubstr("target/semantic_manifest.json"))));
        EXPECT_TRUE(IsModelFolder(path));
    }
    const SourceFormat& wanted = *FindSourceFormat("dbt-semantic");
    EXPECT_EQ(ImportSource(folder / "", wanted, {}).model->GetSubjects().size(), 1U);

    // A file of that name that is something else does not stand in the way.
    const TemporaryFolder other;
    other.Write("manifest.json", R"({"name": "a page"})");
    other.Write("model.bim", R"({"model": {"tables": [{"name": "Sales"}]}})");
    EXPECT_EQ(OpenModel(other / "").model->GetSubjects().size(), 1U);
    other.Write("manifest.json", "{\"nodes\": ");
    EXPECT_THAT(MistakesOf([&] { (void)OpenModel(other / ""); }), HasSubstr("manifest.json:1:"));
}

TEST(Imports, TellWhatCanBeGivenTogether)
{
    const TemporaryFolder folder;
    const std::string sql = folder.Write("a.sql", "CREATE TABLE a (b INT);");
    for (const auto& [text, what] : std::vector<std::pair<const char*, const char*>>{
             {"{}", "is JSON: only files of SQL can be given together"},
             {"cubes: []", "is YAML: only"},
             {"table T\n", "is TMDL: only"}}) {
        const std::string other = folder.Write("other", text);
        EXPECT_THAT(RunTool({"import", sql, other}).error, HasSubstr(other + ": " + what));
        EXPECT_THAT(RunTool({"import", other, sql}).error, HasSubstr(other + ": " + what));
    }
    EXPECT_THAT(RunTool({"import", sql, folder / ""}).error, HasSubstr("is a folder: only files"));
    EXPECT_EQ(RunTool({"import", sql, sql + "2"}).code, EExitCode::CannotReadOrWrite);
}

TEST(Conditions, TellTheirPlaceAndWhatMayBeMeant)
{
    const auto tell = [](const std::string& sql) {
        return Tell("cubes:\n- name: orders\n  joins:\n  - name: users\n"
                    "    relationship: many_to_one\n    sql: \"" +
                    sql +
                    "\"\n  dimensions: [{name: user, sql: user_id}]\n"
                    "- name: users\n  dimensions: [{name: id, sql: id}]\n");
    };
    const std::string place = "orders -> users (source:6#/cubes/0/joins/0/sql: ";
    EXPECT_THAT(tell("{usres.id} = {user}"),
                HasSubstr(place + "names no cube: {usres.id} (did you mean {users.id}?))\n"));
    EXPECT_THAT(tell("{users.idd} = {user}"),
                HasSubstr(place + "names no dimension: {users.idd} (did you mean {users.id}?))"));
    EXPECT_THAT(tell("{usr} = {users.id}"),
                HasSubstr("names no dimension: {usr} (did you mean {user}?))"));
    EXPECT_THAT(tell("{user} = usrs.id"),
                HasSubstr("no column of its ends: usrs.id (did you mean users.id?))"));
    EXPECT_THAT(Tell("{\"models\": [{\"name\": \"a\", \"columns\": [{\"name\": \"k\"}]},\n"
                     "{\"name\": \"buyers\", \"columns\": [{\"name\": \"k\"}]}],\n"
                     "\"relationships\": [{\"name\": \"r\", \"models\": [\"a\", \"buyers\"],\n"
                     "\"joinType\": \"ONE_TO_ONE\", \"condition\": \"a.k = byers.k\"}]}"),
                HasSubstr("r (source:4#/relationships/0/condition: names what is no column of its "
                          "ends: byers.k (did you mean buyers.k?))"));
}

/// Returns a cube whose first member stands for the next one, and so on.
std::string ChainMembers(std::size_t count, const std::string& last)
{
    std::string text = "cubes:\n- name: a\n  joins:\n  - {name: b, relationship: one_to_one,\n"
                       "     sql: \"{d0} = {b}.k\"}\n  dimensions:\n";
    for (std::size_t i = 0; i < count; ++i)
        text += "  - {name: d" + std::to_string(i) + ", sql: \"{" +
                (i + 1 < count ? "d" + std::to_string(i + 1) + '}' : last) + "\"}\n";
    return text + "- name: b\n";
}

TEST(Conditions, TellChainsFromCircles)
{
    EXPECT_THAT(Tell(ChainMembers(40, "CUBE}.k")), Not(HasSubstr("cannot be kept")));
    EXPECT_THAT(Tell(ChainMembers(40, "d7}")),
                HasSubstr("members that stand for each other: {d7}"));
    EXPECT_THAT(Tell(ChainMembers(90, "CUBE}.k")),
                HasSubstr("members that stand for others, more than 64 in a row: {d64}"));
}

TEST(Mistakes, OfDepthAndCopiesHaveALineAndAShortPointer)
{
    const std::string deepest = std::string(255, '[') + "\n[\n[" + std::string(257, ']');
    EXPECT_THAT(Tell("{\"a\": \"[\\\"\",\n\"b\": " + deepest),
                AllOf(HasSubstr("source:3#/b/0/0"), HasSubstr("..."),
                      HasSubstr(": is nested too deep: more than 256 levels")));
    EXPECT_THAT(Tell("{\"a\":\n" + deepest).size(), testing::Lt(300U));
    EXPECT_THAT(Tell("a: 1\nb:\n  " + deepest),
                AllOf(HasSubstr("source:4#/b/0/0"), HasSubstr("is nested too deep")));
    std::string bomb = "a0: &a0 [x, x, x, x, x, x, x, x, x, x]\n";
    for (int i = 1; i < 8; ++i) {
        const std::string alias = ", *a" + std::to_string(i - 1);
        bomb += 'a' + std::to_string(i) + ": &a" + std::to_string(i) + " [x";
        for (int j = 0; j < 10; ++j)
            bomb += alias;
        bomb += "]\n";
    }
    EXPECT_THAT(Tell(bomb), testing::MatchesRegex(
                                "source:6#/a5/[0-9]+: anchors and aliases come to more than .*"));
}

TEST(Mistakes, NameThreeWordsAndMisspeltNeighbours)
{
    const auto tell = [](const char* type, const char* key) {
        return Tell(
            std::string("cubes:\n- name: a\n  joins:\n  - name: a\n    sql: \"{a}.k\"\n    ") +
            key + ": " + type + '\n');
    };
    EXPECT_EQ(tell("has_may", "relationship"),
              "source:6#/cubes/0/joins/0/relationship: unknown value: \"has_may\" (did you mean "
              "has_many or hasMany?)");
    EXPECT_THAT(tell("x", "relationship"), HasSubstr("it may be one_to_one, one_to_many, "));
    EXPECT_THAT(tell("has_many", "relatonship"),
                HasSubstr(": lacks the key \"relationship\", but has \"relatonship\""));
    const InputError many({{"m", "is wrong", {"a", "b", "c", "d"}}});
    EXPECT_STREQ(many.what(), "m: is wrong (did you mean a or b or c?)");
}

} // namespace
