#include "Toolkit/Evaluate/Evaluation.h"

#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Toolkit/Asking.h"
#include "Toolkit/Ask/Asker.h"
#include "Toolkit/Ask/KeyChoice.h"
#include "Toolkit/Evaluate/ModelSource.h"
#include "Toolkit/Import/OpenModel.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

namespace {

using namespace qe::tool;
using qe::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<NamedPair> ToPairs(const std::string& text)
{
    std::vector<NamedPair> pairs;
    std::istringstream words(text);
    for (std::string word; words >> word;)
        pairs.emplace_back(word.substr(0, word.find('=')), word.substr(word.find('=') + 1));
    return pairs;
}

TEST(ColumnClasses, AreTheSameWhenTheSameColumnsAreMadeEqual)
{
    struct Case
    {
        const char* left;
        const char* right;
        bool isSame;
        bool canBeMade;
    };
    // Whether the left ones are the same as the right ones, and can be made of them.
    const Case cases[] = {
        {"", "", true, true},
        {"a=b", "b=a a=b", true, true},
        {"a=b b=c", "a=c c=b", true, true},
        {"a=b b=c", "a=b", false, false},
        {"a=b", "a=b b=c", false, true},
        {"a=b c=d", "d=c a=b", true, true},
        {"a=b c=d", "a=b b=c c=d", false, true},
        {"a=c", "a=b b=c", false, false},
    };
    for (const Case& test : cases) {
        const ColumnClasses left(ToPairs(test.left));
        EXPECT_EQ(left == ColumnClasses(ToPairs(test.right)), test.isSame) << test.left;
        EXPECT_EQ(left.CanBeMadeOf(ToPairs(test.right)), test.canBeMade) << test.left;
    }
}

TEST(KeyChoice, SplitsNamesIntoWords)
{
    EXPECT_THAT(SplitWords("orderItemID"), ElementsAre("order", "item", "id"));
    EXPECT_THAT(SplitWords("HTTPServer_2 No"), ElementsAre("http", "server", "2", "no"));
    EXPECT_THAT(SplitWords("ORDER_ID"), ElementsAre("order", "id"));
    EXPECT_THAT(SplitWords("key2Value"), ElementsAre("key2", "value"));
    EXPECT_THAT(SplitWords("stra\xc3\x9f"
                           "eName"),
                ElementsAre("stra\xc3\x9f"
                            "e",
                            "name"));
    EXPECT_THAT(SplitWords("__"), IsEmpty());
}

TEST(KeyChoice, TakesThePathThatTheKeysSpeakFor)
{
    const ToolModel model = qe::test::ImportText(R"(
CREATE TABLE customer (customerId INTEGER PRIMARY KEY);
CREATE TABLE sale (approvedByCustomerId INT NOT NULL REFERENCES customer,
  customerId INT REFERENCES customer);
CREATE TABLE head (headId INTEGER PRIMARY KEY);
CREATE TABLE item (headId INT NOT NULL REFERENCES head, no INT, PRIMARY KEY (headId, no));
CREATE TABLE part (headId INT NOT NULL REFERENCES head, no INT,
  FOREIGN KEY (headId, no) REFERENCES item);
CREATE TABLE place (id INTEGER PRIMARY KEY);
CREATE TABLE trip (aPlaceId INT REFERENCES place, zPlaceId INT NOT NULL REFERENCES place);
CREATE TABLE walk (aPlaceId INT REFERENCES place, zPlaceId INT REFERENCES place);
)");
    struct Case
    {
        std::vector<std::string> subjects;
        const char* expected;
        const char* first;
    };
    const Case cases[] = {
        {{"sale", "customer"},
         "sale-customer (customerId)",
         "sale-customer (approvedByCustomerId)"},
        {{"head", "item", "part"}, "item-head part-item", "item-head part-head"},
        {{"trip", "place"}, "trip-place (zPlaceId)", "trip-place (aPlaceId)"},
        {{"walk", "place"}, "walk-place (aPlaceId)", "walk-place (aPlaceId)"},
    };
    for (const Case& test : cases) {
        Question question = qe::test::Connect(test.subjects);
        question.ranking.useFactTableCount = false;
        for (const char* expected : {test.expected, test.first}) {
            const Answer answer = Ask(model, question);
            EXPECT_EQ(qe::test::NamesOf(answer, answer.path), expected);
            question.selector.kind = ESelector::First;
        }
    }
}

TEST(KeyChoice, NeverTakesAHeavierPath)
{
    // The heavier path has the better keys.
    Answer answer;
    const auto add = [&answer](int number, const char* condition, int weight) {
        const amd_id id{0, 102, number};
        AnswerJoin join;
        join.id = id;
        join.condition = condition;
        answer.joinsById.emplace(id, join);
        Alternative alternative;
        alternative.joins = {id};
        alternative.weight = weight;
        answer.alternatives.push_back(alternative);
    };
    const auto choose = [&answer] {
        const KeyChoice choice = ChooseByKeys(answer);
        return std::to_string(choice.position) + (choice.isClear ? " clear" : "");
    };
    EXPECT_EQ(choose(), "0");
    add(1, "[a].[b].[old key] = [a].[c].[key]", 17);
    EXPECT_EQ(choose(), "0");
    add(2, "[a].[b].[key] = [a].[c].[key]", 18);
    EXPECT_EQ(choose(), "0");
    answer.alternatives[1].weight = 17;
    EXPECT_EQ(choose(), "1 clear");
    add(3, "[a].[b].[key] = [a].[c].[key]", 17);
    EXPECT_EQ(choose(), "1");
    std::swap(answer.alternatives[0], answer.alternatives[1]);
    EXPECT_EQ(choose(), "0");
    answer.alternatives.pop_back();
    EXPECT_EQ(choose(), "0 clear");
}

TEST(KeyChoice, TellsSubjectsOfOneNameApartByTheirNamespaces)
{
    const Column left{{"Old", "Order"}, "Id"};
    const Column right{{"Order"}, "Id"};
    EXPECT_EQ(FindColumnPairs("[Old].[Order].[Id] = [Order].[Id]"),
              (std::vector<ColumnPair>{{left, right}}));
    EXPECT_TRUE(FindColumnPairs("[Order].[Id] = [Order].[Parent] + [one]").empty());
}

const char* const kRequests =
    // The same, written otherwise.
    R"({"id": "a", "db": "shop", "given": "x", "case": "1", "subjects": ["SALE", "region"],
 "joins": [["Region.id", "Customer.region_id"], ["sale.customer_id", "customer.id"]]})"
    "\n"
    // The other key between the two.
    R"({"id": "b", "db": "shop", "given": "x", "case": "2", "subjects": ["sale", "customer"],
 "joins": [["sale.payer_id", "customer.id"]]})"
    "\n"
    // A detour over a third table.
    R"({"id": "c", "db": "shop", "given": "y", "subjects": ["sale", "customer"],
 "joins": [["sale.customer_id", "customer.id"], ["customer.region_id", "region.id"]]})"
    "\n"
    // No key says so.
    R"({"id": "d", "db": "shop", "subjects": ["sale", "customer"],
 "joins": [["sale.customer_id", "customer.region_id"]]})"
    "\n"
    R"({"id": "e", "db": "shop", "subjects": ["sale", "island"], "joins": [["sale.x", "island.id"]]})"
    "\n"
    R"({"id": "f", "db": "shop", "subjects": ["sale", "isle"], "joins": [["sale.x", "isle.id"]]})"
    "\n"
    R"({"id": "g", "db": "none", "subjects": ["sale", "customer"], "joins": [["a.b", "c.d"]]})"
    "\n"
    R"({"id": "h", "db": "two", "subjects": ["sale", "customer"], "joins": [["a.b", "c.d"]]})"
    "\n"
    R"({"id": "i", "db": "shop", "subjects": ["sale", "customer"], "joins": [["a.b"]]})"
    "\n"
    R"({"id": "j", "db": "shop", "subjects": ["sale", "customer"]})"
    "\n"
    "no JSON\n";

