#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/History/HistoryFile.h"
#include "Toolkit/History/HistoryPack.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/History/LoadHistory.h"
#include "Toolkit/History/SqlLog.h"
#include "Toolkit/History/StatementSplitter.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

namespace {

using namespace qe::tool;
using qe::test::Connect;
using qe::test::NamesOf;
using qe::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Two roles of a day, a composite key beside a simple one, and two tables that no key joins.
constexpr const char* kTables = R"(
    CREATE TABLE day (day_key INTEGER PRIMARY KEY);
    CREATE TABLE head (id INTEGER PRIMARY KEY);
    CREATE TABLE item (head_id INT NOT NULL REFERENCES head, no INT, PRIMARY KEY (head_id, no));
    CREATE TABLE sale (id INTEGER PRIMARY KEY, sold_day_key INT NOT NULL REFERENCES day,
                       ship_day_key INT NOT NULL REFERENCES day,
                       head_id INT REFERENCES head, no INT,
                       FOREIGN KEY (head_id, no) REFERENCES item);
    CREATE TABLE note (day INT, sale_id INT);
)";

/// Returns the pairs and behind them the tables of each query, and the first mistake.
std::string Describe(const HistoryEntries& file)
{
    std::string text;
    for (const PastQuery& query : file.queries) {
        text += text.empty() ? "" : " | ";
        for (const NamedPair& pair : query.pairs)
            text += pair.first + '=' + pair.second + ' ';
        text += '(';
        for (const std::string& table : query.tables)
            text += table + ' ';
        text.back() = ')';
    }
    return file.unread == 0 ? text : text + "unread: " + file.firstUnread.front().text;
}

std::string ReadSql(const std::string& statements, const SchemaColumns* columns = nullptr)
{
    return Describe(ReadSqlLog(statements, "log.sql", columns));
}

TEST(SqlLog, FindsTheJoinsOfStatements)
{
    struct Case
    {
        const char* statement;
        const char* expected;
    };
    const Case cases[] = {
        {"SELECT * FROM A JOIN s.B AS x ON a.Id = x.\"A_id\" WHERE x.v = 3",
         "a.id=s.b.a_id (a s.b)"},
        {"SELECT 1 FROM a, b, c WHERE a.x = b.x AND (b.y = c.y AND b.z = 'it''s; c.z = a.z')",
         "a.x=b.x b.y=c.y (a b c)"},
        {"SELECT 1 FROM a LEFT JOIN b USING (k, m)", "a.k=b.k a.m=b.m (a b)"},
        {"SELECT 1 FROM a, b WHERE a.x = b.x OR a.y = b.y", "(a b)"},
        {"SELECT 1 FROM a, b WHERE NOT (a.x = b.x) AND a.y < b.y AND a.v = $1", "(a b)"},
        {"SELECT 1 FROM a JOIN (SELECT b.k AS bk, v FROM b JOIN c ON b.c = c.id) s ON s.bk = a.k",
         "a.k=b.k b.c=c.id (a b c)"},
        {"WITH w AS (SELECT id FROM b) SELECT 1 FROM a, w WHERE w.id = a.b", "a.b=b.id (a b)"},
        {"SELECT 1 FROM a, b WHERE a.x = b.x UNION SELECT 1 FROM c, d WHERE c.y = d.y",
         "a.x=b.x (a b) | c.y=d.y (c d)"},
        {"SELECT 1 FROM a, b WHERE a.x = b.x AND a.i IN (SELECT c.i FROM c, d WHERE c.y = d.y)",
         "a.x=b.x (a b) | c.y=d.y (c d)"},
        {"SELECT 1 FROM t AS l JOIN t AS r ON l.up = r.id JOIN u ON u.t = r.id",
         "t.id=t.up t.id=u.t (t u)"},
        {"SELECT 1 FROM a, generate_series(1, 3) AS g, b WHERE g.g = a.x AND a.y = b.y",
         "a.y=b.y (a b)"},
        {"WITH RECURSIVE r AS (SELECT id FROM a UNION SELECT r.id FROM r, b WHERE r.id = b.up) "
         "SELECT 1 FROM r",
         ""},
        {"SELECT 1 FROM a NATURAL JOIN b", "unread: a NATURAL JOIN names no columns"},
        {"DELETE FROM a USING b WHERE a.x = b.x", "unread: not a query"},
        {"SELECT FROM WHERE", "unread: syntax error at or near \"WHERE\""},
        {"SELECT 1 FROM a, b WHERE x = b.x", "(a b)"},
        {"SELECT 1", ""},
    };
    for (const Case& test : cases)
        EXPECT_EQ(ReadSql(test.statement), test.expected) << test.statement;
    const ToolModel model = qe::test::ImportText(kTables);
    const SchemaColumns columns(*model.model);
    EXPECT_EQ(ReadSql("SELECT no FROM sale, day WHERE sold_day_key = day_key", &columns),
              "day.day_key=sale.sold_day_key (day sale)");
}

