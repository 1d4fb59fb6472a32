#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Tests/Toolkit/HistoryTables.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/History/HistoryPack.h"
#include "Toolkit/History/JoinHistory.h"
#include "Toolkit/History/LoadHistory.h"
#include "Toolkit/History/SqlLog.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <numeric>
#include <random>
#include <set>
#include <sstream>

namespace {

using namespace qe::tool;
using qe::test::Connect;
using qe::test::NamesOf;
using qe::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;

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

    /// Returns the uses in the order of their texts, each with how many have both tables and
    /// whether it is offered.
    [[nodiscard]] std::string Offers() const
    {
        std::set<std::string> texts;
        const JoinHistory& history = *mLoaded.history;
        for (const JoinHistory::Join& join : history.GetJoins()) {
            if (join.uses == 0)
                continue;
            std::string text;
            for (const auto& [left, right] : join.pairs)
                text += history.GetColumns().GetColumn(left).name + '=' +
                        history.GetColumns().GetColumn(right).name + ' ';
            texts.insert(text + std::to_string(join.uses) + '/' +
                         std::to_string(history.CountTogether(join)) +
                         (history.IsOffered(join) ? " offered; " : "; "));
        }
        return std::accumulate(texts.begin(), texts.end(), std::string());
    }

    TemporaryFolder mFolder;
    ToolModel mPlain = qe::test::ImportText(qe::test::kHistoryTables);
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

TEST_F(HistoryTest, ForgetsAsIfAQueryHadNeverBeen)
{
    const char* const conditions[] = {
        "sale.ship_day_key = day.day_key",
        "sale.sold_day_key = day.day_key",
        "sale.head_id = item.head_id AND sale.no = item.no",
        "sale.head_id = head.id AND item.head_id = head.id",
        "note.sale_id = sale.id",
        "note.day = day.day_key AND note.sale_id = sale.id AND sale.ship_day_key = day.day_key"};
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        std::string all;
        std::string rest;
        std::vector<std::size_t> gone;
        for (std::size_t query = 0; query < 12; ++query) {
            const std::string statement = "SELECT " + std::to_string(query) +
                                          " FROM sale, day, item, head, note WHERE " +
                                          conditions[random() % std::size(conditions)] + ";\n";
            all += statement;
            if (random() % 3 == 0)
                gone.push_back(query);
            else
                rest += statement;
        }
        Load(rest.empty() ? "SELECT 1" : rest);
        const std::string expected = Offers();
        Load(all);
        const std::string before = Offers();
        for (const std::size_t use : gone)
            mLoaded.history->Forget(use);
        EXPECT_EQ(Offers(), expected) << all;
        for (const std::size_t use : gone)
            mLoaded.history->Remember(use);
        EXPECT_EQ(Offers(), before);
    }
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
    const std::string model = mFolder.Write("shop.sql", qe::test::kHistoryTables);
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
    const auto page = run({"path", "sale", "day", "--format", "html"});
    // Pages are drawn by another program, which may be missing.
    if (page.code != EExitCode::CannotReadOrWrite) {
        EXPECT_THAT(
            page.output,
            HasSubstr("spoke: 1</summary>\n<ul>\n<li><bdi>for: log.sql:1</bdi></li>\n</ul>"));
    }
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

} // namespace
