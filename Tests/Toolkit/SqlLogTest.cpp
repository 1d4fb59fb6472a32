#include "Toolkit/History/SqlLog.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/HistoryTables.h"
#include "Toolkit/History/HistoryFile.h"
#include "Toolkit/History/SchemaColumns.h"
#include "Toolkit/Import/Ddl/StatementReader.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace qe::tool;
using qe::test::TemporaryFolder;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::StartsWith;

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
    const ToolModel model = qe::test::ImportText(qe::test::kHistoryTables);
    const SchemaColumns columns(*model.model);
    EXPECT_EQ(ReadSql("SELECT no FROM sale, day WHERE sold_day_key = day_key", &columns),
              "day.day_key=sale.sold_day_key (day sale)");
}

TEST(SqlLog, CountsWhatIsTooLongTooDeepOrOpen)
{
    const auto repeat = [](std::string text, const std::string& part, std::size_t length) {
        while (text.size() < length)
            text += part;
        return text;
    };
    const std::string query = "SELECT 1 FROM a, b WHERE a.x = b.x";
    const std::string found = "a.x=b.x (a b)";
    const std::size_t longest = kLongestStatement - 20;
    for (const std::string& deep :
         {repeat("SELECT ", "(", 1'000'000),
          repeat("SELECT 1 FROM a", " JOIN b ON a.x = b.x", longest),
          repeat("SELECT * FROM ", "(SELECT*FROM", longest), repeat("SELECT ", "- ", longest),
          repeat(query + " AND 1 = 1", "+1", longest), repeat(query, " AND a.v = 1", 50'000'000)})
        EXPECT_THAT(ReadSql(deep + "; " + query), StartsWith(found + "unread: "))
            << deep.substr(0, 80);
    EXPECT_EQ(ReadSql(repeat(query + " AND a.v IN (1", ", 2", longest) + ')'), found);
    EXPECT_EQ(ReadSql(repeat("SELECT 1 FROM a", " JOIN b ON a.x = b.x", 15'000)), found);

    for (const char* const open : {"'", "\"", "E'\\'", "$t$ $$", "/* /* */"}) {
        const HistoryEntries file = ReadSqlLog(query + ";\n" + query + " AND\n a.v = " + open +
                                                   ';' + repeat("", query + ";\n", 1'000'000),
                                               "log.sql", nullptr);
        EXPECT_EQ(Describe(file), found + "unread: " + kUnended) << open;
        EXPECT_EQ(file.firstUnread.front().place, "log.sql:3");
        EXPECT_EQ(file.entries, 2U);
    }
    EXPECT_THAT(ReadSqlLog(";\nSELECT\n\n 1 2;", "log.sql", nullptr).firstUnread,
                ElementsAre(Field(&InputProblem::place, "log.sql:4")));
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

/// Writes one join graph in several ways: a tree over tables t0, t1, ... that joins column "c" of
/// the later table to "k" of the earlier one.
class StatementWriter
{
public:
    explicit StatementWriter(unsigned seed) : mRandom(seed)
    {
        const std::size_t count = 2 + mRandom() % 6;
        for (std::size_t table = 1; table < count; ++table)
            mParents.push_back(mRandom() % table);
    }

    [[nodiscard]] std::string Expect() const
    {
        PastQuery query;
        for (std::size_t table = 1; table <= mParents.size(); ++table)
            query.pairs.emplace_back(Name(table) + ".c", Name(mParents[table - 1]) + ".k");
        Normalise(query);
        HistoryEntries file;
        file.queries.push_back(query);
        return Describe(file);
    }

    /// Conditions stand in WHERE or ON, tables behind aliases or within subqueries.
    [[nodiscard]] std::string Write()
    {
        std::vector<std::string> where;
        std::string from = " FROM " + Table(0);
        for (std::size_t table = 1; table <= mParents.size(); ++table) {
            std::string left = Alias(table) + ".c";
            std::string right = Alias(mParents[table - 1]) + ".k";
            if (mRandom() % 2 == 0)
                std::swap(left, right);
            if (mRandom() % 2 == 0) {
                from += " LEFT JOIN " + Table(table) + " ON (" + left + " = " + right + ")";
            } else {
                from += " CROSS JOIN " + Table(table);
                where.push_back(left + " = " + right);
            }
        }
        std::string text = "SELECT 1" + from + " WHERE true";
        for (const std::string& condition : where)
            text += " AND /* = */ " + condition;
        return text;
    }

private:
    [[nodiscard]] static std::string Name(std::size_t table) { return 't' + std::to_string(table); }
    [[nodiscard]] static std::string Alias(std::size_t table)
    {
        return 'a' + std::to_string(table);
    }

    [[nodiscard]] std::string Table(std::size_t table)
    {
        const std::string alias = " AS " + Alias(table);
        switch (mRandom() % 3) {
        case 0:
            return Name(table) + alias;
        case 1:
            return "(SELECT x.k, c FROM " + Name(table) + " x WHERE x.v > 1)" + alias;
        default:
            return "(WITH w AS (SELECT k AS q, c FROM \"" + Name(table) +
                   "\") SELECT w.q AS k, c FROM w)" + alias;
        }
    }

    std::mt19937 mRandom;
    std::vector<std::size_t> mParents;
};

TEST(SqlLog, FindsTheSameJoinsHoweverTheyAreWritten)
{
    for (unsigned seed = 0; seed < 150; ++seed) {
        StatementWriter writer(seed);
        const std::string statement = writer.Write();
        EXPECT_EQ(ReadSql(statement), writer.Expect()) << statement;
    }
}

TEST(HistoryFile, SurvivesWhatIsMutilated)
{
    const TemporaryFolder folder;
    const ToolModel model = qe::test::ImportText(qe::test::kHistoryTables);
    const SchemaColumns columns(*model.model);
    const std::string originals[] = {
        "WITH w AS (SELECT day_key FROM day) SELECT 'a;', $$b$$ FROM sale s JOIN w ON "
        "s.ship_day_key = w.day_key LEFT JOIN head USING (id) WHERE s.no IN (SELECT no FROM item); "
        "SELECT 1 FROM note n, sale s WHERE n.sale_id = s.id AND (n.day, 1) = (s.no, 2);",
        R"({"subjects": ["sale", "[db].[day]"], "joins": [["sale.ship_day_key", "day.day_key"]]})"
        "\n"
        R"({"id": [1], "subjects": ["note"], "joins": [["note.day", "sale.no"]], "count": 2})"};
    std::mt19937 random(11);
    for (const std::string& original : originals) {
        for (int round = 0; round < 300; ++round) {
            std::string text = original;
            for (unsigned change = 0; change <= random() % 6; ++change) {
                const std::size_t place = random() % text.size();
                if (random() % 2 == 0)
                    text.erase(place, 1 + random() % 9);
                else
                    text[place] = static_cast<char>(1 + random() % 255);
                if (text.empty())
                    text = " ";
            }
            const HistoryEntries file = ReadHistoryFile(folder.Write("log", text), &columns);
            EXPECT_LE(file.unread, file.entries);
            EXPECT_EQ(file.firstUnread.size(), std::min(file.unread, HistoryEntries::kNamed));
        }
    }
}

} // namespace