/// Each request on a line of its own.
std::string RequestLines()
{
    std::string text = kRequests;
    for (std::size_t at = text.find("\n "); at != std::string::npos; at = text.find("\n "))
        text.erase(at, 1);
    return text;
}

TEST(Evaluate, ComparesWithTheJoinsThatPeopleWrote)
{
    const TemporaryFolder folder;
    folder.Write("shop.sql", qe::test::kShopTables);
    folder.Write("two.sql", qe::test::kShopTables);
    folder.Write("two.json", "{}");
    ModelSource models(folder / "", [](const auto& path) { return ImportSql({path}, {}); });
    std::istringstream requests(RequestLines());
    const Evaluation evaluation = Evaluate(models, requests, {});

    EXPECT_THAT(evaluation.all.counts, ElementsAre(1, 1, 1, 1, 1, 6));
    EXPECT_EQ(evaluation.all.CountEquallyGood(), 2U);
    EXPECT_THAT(evaluation.byGiven.at("x").counts, ElementsAre(1, 1, 0, 0, 0, 0));
    EXPECT_THAT(evaluation.byCase.at("2").counts, ElementsAre(0, 1, 0, 0, 0, 0));
    EXPECT_THAT(evaluation.bySubjects.at(0).counts, ElementsAre(0, 0, 0, 0, 0, 1));

    std::vector<std::string> reasons;
    for (const Difference& difference : evaluation.differences)
        reasons.push_back(difference.id + " " + difference.reason);
    EXPECT_THAT(reasons, ElementsAre("b ", "c ", "d ", "e ", HasSubstr("\"isle\""),
                                     HasSubstr("no model of this database: none"),
                                     HasSubstr("several models of this database: two"),
                                     HasSubstr("i /joins"), HasSubstr("j /joins"),
                                     HasSubstr("column 2: not valid JSON")));
    const Difference& other = evaluation.differences.front();
    EXPECT_EQ(other.line, 2U);
    EXPECT_EQ(other.onlyWritten, ToPairs("customer.id=sale.payer_id"));
    EXPECT_EQ(other.onlyChosen, ToPairs("customer.id=sale.customer_id"));
}

