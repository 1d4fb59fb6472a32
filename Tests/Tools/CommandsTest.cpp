#include "Engine/Services/SettingsOverride.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Text/InputFile.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace qe::tool;
using qe::test::ToolRun;
using testing::HasSubstr;
using testing::Not;

/// The tool on a schema of a few tables.
class CommandsTest : public testing::Test
{
protected:
    /// Runs the tool; "@" stands for the schema. What is typed comes from a terminal.
    ToolRun RunWith(std::vector<std::string> arguments, const std::string& typed = {}) const
    {
        std::replace(arguments.begin(), arguments.end(), std::string("@"), mSchema);
        Terminal terminal;
        terminal.input = Terminal::EStream::Terminal;
        return qe::test::RunTool(arguments, typed, typed.empty() ? Terminal() : terminal);
    }

    qe::test::TemporaryFolder mFolder;

private:
    std::string mSchema = mFolder.Write("schema.sql", R"(
        CREATE TABLE region(id INTEGER PRIMARY KEY, name TEXT);
        CREATE TABLE customer(id INTEGER PRIMARY KEY, region_id REFERENCES region(id));
        CREATE TABLE orders(id INTEGER PRIMARY KEY,
                            bill_to INTEGER NOT NULL REFERENCES customer(id),
                            ship_to INTEGER NOT NULL REFERENCES customer(id));
        CREATE TABLE budget(id INTEGER PRIMARY KEY);
        CREATE TABLE shop(id INTEGER PRIMARY KEY);
        CREATE TABLE "shop.visit"(shop_id INTEGER REFERENCES shop(id));)");
};

TEST_F(CommandsTest, ExitCodesShowHowItEnded)
{
    struct Case
    {
        std::vector<std::string> arguments;
        EExitCode code;
    };
    const Case cases[] = {
        {{"path", "@", "Orders", "region"}, EExitCode::Done},
        {{"best", "@", "orders", "region", "--format", "json"}, EExitCode::Done},
        {{"subjects", "@", "orders", "region"}, EExitCode::Done},
        {{"between", "@", "--from", "orders", "--to", "region", "--all"}, EExitCode::Done},
        {{"tree", "@", "orders", "region"}, EExitCode::Done},
        {{"facts", "@"}, EExitCode::Done},
        {{"facts", "@", "orders", "region", "--format", "json"}, EExitCode::Done},
        {{"shortcuts", "@", "--roles", "shortcuts"}, EExitCode::Done},
        {{"import", "sql", "@", "@.missing"}, EExitCode::CannotReadOrWrite},
        {{"import", "sqlite", "@"}, EExitCode::CannotReadOrWrite},
        {{"import", "@"}, EExitCode::Done},
        {{"import", "@", "--from", "sqlite"}, EExitCode::Done},
        {{"import"}, EExitCode::WrongUsage},
        {{"import", "sql", "@", "--from", "db2"}, EExitCode::WrongUsage},
        {{"--help"}, EExitCode::Done},
        {{"--version"}, EExitCode::Done},
        {{"path", "@", "orders", "budget"}, EExitCode::NegativeResult},
        {{"subjects", "@", "orders", "budget"}, EExitCode::NegativeResult},
        {{"facts", "@", "orders", "budget"}, EExitCode::NegativeResult},
        {{}, EExitCode::WrongUsage},
        {{"path", "@"}, EExitCode::WrongUsage},
        {{"path", "@", "orders", "--nonsense"}, EExitCode::WrongUsage},
        {{"path", "@", "oders", "region"}, EExitCode::WrongUsage},
        {{"path", "@", "orders", "region", "--cross-product", "7"}, EExitCode::WrongUsage},
        {{"path", "@", "orders", "region", "--selector", "ask"}, EExitCode::WrongUsage},
        {{"path", "@", "orders", "region", "--set", "NewAlgo"}, EExitCode::WrongUsage},
        {{"path", "/no/such/file", "a", "b"}, EExitCode::CannotReadOrWrite},
        {{"show", "@", "--around", "oders", "--format", "dot"}, EExitCode::WrongUsage},
        {{"path", "@", "orders", "budget", "--cross-product", "deny"}, EExitCode::LibraryError},
    };
    for (const Case& entry : cases) {
        const ToolRun run = RunWith(entry.arguments);
        EXPECT_EQ(static_cast<int>(run.code), static_cast<int>(entry.code))
            << testing::PrintToString(entry.arguments) << run.error;
        EXPECT_TRUE(entry.code < EExitCode::WrongUsage || !run.error.empty());
    }
    EXPECT_THAT(RunWith({"path", "@", "oders", "region"}).error, HasSubstr("did you mean orders"));
}

