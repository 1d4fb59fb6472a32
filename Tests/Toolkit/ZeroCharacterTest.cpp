#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Import/Ddl/ScriptText.h"
#include "Toolkit/Import/OpenModel.h"
#include "Toolkit/Import/Schema/SchemaModel.h"
#include "Toolkit/Model/ModelFile.h"
#include "Toolkit/Text/YamlText.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using namespace qe::tool;
using nlohmann::json;
using qe::test::MistakesOf;
using testing::ElementsAre;
using testing::HasSubstr;

std::string ReadCorpus(const std::string& name)
{
    std::ifstream file(std::filesystem::path(QEREFINER_SOURCE_DIR) / "Tests/Fuzz/Corpus" / name,
                       std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Returns what is told of a text that is read as a model; empty where the model can be kept.
std::string Tell(const std::string& text)
{
    const qe::test::TemporaryFolder folder;
    try {
        const std::string kept = WriteModelText(OpenModel(folder.Write("source", text)));
        EXPECT_THAT(kept, testing::Not(HasSubstr("\\u0000")));
        static_cast<void>(ReadModelText(kept, "again"));
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

/// Models of Cube, which are cubes alone, are YAML; the others are JSON.
std::string ToText(const json& document)
{
    return document.size() == 1 ? "cubes: " + document["cubes"].dump() : document.dump();
}

TEST(ZeroCharacters, AreRefusedWhereverAModelOfAnotherToolHoldsThem)
{
    struct Case
    {
        const char* file;
        /// How many of its texts come into the model.
        int refused;
    };
    constexpr Case cases[] = {{"format-dbt/manifest", 29}, {"format-dbt-semantic/manifest", 19},
                              {"format-ossie/model", 19},  {"format-tbls/schema", 18},
                              {"format-tmsl/model", 21},   {"format-wren/manifest", 21},
                              {"format-cube/plain", 12}};
    for (const Case& each : cases) {
        JsonProblems problems;
        const json document = ParseYaml(ReadCorpus(each.file), problems);
        const json texts = document.flatten();
        int refused = 0;
        for (const auto& member : texts.items()) {
            if (!member.value().is_string())
                continue;
            json changed = document;
            changed[json::json_pointer(member.key())].get_ref<std::string&>() += '\0';
            const std::string told = Tell(ToText(changed));
            const bool isZero =
                told.find("source:1#" + member.key() + ": must not hold the character U+0000") !=
                std::string::npos;
            refused += isZero ? 1 : 0;
            EXPECT_EQ(told.find("U+0000") != std::string::npos, isZero) << told;
        }
        EXPECT_EQ(refused, each.refused) << each.file;
    }
}

TEST(ZeroCharacters, AreRefusedInKeysThatAreNames)
{
    EXPECT_THAT(Tell(R"({"metadata": {"project_name": "p"}, "sources": {}, "nodes": {"model.p.a":
                {"name": "a", "resource_type": "model", "columns": {"k\u0000": {}}}}})"),
                HasSubstr("/columns/k\\u0000: must not hold the character U+0000"));
}

TEST(ZeroCharacters, AreRefusedInTextsWithTheirLine)
{
    const std::string zero(1, '\0');
    EXPECT_THAT(Tell("table A\n\tcolumn x" + zero + "\n"),
                HasSubstr("source:2: must not hold the character U+0000"));
    EXPECT_THAT(Tell("cubes:\n- {name: a, sql_table: a" + zero + "}\n"),
                HasSubstr("source:2: must not hold the character U+0000"));
    EXPECT_THAT(Tell("cubes:\n- {name: a, sql_table: \"a\\0\"}\n"),
                HasSubstr("source:2#/cubes/0/sql_table: must not hold the character U+0000"));
    // Scripts of every dialect and from every file become texts here.
    const auto read = [&zero] {
        static_cast<void>(MakeScriptText("s.sql", "CREATE TABLE a (\n\"x" + zero + "\" int);"));
    };
    EXPECT_THAT(MistakesOf(read), HasSubstr("s.sql:2:3: a zero byte stands here"));
}

/// Servers tell texts with their lengths.
TEST(ZeroCharacters, AreRefusedInNamesThatServersTellAndReplacedInDescriptions)
{
    const std::string zero(1, '\0');
    const auto tell = [](SchemaTable table) {
        return MistakesOf([&] { static_cast<void>(MakeModel({.tables = {table}}, {})); });
    };
    EXPECT_THAT(tell({.name = "a" + zero}),
                HasSubstr("the name of a table must not hold the character U+0000"));
    EXPECT_THAT(tell({.name = "a", .source = {"s" + zero, "a"}}), HasSubstr("schema must not"));
    EXPECT_THAT(tell({.name = "a", .columns = {{.name = zero}}}), HasSubstr("a column must not"));
    const ToolModel model =
        MakeModel({.tables = {{.name = "a", .description = "b" + zero + zero + "c"}}}, {});
    EXPECT_EQ(model.descriptions.begin()->second, "b\uFFFD\uFFFDc");
    EXPECT_THAT(model.notes, ElementsAre("the description of a holds the character U+0000"));
}

} // namespace