TEST(SqlLog, TakesStatementsApart)
{
    const std::string text = "-- a;\nSELECT ';' ; ;;/* ; /* ; */ ; */ SELECT \"a;b\"\n;"
                             "SELECT $t$ ; $$ ; $t$, $1;SELECT x$y$z";
    StatementSplitter splitter(text);
    SqlStatement statement;
    std::vector<std::string> found;
    while (splitter.Next(statement))
        found.push_back(std::to_string(statement.line) + ' ' + std::string(statement.text));
    EXPECT_THAT(found, ElementsAre("2 SELECT ';' ", "2 SELECT \"a;b\"\n",
                                   "3 SELECT $t$ ; $$ ; $t$, $1", "3 SELECT x$y$z"));
    StatementSplitter open("SELECT 'never closed; SELECT 1");
    EXPECT_TRUE(open.Next(statement));
    EXPECT_FALSE(open.Next(statement));
}

TEST(SqlLog, CountsWhatIsTooLongOrTooDeep)
{
    const auto repeat = [](std::string text, const char* part, std::size_t length) {
        while (text.size() < length)
            text += part;
        return text;
    };
    const std::size_t longest = kLongestStatement - 10;
    EXPECT_THAT(ReadSql(repeat("SELECT 1 FROM a", " JOIN b ON a.x = b.x", 20'000'000)),
                HasSubstr("the statement is too long"));
    EXPECT_THAT(ReadSql(repeat("SELECT ", "(", longest)), HasSubstr("unread"));
    EXPECT_EQ(ReadSql(repeat("SELECT 1 FROM a, b WHERE a.x = b.x AND 1 = 1", "+1", longest)),
              "a.x=b.x (a b)");
    EXPECT_EQ(ReadSql(repeat("SELECT 1 FROM a", " JOIN b ON a.x = b.x", longest - 20)),
              "a.x=b.x (a b)");
}

TEST(HistoryFile, NamesLinesThatCannotBeRead)
{
    const TemporaryFolder folder;
    const std::string log = folder.Write("log.jsonl", R"({"subjects": ["A", "[s].[B]"], "joins": []}

{"subjects": ["a"], "joins": [["a.x"]]}
{"joins": [["a.x", "b.y"]]}
{"subjects": ["a"], "joins": [["x", "b.y"]], "count": 0}
{"subjects": 1, "joins": [], "given": "x"}
no JSON
[]
{"subjects": [], "joins": [["a.x", "b.y"]], "count": 3, "other": 1})");
    const HistoryEntries file = ReadHistoryFile(log, nullptr);
    EXPECT_EQ(file.entries, 8U);
    EXPECT_EQ(file.unread, 6U);
    ASSERT_EQ(file.firstUnread.size(), HistoryEntries::kNamed);
    EXPECT_EQ(file.firstUnread.front().place, "log.jsonl:3");
    EXPECT_THAT(file.firstUnread.front().text, HasSubstr("/joins/0"));
    ASSERT_EQ(file.queries.size(), 2U);
    EXPECT_THAT(file.queries.front().tables, ElementsAre("a", "b"));
    EXPECT_EQ(file.queries.back().count, 3U);

    const std::string binary = folder.Write("log.db", std::string("SQLite\0format", 13));
    EXPECT_THAT(qe::test::MistakesOf([&] { static_cast<void>(ReadHistoryFile(binary, nullptr)); }),
                HasSubstr("a history is a text"));
    EXPECT_THAT(
        qe::test::MistakesOf([&] { static_cast<void>(ReadHistoryFile(folder / "none", nullptr)); }),
        HasSubstr("none"));
}

/// A model with what a history says of it.
class HistoryTest : public testing::Test
{
protected:
    void Load(const std::string& log, const char* name = "log.sql")
    {
        const std::filesystem::path file = mFolder.Write(name, log);
        mLoaded = LoadHistory(*mPlain.model, {&file, 1});
    }

    [[nodiscard]] Answer AskWithHistory(std::vector<std::string> subjects) const
    {
        Question question = Connect(std::move(subjects));
        question.selector.explainsHistory = true;
        return Ask(WithHistory(mPlain, mLoaded.history), question);
    }

    /// Returns the joins that were used, each with how often.
    [[nodiscard]] std::string Uses() const
    {
        std::string text;
        for (const JoinHistory::Join& join : mLoaded.history->GetJoins()) {
            if (join.uses == 0)
                continue;
            text += text.empty() ? "" : ", ";
            for (const auto& [left, right] : join.pairs)
                text += mLoaded.history->GetColumns().GetColumn(left).name + '=' +
                        mLoaded.history->GetColumns().GetColumn(right).name + ' ';
            text += std::to_string(join.uses) + (join.isDeclared ? "" : " past");
        }
        return text;
    }