TEST(ExitCodes, MeanWhatTheDocumentsSay)
{
    const std::filesystem::path folder = QEREFINER_SOURCE_DIR;
    const std::string manual = ReadInputFile(folder / "Tools/qerefine/qerefine.1");
    const std::string document = ReadInputFile(folder / "Documentation/tool.md");
    for (const ExitCodeMeaning& each : kExitCodes) {
        const std::string number = std::to_string(static_cast<int>(each.code));
        const std::string text(each.text);
        EXPECT_THAT(manual, HasSubstr(".B " + number + "\n" + text + "\n.")) << number;
        EXPECT_THAT(document, HasSubstr("\n| " + number + " | " + text + " |\n")) << number;
    }
}

TEST_F(CommandsTest, ImportWritesTheModelThatAnswersLikeItsSource)
{
    const ToolRun imported = RunWith({"import", "sql", "@", "--roles"});
    EXPECT_EQ(imported.code, EExitCode::Done) << imported.error;
    EXPECT_THAT(imported.error, testing::ContainsRegex(": [0-9]+ tables, [0-9]+ joins\n$"));
    EXPECT_EQ(RunWith({"import", "@", "--roles"}).output, imported.output);
    const std::string file = mFolder.Write("model.json", imported.output);
    const ToolRun asked = RunWith({"path", file, "customer (ship_to)", "region"});
    const ToolRun dotted = RunWith({"path", file, "[shop.visit]", "shop", "--format", "sql"});
    EXPECT_THAT(dotted.output, HasSubstr("FROM \"shop.visit\"\n"));
    EXPECT_THAT(asked.output, HasSubstr("orders-customer (ship_to)"));
    EXPECT_EQ(
        asked.output,
        RunWith({"path", "@", "customer (ship_to)", "region", "--roles", "shortcuts"}).output);
}

TEST_F(CommandsTest, EveryCommandShowsAnExample)
{
    const std::string commands = RunWith({"--help"}).output;
    for (const char* command : {"path", "best", "subjects", "between", "tree", "facts", "shortcuts",
                                "import", "batch", "evaluate", "check"}) {
        EXPECT_THAT(commands, HasSubstr(command));
        EXPECT_THAT(RunWith({command, "--help"}).output,
                    HasSubstr(std::string("Example:\n  qerefine ") + command));
    }
}

TEST_F(CommandsTest, FactsSayWhenTheyShareNoDimension)
{
    EXPECT_THAT(RunWith({"facts", "@"}).output, HasSubstr("2 facts\n"));
    EXPECT_THAT(RunWith({"facts", "@"}).output, HasSubstr("\nShared dimensions: none\n"));
    EXPECT_THAT(RunWith({"facts", "@", "--format", "json"}).output,
                HasSubstr("\"sharedDimensions\": []"));
}

TEST_F(CommandsTest, OptionsReachTheQuestion)
{
    const std::vector<std::string> ask{"path", "@", "orders", "region", "--format", "sql"};
    const auto with = [&ask](std::vector<std::string> more) {
        more.insert(more.begin(), ask.begin(), ask.end());
        return more;
    };
    EXPECT_THAT(RunWith(with({"--favour", "orders-customer (ship_to)"})).output,
                HasSubstr("\"ship_to\""));
    EXPECT_THAT(RunWith(with({"--without-join", "orders-customer (bill_to)"})).output,
                HasSubstr("\"ship_to\""));
    EXPECT_THAT(RunWith(with({"--start", "region"})).output,
                HasSubstr("FROM \"region\"\n  LEFT OUTER JOIN \"customer\""));
    EXPECT_THAT(RunWith(with({"--inner", "--select"})).output, Not(HasSubstr("OUTER")));

    const ToolRun chosen = RunWith(with({"--selector", "ask"}), "9\nx\n2\n");
    EXPECT_THAT(chosen.output, HasSubstr("\"ship_to\""));
    EXPECT_THAT(chosen.error, HasSubstr("Choose 1 to 2 [1]: "));
    EXPECT_THAT(RunWith(with({"--set", "General Options/NewAlgo=0"})).output,
                HasSubstr("FROM \"orders\""));
    qe::SettingsOverride::Clear("General Options", "NewAlgo");
}

} // namespace
