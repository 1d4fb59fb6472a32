#include "Engine/Services/SettingsOverride.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Ask/SettingNames.h"
#include "Toolkit/Text/InputFile.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
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
        {{"export", "@", "--to", "mermaid"}, EExitCode::Done},
        {{"export", "@"}, EExitCode::WrongUsage},
        {{"mcp", "@"}, EExitCode::Done},
        {{"mcp", "-"}, EExitCode::WrongUsage},
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
        {{"subjects", "@", "orders", "region", "--format", "sql"}, EExitCode::WrongUsage},
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

TEST_F(CommandsTest, UrlsOfServersKeepTheirSecrets)
{
    struct Case
    {
        std::vector<std::string> arguments;
        EExitCode code;
        const char* told;
    };
    constexpr EExitCode kUnread = EExitCode::CannotReadOrWrite;
    const Case cases[] = {
        {{"path", "postgresql://ann:p@ss@h/db", "a", "b"}, kUnread, "postgresql://h/db: holds a p"},
        {{"import", "mysql://ann:s/cret?@h/db"}, kUnread, "mysql://h/db: only a user stands"},
        {{"import", "postgres://h/db?user=ann&sslpassword=s"}, kUnread, "postgres://h/db: holds a"},
        {{"show", "odbc:Driver={a;b};UID=ann; pwd = s"}, kUnread, "odbc:Driver={a;b}: holds a p"},
        {{"import", "odbc", "DSN=d;UID=ann;PASSWORD=s"}, kUnread, "odbc:DSN=d: holds a password"},
        {{"import", "odbc", "odbc:;=ann"}, kUnread, "odbc:: has an attribute without a name"},
        {{"import", "mysql", "postgresql://ann@h/db"}, kUnread, "a URL such as mysql://host/shop"},
        {{"import", "postgresql", "ann:s@h/db"}, kUnread, "takes a URL such as postgresql://"},
        {{"import", "sql", "@", "mysql://ann@h/db"}, kUnread, "mysql://h/db: is a database on a"},
        {{"import", "sqlite", "odbc:DSN=d;UID=ann"}, kUnread, "odbc:DSN=d: is a database on a"},
        {{"import", "mysql://ann@h:port/db"}, kUnread, "mysql://h:port/db: the port is not a num"},
        {{"import", "mysql://ann@h/db?soket=x"}, kUnread, "\"soket\" (did you mean socket?)"},
        {{"import", "postgresql://ann@h/%zz"}, kUnread, "\"%\" stands before two hexadecimal"},
        {{"import", "postgresql://ann@[::1]x/d"}, kUnread, "an address in brackets is followed"},
        {{"path", "postgresql://ann@h/db", "a", "b", "--save"},
         EExitCode::WrongUsage,
         "h/db (qere"},
        {{"import", "@", "--tables", "o*"},
         EExitCode::WrongUsage,
         "only be chosen of a database on"},
        {{"import", "@", "--statement-timeout", "-1"}, EExitCode::WrongUsage, "-1"},
        {{"import", "mysq"}, EExitCode::WrongUsage, "did you mean mysql?"},
    };
    for (const Case& entry : cases) {
        const ToolRun run = RunWith(entry.arguments);
        EXPECT_EQ(static_cast<int>(run.code), static_cast<int>(entry.code)) << run.error;
        EXPECT_THAT(run.error, HasSubstr(entry.told));
        EXPECT_THAT(run.error, Not(testing::AnyOf(HasSubstr("ann"), HasSubstr("p@ss"))));
    }
}