    TemporaryFolder mFolder;
    ToolModel mPlain = qe::test::ImportText(kTables);
    LoadedHistory mLoaded{};
};

TEST_F(HistoryTest, CountsDeclaredJoinsAndWhatIsLeftOver)
{
    struct Case
    {
        const char* condition;
        const char* uses;
    };
    const Case cases[] = {
        {"sale.head_id = item.head_id AND sale.no = item.no",
         "item.head_id=sale.head_id item.no=sale.no 1"},
        {"sale.no = item.no", "item.no=sale.no 1 past"},
        // Half of a key beside the whole of another, which does not imply it.
        {"sale.head_id = head.id AND sale.head_id = item.head_id",
         "head.id=sale.head_id 1, item.head_id=sale.head_id 1 past"},
        // Implied by what the declared joins make equal.
        {"sale.head_id = head.id AND item.head_id = head.id AND sale.head_id = item.head_id",
         "head.id=item.head_id 1, head.id=sale.head_id 1"},
        {"note.sale_id = sale.id AND note.day = sale.no",
         "note.day=sale.no note.sale_id=sale.id 1 past"},
    };
    for (const Case& test : cases) {
        Load(std::string("SELECT 1 FROM sale, item, head, note, day WHERE ") + test.condition);
        EXPECT_EQ(Uses(), test.uses) << test.condition;
    }
}

TEST_F(HistoryTest, CountsTheSameTextOnce)
{
    Load("SELECT 1 FROM sale, day WHERE ship_day_key = day_key; "
         "SELECT 1 FROM sale, day WHERE ship_day_key = day_key;"
         "SELECT 2 FROM sale, day WHERE ship_day_key = day_key");
    EXPECT_EQ(Uses(), "day.day_key=sale.ship_day_key 2");
    JoinHistory& history = *mLoaded.history;
    history.Forget(1);
    history.Forget(1);
    EXPECT_EQ(Uses(), "day.day_key=sale.ship_day_key 1");
    history.Remember(1);
    history.Remember(1);
    EXPECT_EQ(Uses(), "day.day_key=sale.ship_day_key 2");
}

TEST_F(HistoryTest, ChoosesAsPeopleDid)
{
    EXPECT_EQ(
        NamesOf(Ask(mPlain, Connect({"sale", "day"})), Ask(mPlain, Connect({"sale", "day"})).path),
        "sale-day (sold_day_key)");
    Load("SELECT 1 FROM sale JOIN day ON ship_day_key = day_key;\n"
         "SELECT 2 FROM sale JOIN day ON ship_day_key = day_key;\n"
         "SELECT 3 FROM sale JOIN day ON ship_day_key = day_key;\n"
         "SELECT 4 FROM sale JOIN day ON sold_day_key = day_key;");
    const Answer answer = AskWithHistory({"sale", "day"});
    EXPECT_EQ(NamesOf(answer, answer.path), "sale-day (ship_day_key)");
    EXPECT_EQ(DecisionText(answer), "past queries (used 3 times against 1)");
    ASSERT_TRUE(answer.pastUse);
    EXPECT_THAT(answer.pastUse->queries, ElementsAre("for: log.sql:1", "for: log.sql:2",
                                                     "for: log.sql:3", "against: log.sql:4"));
}

TEST_F(HistoryTest, LeavesNearTiesToTheKeys)
{
    Load("SELECT 1 FROM sale JOIN day ON ship_day_key = day_key;"
         "SELECT 2 FROM sale JOIN day ON ship_day_key = day_key;"
         "SELECT 3 FROM sale JOIN day ON sold_day_key = day_key;");
    const Answer answer = AskWithHistory({"sale", "day"});
    EXPECT_EQ(NamesOf(answer, answer.path), "sale-day (sold_day_key)");
    EXPECT_EQ(answer.criterion, decision::kPositions);
}

TEST_F(HistoryTest, OffersJoinsThatTheModelLacks)
{
    const std::string others = "SELECT 1 FROM note, sale; SELECT 2 FROM note, sale;"
                               "SELECT 3 FROM note, sale; SELECT 4 FROM note, sale;";
    Load(others + "SELECT 1 FROM note JOIN sale ON note.sale_id = sale.id");
    const Answer answer = AskWithHistory({"note", "sale"});
    ASSERT_TRUE(answer.connected);
    const AnswerJoin& join = *answer.FindJoin(answer.path.front());
    EXPECT_EQ(JoinKindTitle(join.id), "query join");
    EXPECT_EQ(join.name, "past note-sale (sale_id = id)");
    EXPECT_EQ(join.weight, 17);
    Load(others + "SELECT 5 FROM note, sale; SELECT 1 FROM note, sale WHERE sale_id = sale.id");
    EXPECT_FALSE(AskWithHistory({"note", "sale"}).connected);
}