TEST(EvaluateCommand, WritesTextAndJson)
{
    const TemporaryFolder models;
    models.Write("shop.sql", qe::test::kShopTables);
    const TemporaryFolder folder;
    const std::string requests = folder.Write("requests.jsonl", RequestLines());
    const auto listed = qe::test::RunTool({"evaluate", models / "", requests, "--list"});
    EXPECT_EQ(listed.code, EExitCode::Done);
    EXPECT_THAT(listed.output,
                testing::ContainsRegex("all +11 +1 +9.1 % +2 +18.2 % +1 +1 +1 +1 +6\n"));
    EXPECT_THAT(listed.output, HasSubstr("line 2 b: other of equally good\n"
                                         "  written only: customer.id = sale.payer_id\n"));

    const auto json = nlohmann::json::parse(
        qe::test::RunTool({"evaluate", models / "", requests, "--format", "json"}).output);
    EXPECT_EQ(json["all"]["counts"]["refused"], 6);
    EXPECT_EQ(json["byGiven"]["x"]["same"], 50.0);
    EXPECT_EQ(json["differences"].size(), 10U);
    const auto require = [&](const char* percent, const std::string& file) {
        return qe::test::RunTool({"evaluate", models / "", file, "--min-same", percent});
    };
    EXPECT_EQ(require("9", requests).code, EExitCode::Done);
    EXPECT_EQ(require("9.1", requests).code, EExitCode::ShareMissed);
    EXPECT_EQ(require("9.1", requests).error,
              "qerefine: 1 of 11 requests were answered the same, less than 9.1 %\n");
    EXPECT_EQ(require("0", folder.Write("none.jsonl", "")).code, EExitCode::ShareMissed);
    for (const char* const wrong : {"-1", "100.1", "nan", "many"})
        EXPECT_EQ(require(wrong, requests).code, EExitCode::WrongUsage) << wrong;
    EXPECT_EQ(qe::test::RunTool({"evaluate", models / "none", requests}).code,
              EExitCode::CannotReadOrWrite);
}