TEST_F(CommandsTest, EveryCommandShowsAnExample)
{
    const std::string commands = RunWith({"--help"}).output;
    for (const char* command : {"path", "best", "subjects", "between", "tree", "facts", "shortcuts",
                                "import", "batch", "evaluate", "history", "check"}) {
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

TEST_F(CommandsTest, WrongUseIsToldWithTheNearestRightName)
{
    struct Case
    {
        std::vector<std::string> arguments;
        const char* told;
    };
    const Case cases[] = {
        {{"pth", "@", "orders"}, "unknown command \"pth\" (did you mean path?)"},
        {{"import", "sqlit", "@"}, "unknown command \"sqlit\" (did you mean sqlite?)"},
        {{"import", "-o", "m.json", "sql", "@"}, "sql excludes --output"},
        {{"import", "@", "--form", "mysql"}, "unknown option \"--form\" (did you mean --from?)"},
        {{"path", "@", "orders", "--favor", "x"},
         "unknown option \"--favor\" (did you mean --favour?)"},
        {{"path", "@", "orders", "--favor=x"}, "(did you mean --favour?)"},
        {{"check", "@", "--limit", "-3"}, "--limit: must be 0 or more: -3"},
        {{"path", "@", "orders", "--set", "JoinGraph/CheapestTreesBoud=3"},
         "(did you mean JoinGraph/CheapestTreesBound?)"},
        {{"path", "@", "orders", "--set", "Options/newalgo=0"},
         "(did you mean General Options/NewAlgo?)"},
        {{"path", "@", "orders", "region", "--inner"}, "--inner: needs --format sql or html"},
        {{"path", "@", "orders", "region", "--format", "sql", "--start", "shop"},
         "--start: The path does not touch \"shop\"; it touches customer, orders, region"},
        {{"path", "@", "orders.bill_to", "region"},
         "A column is no query subject: \"orders.bill_to\" (did you mean orders?)"},
        {{"path", "@", "orders", "--roles", "shortcut"}, "shortcut"},
        {{"batch", "-", "-"}, "standard input can only be read once"},
        {{"completion", "tcsh"}, "tcsh"},
    };
    for (const Case& test : cases) {
        const ToolRun run = RunWith(test.arguments);
        EXPECT_EQ(run.code, EExitCode::WrongUsage) << testing::PrintToString(test.arguments);
        EXPECT_THAT(run.error, HasSubstr(test.told));
        EXPECT_EQ(run.output, "");
    }
}

TEST_F(CommandsTest, OneSubjectIsAnAnswer)
{
    const ToolRun run = RunWith({"path", "@", "[schema].[orders]"});
    EXPECT_EQ(run.code, EExitCode::Done) << run.error;
    EXPECT_EQ(run.output, "Nothing to join: orders stands alone\n");
    EXPECT_THAT(RunWith({"best", "@", "orders"}).output, HasSubstr("Nothing to join"));
}

TEST_F(CommandsTest, MessagesKeepInternalsToThemselves)
{
    const ToolRun run = RunWith({"path", "@", "orders", "budget", "--cross-product", "deny"});
    EXPECT_EQ(run.error, "qerefine: The query subjects orders, budget cannot be joined, and cross "
                         "products are not allowed.\n");
    EXPECT_THAT(RunWith({"path", "@", "orders", "budget"}).output, Not(HasSubstr("User classes")));
    const std::string example = QEREFINER_SOURCE_DIR "/Examples/retail/model.json";
    const ToolRun broken =
        RunWith({"path", example, "sales", "product", "--set", "General Options/NewAlgo=0"});
    EXPECT_EQ(broken.code, EExitCode::InternalError);
    EXPECT_THAT(broken.error, AllOf(HasSubstr("impossible"), Not(HasSubstr("ASSERT"))));
}

TEST_F(CommandsTest, WordsAreCompletedFromOptionsAndModel)
{
    struct Case
    {
        std::vector<std::string> words;
        const char* completed;
    };
    const Case cases[] = {
        {{"be"}, "best\nbetween\n"},
        {{"import", ""}, "mysql\nodbc\npostgresql\nsql\nsqlite\n:files\n"},
        {{"import", "@", ""}, ":files\n"},
        {{"import", "sql", "--from", "p"}, "postgresql\n"},
        {{"path", ""}, ":files\n"},
        {{"path", "@", "OR"}, "orders\n"},
        {{"path", "@", "orders", "--favour", "orders"},
         "orders-customer (bill_to)\norders-customer (ship_to)\n"},
        {{"path", "@", "--roles", "shortcuts", "customer ("},
         "customer (bill_to)\ncustomer (ship_to)\n"},
        {{"between", "@", "--from", "re"}, "region\n"},
        {{"path", "@", "--selector", "m"}, "main-object\n"},
        {{"path", "@", "--favour-s"}, "--favour-subject\n"},
        {{"path", "@", "-o", ""}, ":files\n"},
        {{"batch", "@", ""}, ":files\n"},
        {{"completion", "f"}, "fish\n"},
        {{"path", "/no/such/model", "a"}, ""},
        {{"nonsense", ""}, ""},
    };
    for (Case test : cases) {
        test.words.insert(test.words.begin(), "complete");
        const ToolRun run = RunWith(test.words);
        EXPECT_EQ(run.output, test.completed) << testing::PrintToString(test.words);
        EXPECT_EQ(run.error, "");
    }
    for (const char* shell : {"bash", "zsh", "fish"})
        EXPECT_THAT(RunWith({"completion", shell}).output, HasSubstr("qerefine"));
}

TEST(SettingNames, AreThoseOfTheDocument)
{
    const std::string document =
        ReadInputFile(std::filesystem::path(QEREFINER_SOURCE_DIR) / "Documentation/settings.md");
    for (const std::string_view name : kSettingNames) {
        const std::string section(name.substr(0, name.find('/')));
        const std::string key(name.substr(section.size() + 1));
        EXPECT_THAT(document, HasSubstr("\n| " + section + " | " + key + " |")) << name;
    }
    const auto rows = [&document](const std::string& section) {
        std::size_t count = 0;
        const std::string row = "\n| " + section + " | ";
        for (auto at = document.find(row); at != std::string::npos; at = document.find(row, at + 1))
            ++count;
        return count;
    };
    EXPECT_EQ(rows("General Options") + rows("QueryEngine") + rows("JoinGraph") + rows("Log"),
              kSettingNames.size());
}

TEST_F(CommandsTest, OptionsReachTheQuestion)
{
    const std::vector<std::string> ask{"path", "@", "orders", "region", "--format", "sql"};
    const auto with = [&ask](std::vector<std::string> more) {
        more.insert(more.begin(), ask.begin(), ask.end());
        return more;
    };
    EXPECT_THAT(RunWith(with({"--favour", "orders-customer (ship_to)"})).output,
                HasSubstr("orders.ship_to"));
    EXPECT_THAT(RunWith(with({"--without-join", "orders-customer (bill_to)"})).output,
                HasSubstr("orders.ship_to"));
    EXPECT_THAT(RunWith(with({"--start", "region"})).output,
                HasSubstr("FROM region\n  LEFT OUTER JOIN customer"));
    EXPECT_THAT(RunWith(with({"--inner", "--select"})).output, Not(HasSubstr("OUTER")));

    const ToolRun chosen = RunWith(with({"--selector", "ask"}), "9\nx\n2\n");
    EXPECT_THAT(chosen.output, HasSubstr("orders.ship_to"));
    EXPECT_THAT(chosen.error, HasSubstr("Choose 1 to 2 [1]: "));
    EXPECT_THAT(RunWith(with({"--set", "General Options/NewAlgo=0"})).output,
                HasSubstr("FROM orders"));
    qe::SettingsOverride::Clear("General Options", "NewAlgo");
}

} // namespace