TEST_F(HistoryTest, NamesWhatTheModelLacks)
{
    Load("{\"subjects\": [\"sales\", \"day\"], \"joins\": [[\"sales.x\", \"day.day_key\"]]}",
         "log.jsonl");
    EXPECT_THAT(
        mLoaded.notes,
        ElementsAre("history: the model lacks 2 names: sales (did you mean sale?), sales.x"));
}

TEST_F(HistoryTest, PacksTablesColumnsAndCountsOnly)
{
    const std::string log =
        "SELECT secret FROM sale, day WHERE ship_day_key = day_key AND no = 4711;"
        "SELECT 2 FROM sale, day WHERE ship_day_key = day_key";
    Load(log);
    const SchemaColumns columns(*mPlain.model);
    std::ostringstream packed;
    EXPECT_EQ(WritePack(packed, ReadSqlLog(log, "log.sql", &columns).queries), 1U);
    EXPECT_EQ(packed.str(), "{\"subjects\":[\"day\",\"sale\"],\"joins\":[[\"day.day_key\","
                            "\"sale.ship_day_key\"]],\"count\":2}\n");
    const std::string uses = Uses();
    Load(packed.str(), "packed.jsonl");
    EXPECT_EQ(Uses(), uses);
}

TEST_F(HistoryTest, CommandsTakeAHistory)
{
    const std::string model = mFolder.Write("shop.sql", kTables);
    const std::string log =
        mFolder.Write("log.sql", "SELECT 1 FROM sale JOIN day ON ship_day_key = day_key; oops;"
                                 "SELECT 2 FROM note JOIN sale ON sale_id = sale.id;"
                                 "SELECT 3 FROM note JOIN sale ON sale_id = note.day");
    const auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin() + 1, model);
        arguments.insert(arguments.end(), {"--history", log});
        return qe::test::RunTool(arguments, R"({"subjects": ["day", "sale"]})");
    };
    const auto path = run({"path", "sale", "day", "--explain-history"});
    EXPECT_THAT(path.output,
                HasSubstr("Decided by: past queries (used 1 time against 0)\n  for: log.sql:1\n"));
    EXPECT_THAT(path.error, HasSubstr("1 of 4 entries cannot be read: log.sql:1 syntax error"));
    const auto json = nlohmann::json::parse(run({"batch", "-"}).output);
    EXPECT_EQ(json["pastUse"]["chosen"], 1);
    EXPECT_THAT(run({"path", "sale", "day", "--format", "sql"}).output, HasSubstr("ship_day_key"));
    const std::string checked = run({"check", "--limit", "0"}).output;
    EXPECT_THAT(checked,
                HasSubstr("People join note and sale on note.sale_id = sale.id (1 time of 2)"));
    EXPECT_THAT(checked,
                HasSubstr("Nobody uses the join sale-day (sold_day_key), though one query has"));
    EXPECT_THAT(qe::test::RunTool({"history", "pack", log}).error,
                HasSubstr("entries: 4, not read: 1"));

    mFolder.Write("model.json", R"({"version": 1, "history": ["log.sql"], "subjects": [
        {"name": "sale", "items": ["ship_day_key"]}, {"name": "day", "items": ["day_key"]}]})");
    const auto named = qe::test::RunTool({"path", mFolder / "model.json", "sale", "day"});
    EXPECT_THAT(named.output, HasSubstr("past sale-day (ship_day_key = day_key)"));
}

TEST(PassedTables, AreSkippedWhereAllJoinsMeetInTheSameColumns)
{
    const ToolModel model = qe::test::ImportText(R"(
        CREATE TABLE party (id INTEGER PRIMARY KEY, town INT UNIQUE);
        CREATE TABLE note (party_id INT NOT NULL REFERENCES party);
        CREATE TABLE person (party_id INT PRIMARY KEY REFERENCES party);
        CREATE TABLE house (town INT REFERENCES party (town));)");
    FormatOptions options;
    options.sql.passedTables = SqlOptions::EPassedTables::Skipped;
    EXPECT_EQ(qe::test::WriteAs("sql", model, Connect({"note", "person"}), options),
              "FROM \"note\"\n  LEFT OUTER JOIN \"person\"\n"
              "    ON \"note\".\"party_id\" = \"person\".\"party_id\"\n");
    EXPECT_THAT(qe::test::WriteAs("sql", model, Connect({"note", "person", "party"}), options),
                HasSubstr("\"party\".\"id\""));
    EXPECT_THAT(qe::test::WriteAs("sql", model, Connect({"note", "house"}), options),
                HasSubstr("JOIN \"party\""));
}

} // namespace