TEST(EvaluateCommand, ShowsHostileTextsAsText)
{
    const TemporaryFolder folder;
    const std::string model = folder.Write("shop.sql", qe::test::kShopTables);
    const std::string requests = folder.Write(
        "requests.jsonl",
        R"({"id": "\u001b[2J\n", "given": "\u001b[31m", "case": "\u0007", "subjects": ["\u001b[1m"]})"
        "\n"
        R"({"id": "b", "subjects": ["sale", "region"], "joins": [["\u001b[1m.x", "sale.\u202e"]]})"
        "\n"
        R"({"id": "c", "joins": 1, "\u001b": 1, "\u0007": 2})");
    for (const char* format : {"text", "json"}) {
        const auto listed =
            qe::test::RunTool({"evaluate", model, requests, "--list", "--format", format});
        EXPECT_EQ(listed.code, EExitCode::Done);
        for (const char letter : listed.output)
            EXPECT_TRUE(letter == '\n' || static_cast<unsigned char>(letter) >= 0x20) << format;
        EXPECT_THAT(listed.output, HasSubstr("[2J"));
    }
}

/// Requests that people wrote against public schemas, which lie outside the project. Where a
/// person's joins are the only smallest tree of declared keys, they are the answer; where they are
/// one of several such trees, they are among the equally good paths; only what no keys connect is
/// told apart. The shares that the defaults reach do not fall.
TEST(Evaluate, AnswersCollectedRequestsAsWellAsBefore)
{
    struct Set
    {
        const char* requests;
        const char* models;
        std::size_t sameOfAll;
        std::size_t sameOfReferenced;
    };
    const Set sets[] = {{"spider", "spider", 621, 155},
                        {"mantle", "mantle.sql", 172, 0},
                        {"imdb", "imdb.sql", 17, 10}};
    const std::filesystem::path data = QEREFINER_DATA_DIR;
    for (const Set& set : sets) {
        SCOPED_TRACE(set.requests);
        const auto file = data / "requests" / (std::string(set.requests) + ".jsonl");
        if (!std::filesystem::exists(file))
            GTEST_SKIP() << "there are no collected requests: " << file;
        ModelSource models(data / "schemas" / set.models,
                           [](const auto& path) { return ImportSql({path}, {}); });
        std::ifstream requests(file);
        Evaluation evaluation = Evaluate(models, requests, {});
        EXPECT_GE(evaluation.byGiven["all"].Get(EComparison::Same), set.sameOfAll);
        EXPECT_GE(evaluation.byGiven["referenced"].Get(EComparison::Same), set.sameOfReferenced);
        const Tally& unique = evaluation.byCase["unique_equal"];
        EXPECT_EQ(unique.Get(EComparison::Same), unique.CountRequests());
        const Tally& tied = evaluation.byCase["tied"];
        EXPECT_EQ(tied.CountEquallyGood(), tied.CountRequests());
        const Tally& apart = evaluation.byCase["unreachable"];
        EXPECT_EQ(apart.Get(EComparison::NotConnected), apart.CountRequests());
        EXPECT_EQ(evaluation.all.Get(EComparison::NotConnected), apart.CountRequests());
        EXPECT_EQ(evaluation.all.Get(EComparison::Refused), 0U);
    }
}

} // namespace
