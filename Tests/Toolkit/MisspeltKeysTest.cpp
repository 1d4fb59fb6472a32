#include "Tests/Toolkit/ReadSource.h"
#include "Toolkit/Text/Misspelling.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace qe::test;
using namespace qe::tool;
using testing::HasSubstr;
using testing::Not;

TEST(Misspelling, IsFewSlipsOfOneWord)
{
    const std::vector<std::string_view> known{"table", "relationship", "to", "tables"};
    const auto meant = [&known](std::string_view wrong) { return FindMeantWord(wrong, known); };
    EXPECT_EQ(meant("tabel"), "table");
    EXPECT_EQ(meant("Tabless"), "tables");
    EXPECT_EQ(meant("RELATONSHP"), "relationship");
    EXPECT_EQ(meant("too"), "to");
    // Two slips are too many in a short word, and so are three in a long one.
    EXPECT_EQ(meant("tbael"), "");
    EXPECT_EQ(meant("relatnshp"), "");
    EXPECT_EQ(meant(""), "");
}

TEST(MisspeltKeys, AreMistakesInEveryFormat)
{
    struct Source
    {
        const char* format;
        std::string text;
        /// Keys of the text, each with one that it may be misspelt as.
        std::vector<std::pair<const char*, const char*>> slips;
    };
    const std::vector<Source> sources{
        {"ossie",
         R"({"version": "0.2.0.dev0", "custom": 1, "semantic_model": [{"name": "m", "datasets": [
             {"name": "a", "source": "a", "primary_key": ["x"], "unique_keys": [["y"]],
              "fields": [{"name": "x", "label": "X", "expression": {"dialects": []}}]}],
             "relationships": [{"name": "r", "from": "a", "to": "a", "from_columns": ["x"],
                                "to_columns": ["x"], "ai_context": "none"}]}]})",
         {{"relationships", "relationshps"},
          {"from_columns", "from_colums"},
          {"unique_keys", "unique_key"},
          {"primary_key", "primaryKey"},
          {"to\"", "too\""}}},
        {"tbls",
         R"({"name": "m", "desc": "d", "driver": {"name": "d"}, "tables": [
             {"name": "a", "type": "table", "indexes": [], "columns": [
               {"name": "x", "type": "int", "nullable": false, "default": null}],
              "constraints": [{"name": "k", "type": "PRIMARY KEY", "def": "", "columns": ["x"]}]}],
             "relations": [{"table": "a", "columns": ["x"], "parent_table": "a", "def": "",
                            "parent_columns": ["x"], "virtual": true,
                            "parent_cardinality": "exactly_one"}]})",
         {{"relations", "relation"},
          {"parent_cardinality", "parent_cardinalty"},
          {"constraints", "constraint"},
          {"nullable", "nulable"}}},
        {"tmsl",
         R"({"model": {"culture": "en", "tables": [{"name": "a", "columns": [
               {"name": "x", "dataType": "int64", "isKey": true}], "partitions": []}],
             "relationships": [{"fromTable": "a", "fromColumn": "x", "toTable": "a",
                                "toColumn": "x", "isActive": false, "state": "ready"}]}})",
         {{"relationships", "relationship"}, {"isActive", "isActiv"}, {"isKey", "iskey"}}},
        {"wren",
         R"({"catalog": "c", "schema": "s", "dataSource": "d", "models": [
             {"name": "a", "columns": [{"name": "x", "type": "int"}], "primaryKey": "x",
              "cached": false}],
             "relationships": [{"name": "r", "models": ["a", "a"], "joinType": "ONE_TO_ONE",
                                "condition": "a.x = a.x"}]})",
         {{"relationships", "relationship"}, {"primaryKey", "primary_key"}}},
        {"cube",
         "cubes:\n  - name: a\n    sql_table: a\n    title: A\n    joins:\n"
         "      - {name: a, relationship: one_to_one, sql: \"{CUBE}.x = {a}.x\"}\n"
         "    dimensions:\n      - {name: x, sql: x, type: number, primary_key: true}\n"
         "views:\n  - name: v\n    cubes: []\n",
         {{"joins", "join"}, {"dimensions", "dimension"}, {"primary_key", "primry_key"}}},
        {"dbt",
         R"json({"metadata": {}, "sources": {}, "macros": {}, "parent_map": {}, "nodes": {"model.p.a":
             {"name": "a", "resource_type": "model", "alias": "a", "fqn": [], "config": {},
              "columns": {"x": {"name": "x", "data_type": "int"}},
              "constraints": [{"type": "foreign_key", "columns": ["x"], "to": "ref('a')",
                               "to_columns": ["x"], "warn_unsupported": true}]}}})json",
         {{"constraints", "constraint"}, {"to_columns", "to_colums"}}},
        {"dbt-semantic",
         R"({"semantic_models": [{"name": "a", "label": null, "entities": [
             {"name": "x", "type": "primary", "expr": "y", "role": null}]}], "metrics": []})",
         {{"entities", "entites"}, {"expr", "exp"}}},
    };
    for (const auto& [format, text, slips] : sources) {
        EXPECT_THAT(ReadSourceText(format, text), Not(HasSubstr("is unknown"))) << format;
        for (const auto& [right, wrong] : slips) {
            std::string changed = text;
            changed.replace(changed.find(right), std::string(right).size(), wrong);
            std::string key = wrong;
            std::string meant = right;
            std::erase(key, '"');
            std::erase(meant, '"');
            EXPECT_THAT(ReadSourceText(format, changed),
                        HasSubstr("key is unknown: \"" + key + "\" (did you mean " + meant + "?)"))
                << format;
        }
    }
}

} // namespace
